#include "codecs/g729/encoder.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"
#include "codecs/g729/annex_a.h"
#include "codecs/g729/main_body.h"

namespace codecs::g729 {
namespace {

// P1 or P2 (clause 3.7.2)
Zpp16s delayCode(int subframe, const PitchDelay& delay, int firstDelay) {
  const auto [samples, thirds] = delay;
  if (subframe == 1) return static_cast<Zpp16s>(3 * (samples - earliestDelay(firstDelay)) + 2 + thirds);
  return static_cast<Zpp16s>(samples <= 85 ? 3 * samples - 58 + thirds : samples + 112);
}

// The code vector through the impulse response: a copy of the response for each pulse (clause 3.8)
Subframe filterCode(const std::array<Zpp16s, 2>& codeword, const Subframe& impulse) {
  const auto [signs, positions] = codeword;
  Subframe filtered{};
  int sign = signs;
  for (const int position : pulsePositions(positions)) {
    const auto accumulate = sign & 1 ? zppsAdd_16s_I : zppsSub_16s_I;
    require(accumulate(impulse.data(), filtered.data() + position, kSubframeSize - position));
    sign >>= 1;
  }
  return filtered;
}

}  // namespace

template <class Coder>
FrameEncoder<Coder>::FrameEncoder(bool discontinuous) {
  if (discontinuous) dtx_.emplace();
}

template <class Coder>
Frame FrameEncoder<Coder>::encode(std::span<const Zpp16s, kFrameSize> samples) {
  const auto newest = std::span(speech_).template last<kFrameSize>();
  std::ranges::copy(samples, newest.begin());
  highPass_.filter(newest);

  const Correlations correlations = autocorrelate(speech_);
  const Filter a = levinsonDurbin_.solve(correlations.windowed.data());
  const Lsp lsp = self().toLsp(a, lsp_);
  self().analysed(a, levinsonDurbin_.reflection(), lsp_, lsp);
  lsp_ = lsp;

  Frame frame;
  if (!dtx_ || dtx_->take(correlations, lsp, levinsonDurbin_.reflection()[1], speech_)) {
    frame = {.type = FrameType::speech, .speech = encodeSpeech()};
  } else if (const auto sid = encodeSilence()) {
    frame = {.type = FrameType::sid, .sid = *sid};
  }
  shiftFrame(speech_);
  shiftFrame(weightedSpeech_);
  shiftFrame(excitation_);
  return frame;
}

template <class Coder>
SpeechParameters FrameEncoder<Coder>::encodeSpeech() {
  SpeechParameters parameters;
  Lsp quantisedLsp;
  require(zppsLSPQuant_G729_16s(lsp_.data(), maMemory_.data(), quantisedLsp.data(), parameters.lsp.data()));
  const SubframeFilters filters = filters_.moveTo(quantisedLsp);
  for (int s = 0; s < kSubframes; ++s)
    require(zppsResidualFilter_G729_16s(filters[s].data(), speech(s), excitation(s), kSubframeSize));
  self().quantised(filters);

  Zpp16s centre = self().openLoopDelay();
  for (int s = 0; s < kSubframes; ++s) centre = encodeSubframe(s, centre, parameters.subframes[s])[0];
  parameters.parity = delayParity(parameters.subframes[0].delay);
  return parameters;
}

// centre: where the delay is searched: at that of the frame, then at that of the first subframe
template <class Coder>
PitchDelay FrameEncoder<Coder>::encodeSubframe(int subframe, Zpp16s centre, SpeechParameters::Subframe& parameters) {
  SearchTarget search = self().searchTarget(subframe);

  // Adaptive codebook (clause 3.7)
  const PitchDelay delay = self().searchAdaptiveCodebook(subframe, centre, search);
  parameters.delay = delayCode(subframe, delay, centre);
  Subframe adaptive;
  Zpp16s pitchGain = self().filterAdaptiveVector(subframe, search, adaptive);
  const bool tamed = taming_.isNeeded(delay);
  if (tamed) pitchGain = std::min<Zpp16s>(pitchGain, 15564);  // 0.95

  // Fixed codebook (clause 3.8)
  Subframe rest, correlation, code;
  require(zppsAdaptiveCodebookContribution_G729_16s(pitchGain, adaptive.data(), search.target.data(), rest.data()));
  sharpen(search.impulse, delay[0], sharpening_);
  alignas(16) CorrelationMatrix matrix;
  require(zppsToeplizMatrix_G729_16s32s(search.impulse.data(), matrix.data()));
  require(zppsCrossCorr_NormM_16s(rest.data(), search.impulse.data(), kSubframeSize, correlation.data()));
  const auto codeword = self().searchFixedCodebook(subframe, correlation, matrix, code);
  parameters.signs = codeword[0];
  parameters.positions = codeword[1];
  const Subframe fixed = filterCode(codeword, search.impulse);
  sharpen(code, delay[0], sharpening_);

  // Gains (clause 3.9)
  std::array<Zpp16s, 2> gains;
  require(zppsGainQuant_G729_16s(search.target.data(), adaptive.data(), code.data(), fixed.data(), gainMemory_.data(),
                                 parameters.gains, gains.data(), tamed));
  sharpening_ = sharpeningFor(gains[0]);
  taming_.update(gains[0], delay[0]);

  // Memories (clause 3.10)
  mixExcitation(excitation(subframe), code, gains[0], gains[1]);
  self().coded(subframe, search, {adaptive, gains[0], fixed, gains[1]});
  return delay;
}

// Annex B clause B.4: what the decoder will play, and its description when that has changed
template <class Coder>
std::optional<SidParameters> FrameEncoder<Coder>::encodeSilence() {
  const auto sid = dtx_->playSilence({levinsonDurbin_, maMemory_, taming_, Coder::toLsp, filters_.last()}, excitation(0));
  self().passedSilence(filters_.moveTo(dtx_->lsp()));
  sharpening_ = kLeastSharpening;
  return sid;
}

template <class Coder>
FilterMemory FrameEncoder<Coder>::remainder(const SearchTarget& search, const Result& result) {
  FilterMemory left;
  for (int i = 0, n = kSubframeSize - kOrder; i < kOrder; ++i, ++n) {
    const Zpp16s adaptive = high16(shlSat32(mulDbl(result.adaptive[n], result.pitchGain), 1));
    const Zpp16s fixed = high16(shlSat32(mulDbl(result.fixed[n], result.codeGain), 2));
    left[i] = subSat16(search.target[n], addSat16(adaptive, fixed));
  }
  return left;
}

template class FrameEncoder<MainBodyEncoder>;
template class FrameEncoder<AnnexAEncoder>;

}  // namespace codecs::g729
