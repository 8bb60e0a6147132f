#include "g729_encoder.h"

#include <algorithm>

#include "codec.h"
#include "fixed_point.h"
#include "g729_annex_a.h"
#include "g729_main_body.h"

namespace codecs::g729 {
namespace {

// P1 or P2 (clause 3.7.2)
Zpp16s delayCode(int subframe, const PitchDelay& delay, int around) {
  const auto [samples, thirds] = delay;
  const int offset = subframe == 1   ? 3 * (samples - earliestDelay(around)) + 2 + thirds
                     : samples <= 85 ? 3 * samples - 58 + thirds
                                     : samples + 112;
  return static_cast<Zpp16s>(offset);
}

// The code vector through the impulse response: a copy of the response for each pulse
Subframe filterCode(const std::array<Zpp16s, 2>& codeword, const Subframe& impulse) {
  const auto [signs, positions] = codeword;
  const int last = positions >> 9;
  const std::array<int, 4> pulses = {5 * (positions & 7), 5 * (positions >> 3 & 7) + 1, 5 * (positions >> 6 & 7) + 2,
                                     5 * (last >> 1) + 3 + (last & 1)};
  Subframe filtered{};
  for (int k = 0; k < 4; ++k) {
    const auto accumulate = signs >> k & 1 ? zppsAdd_16s_I : zppsSub_16s_I;
    require(accumulate(impulse.data(), filtered.data() + pulses[k], kSubframeSize - pulses[k]));
  }
  return filtered;
}

template <std::size_t size>
void shift(std::array<Zpp16s, size>& buffer) {
  std::copy(buffer.begin() + kFrameSize, buffer.end(), buffer.begin());
}

}  // namespace

FrameEncoder::FrameEncoder(bool discontinuous) {
  if (discontinuous) dtx_.emplace();
}

Frame FrameEncoder::encode(std::span<const Zpp16s, kFrameSize> samples) {
  const auto newest = std::span(speech_).last<kFrameSize>();
  std::ranges::copy(samples, newest.begin());
  highPass_.filter(newest);

  const Correlations correlations = autocorrelate(speech_);
  const Filter a = levinsonDurbin_.solve(correlations.windowed.data());
  const Lsp lsp = toLsp(a, lsp_);
  analysed(a, levinsonDurbin_.reflection(), lsp_, lsp);
  lsp_ = lsp;

  Frame frame;
  if (!dtx_ || dtx_->isSpeech(correlations, lsp, levinsonDurbin_.reflection()[1], speech_)) {
    frame = {.type = FrameType::speech, .speech = encodeSpeech()};
  } else if (const auto sid = encodeSilence()) {
    frame = {.type = FrameType::sid, .sid = *sid};
  }
  shift(speech_);
  shift(weighted_);
  shift(excitation_);
  return frame;
}

// The filters of the decoder, on the way from the LSPs of the frame before
SubframeFilters FrameEncoder::moveTo(const Lsp& quantisedLsp) {
  const SubframeFilters filters = interpolate(quantisedLsp_, quantisedLsp);
  quantisedLsp_ = quantisedLsp;
  return filters;
}

SpeechParameters FrameEncoder::encodeSpeech() {
  SpeechParameters parameters;
  Lsp quantisedLsp;
  require(zppsLSPQuant_G729_16s(lsp_.data(), maMemory_.data(), quantisedLsp.data(), parameters.lsp.data()));
  const SubframeFilters filters = moveTo(quantisedLsp);
  for (int s = 0; s < kSubframes; ++s)
    require(zppsResidualFilter_G729_16s(filters[s].data(), speech(s), excitation(s), kSubframeSize));
  quantised(filters);

  Zpp16s around = openLoopDelay();
  for (int s = 0; s < kSubframes; ++s) parameters.subframes[s] = encodeSubframe(s, around);
  parameters.parity = delayParity(parameters.subframes[0].delay);
  return parameters;
}

// around: the delay around which the subframe's is searched; then that for the next subframe
SpeechParameters::Subframe FrameEncoder::encodeSubframe(int subframe, Zpp16s& around) {
  SpeechParameters::Subframe parameters;
  Goal goal = this->goal(subframe);

  // Adaptive codebook (clause 3.7)
  const PitchDelay delay = searchAdaptiveCodebook(subframe, around, goal);
  parameters.delay = delayCode(subframe, delay, around);
  around = delay[0];
  Subframe adaptive;
  Zpp16s pitchGain = filterAdaptiveVector(subframe, goal, adaptive);
  const bool tamed = taming_.isNeeded(delay);
  if (tamed) pitchGain = std::min<Zpp16s>(pitchGain, 15564);  // 0.95

  // Fixed codebook (clause 3.8)
  Subframe rest, correlation, code;
  require(zppsAdaptiveCodebookContribution_G729_16s(pitchGain, adaptive.data(), goal.target.data(), rest.data()));
  sharpen(goal.impulse, delay[0], sharpening_);
  alignas(16) std::array<Zpp32s, 616> matrix;
  require(zppsToeplizMatrix_G729_16s32s(goal.impulse.data(), matrix.data()));
  require(zppsCrossCorr_NormM_16s(rest.data(), goal.impulse.data(), kSubframeSize, correlation.data()));
  const auto codeword = searchFixedCodebook(subframe, correlation, matrix.data(), code);
  parameters.signs = codeword[0];
  parameters.positions = codeword[1];
  const Subframe fixed = filterCode(codeword, goal.impulse);
  sharpen(code, delay[0], sharpening_);

  // Gains (clause 3.9)
  std::array<Zpp16s, 2> gains;
  require(zppsGainQuant_G729_16s(goal.target.data(), adaptive.data(), code.data(), fixed.data(), gainMemory_.data(),
                                 parameters.gains, gains.data(), tamed));
  sharpening_ = sharpeningFor(gains[0]);
  taming_.update(gains[0], delay[0]);

  // Memories (clause 3.10)
  mixExcitation(excitation(subframe), code, gains[0], gains[1]);
  coded(subframe, goal, {adaptive, gains[0], fixed, gains[1]});
  return parameters;
}

// Annex B clause B.4: what the decoder will play, and its description when that has changed
std::optional<SidParameters> FrameEncoder::encodeSilence() {
  const auto convert = [this](const Filter& a) { return toLsp(a, quantisedLsp_); };
  const auto sid = dtx_->describeSilence(levinsonDurbin_, convert, maMemory_);
  dtx_->fillExcitation(excitation(0), taming_);
  passedSilence(moveTo(dtx_->lsp()));
  sharpening_ = kLeastSharpening;
  return sid;
}

std::array<Zpp16s, kOrder> FrameEncoder::weightedError(const Goal& goal, const Result& result) {
  std::array<Zpp16s, kOrder> error;
  for (int i = 0, n = kSubframeSize - kOrder; i < kOrder; ++i, ++n) {
    const Zpp16s adaptive = high16(shlSat32(mulDbl(result.adaptive[n], result.pitchGain), 1));
    const Zpp16s fixed = high16(shlSat32(mulDbl(result.fixed[n], result.codeGain), 2));
    error[i] = subSat16(goal.target[n], addSat16(adaptive, fixed));
  }
  return error;
}

std::unique_ptr<FrameEncoder> makeFrameEncoder(Variant variant, bool discontinuous) {
  if (variant == Variant::mainBody) return std::make_unique<MainBodyEncoder>(discontinuous);
  return std::make_unique<AnnexAEncoder>(discontinuous);
}

}  // namespace codecs::g729
