#include "codecs/g729/encoder.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/g729/annex_a.h"
#include "codecs/g729/delay_coding.h"
#include "codecs/g729/main_body.h"

namespace codecs::g729 {

// A copy of the response for each pulse, all of the same length: silence stands before it
FixedVector filterFourPulses(const Subframe& code, const std::array<Zpp16s, 2>& codeword, const Subframe& impulse) {
  std::array<Zpp16s, 2 * kSubframeSize> delayed{};
  Zpp16s* const response = delayed.data() + kSubframeSize;
  std::ranges::copy(impulse, response);
  FixedVector vector = {code, {}};
  int signs = codeword[0];
  for (const int position : pulsePositions(codeword[1])) {
    const auto accumulate = signs & 1 ? zppsAdd_16s_I : zppsSub_16s_I;
    require(accumulate(response - position, vector.filtered.data(), kSubframeSize));
    signs >>= 1;
  }
  return vector;
}

template <class Coder>
FrameEncoder<Coder>::FrameEncoder(bool discontinuous) {
  if (discontinuous) dtx_.emplace();
}

template <class Coder>
auto FrameEncoder<Coder>::analyse(const Zpp16s* samples) -> Analysis {
  const auto newest = std::span(speech_).template last<kFrameSize>();
  std::copy_n(samples, kFrameSize, newest.begin());
  highPass_.filter(newest);
  Analysis analysis = {.correlations = autocorrelate(speech_), .a = {}, .lsp = {}};
  analysis.a = levinsonDurbin_.solve(analysis.correlations.windowed.data());
  analysis.lsp = Coder::toLsp(analysis.a, lsp_);
  return analysis;
}

template <class Coder>
bool FrameEncoder<Coder>::detectVoice(const Analysis& analysis) {
  return !dtx_ || dtx_->detect(analysis.correlations, analysis.lsp, levinsonDurbin_.reflection()[1], speech_);
}

template <class Coder>
void FrameEncoder<Coder>::encodeSubframes(Zpp16s openLoopDelay, SpeechParameters& parameters) {
  Zpp16s centre = openLoopDelay;
  for (int s = 0; s < kSubframes; ++s) centre = encodeSubframe(s, centre, parameters.rate, parameters.subframes[s])[0];
  parameters.parity = delayParity(parameters.subframes[0].delay, parameters.rate);
}

// centre: where the delay is searched: at that of the frame, then at that of the first subframe
template <class Coder>
PitchDelay FrameEncoder<Coder>::encodeSubframe(int subframe, Zpp16s centre, Rate rate, SpeechParameters::Subframe& parameters) {
  SearchTarget search = self().searchTarget(subframe);

  // Adaptive codebook (clause 3.7)
  const PitchDelay delay = self().searchAdaptiveCodebook(subframe, centre, search);
  parameters.delay = delayCode(rate, subframe, delay, centre);
  Subframe adaptive;
  Zpp16s pitchGain = self().filterAdaptiveVector(subframe, search, adaptive);
  const bool tamed = taming_.isNeeded(delay);
  if (tamed) pitchGain = std::min<Zpp16s>(pitchGain, 15564);  // 0.95

  // Fixed codebook (clause 3.8)
  sharpen(search.impulse, delay[0], sharpening_);
  FixedTarget target = {.rest = {}, .impulse = search.impulse, .pitchGain = pitchGain};
  require(zppsAdaptiveCodebookContribution_G729_16s(pitchGain, adaptive.data(), search.target.data(), target.rest.data()));
  auto [code, fixed] = self().searchFixedCodebook(subframe, target, parameters);
  sharpen(code, delay[0], sharpening_);

  // Gains (clause 3.9)
  std::array<Zpp16s, 2> gains;
  const auto quantise = rate == Rate::kbit6 ? zppsGainQuant_G729D_16s : zppsGainQuant_G729_16s;
  require(quantise(search.target.data(), adaptive.data(), code.data(), fixed.data(), gainMemory_.data(), parameters.gains,
                   gains.data(), tamed));
  sharpening_ = sharpeningFor(gains[0]);
  taming_.update(gains[0], delay[0]);

  // Memories (clause 3.10)
  mixExcitation(excitation(subframe), code, gains[0], gains[1]);
  self().coded(subframe, search, {adaptive, gains[0], fixed, gains[1]});
  return delay;
}

template <class Coder>
auto FrameEncoder<Coder>::describeSilence() -> Silence {
  const auto sid = dtx_->playSilence({levinsonDurbin_, maMemory_, taming_, Coder::toLsp, filters_.last()}, excitation(0));
  sharpening_ = kLeastSharpening;
  return {sid, filters_.moveTo(dtx_->lsp())};
}

template <class Coder>
void FrameEncoder<Coder>::shift() {
  shiftFrame(speech_);
  shiftFrame(weightedSpeech_);
  shiftFrame(excitation_);
}

template class FrameEncoder<MainBodyEncoder>;
template class FrameEncoder<AnnexAEncoder>;

}  // namespace codecs::g729
