#include "codecs/g729/single_precision/encoder.h"

#include "codecs/codec.h"
#include "codecs/g729/delay_coding.h"
#include "codecs/g729/single_precision/tables.h"

namespace codecs::g729f {

DelayRange delaysAround(int centre, int subframe) {
  const int below = subframe == 0 ? 3 : 5, width = subframe == 0 ? 6 : 9;
  const int least = std::clamp(centre - below, int{kShortestDelay}, kLongestDelay - width);
  return {least, least + width};
}

Subframe convolve(const Subframe& input, const Subframe& impulse) {
  Subframe output{};
  for (int k = 0; k < kSubframeSize; ++k) {
    if (input[k] == 0) continue;
    for (int n = k; n < kSubframeSize; ++n) output[n] += input[k] * impulse[n - k];
  }
  return output;
}

Subframe backwardFilter(const Subframe& target, const Subframe& impulse) {
  Subframe correlation;
  for (int n = 0; n < kSubframeSize; ++n) correlation[n] = product(target.data() + n, impulse.data(), kSubframeSize - n);
  return correlation;
}

template <class Coder>
SpeechParameters FrameEncoder<Coder>::encode(const Zpp16s* samples) {
  const auto newest = std::span(speech_).template last<kFrameSize>();
  std::copy_n(samples, kFrameSize, newest.begin());
  highPass_.filter(newest);
  analyse();
  const Lsp lsp = Coder::toLsp(filter_, lsp_);
  self().analysed(filter_, reflection_, lsp_, lsp);
  lsp_ = lsp;

  SpeechParameters parameters;
  const SubframeFilters filters = quantise(parameters);
  for (int s = 0; s < kSubframes; ++s) residual(filters[s], speech(s), excitation(s));
  self().quantised(filters);

  int centre = self().openLoopDelay();
  for (int s = 0; s < kSubframes; ++s) centre = encodeSubframe(s, centre, parameters.subframes[s])[0];
  parameters.parity = g729::delayParity(parameters.subframes[0].delay, parameters.rate);
  shiftFrame(speech_);
  shiftFrame(weightedSpeech_);
  shiftFrame(excitation_);
  return parameters;
}

// The LP filter (clauses 3.2.1 and 3.2.2); an unstable one gives way to the last that was not.
template <class Coder>
void FrameEncoder<Coder>::analyse() {
  std::array<Zpp32f, kWindowSize> windowed;
  require(zppsMul_32f(speech_.data(), lpWindow.data(), windowed.data(), kWindowSize));
  std::array<Zpp32f, kOrder + 1> autocorrelation;
  for (int lag = 0; lag <= kOrder; ++lag)
    autocorrelation[lag] = product(windowed.data(), windowed.data() + lag, kWindowSize - lag);
  autocorrelation[0] = std::max(autocorrelation[0], 1.f);
  for (int lag = 1; lag <= kOrder; ++lag) autocorrelation[lag] *= lagWindow[lag - 1];
  Filter a;
  std::array<Zpp32f, kOrder> reflection;
  Zpp32f energy;
  if (warns(zppsLevinsonDurbin_G729_32f(autocorrelation.data(), kOrder, a.data(), reflection.data(), &energy))) return;
  filter_ = a;
  reflection_ = {reflection[0], reflection[1]};
}

template <class Coder>
SubframeFilters FrameEncoder<Coder>::quantise(SpeechParameters& parameters) {
  Lsf codeVector;
  Lsp lsp;
  require(zppsLSPQuant_G729E_32f(lsp_.data(), maMemory_.data(), codeVector.data(), lsp.data(), parameters.lsp.data()));
  maMemory_.push(codeVector);
  return filters_.moveTo(lsp);
}

// centre: where the delay is searched: at that of the frame, then at that of the first subframe
template <class Coder>
PitchDelay FrameEncoder<Coder>::encodeSubframe(int subframe, int centre, SpeechParameters::Subframe& parameters) {
  SearchTarget search = self().searchTarget(subframe);
  const Subframe& target = search.target;

  // Adaptive codebook (clause 3.7)
  const PitchDelay delay = self().searchAdaptiveCodebook(subframe, centre, search);
  parameters.delay = g729::delayCode(g729::Rate::kbit8, subframe, delay, centre);
  const Subframe adaptive = self().filterAdaptiveVector(subframe, search);
  const Zpp32f best = product(target.data(), adaptive.data()) / (energyOf(adaptive.data()) + 0.01f);
  const bool tamed = taming_.isNeeded(delay);
  const Zpp32f pitchGain = std::clamp(best, 0.f, tamed ? 0.95f : 1.2f);

  // Fixed codebook (clause 3.8)
  Subframe rest, code;
  require(zppsAdaptiveCodebookContribution_G729_32f(pitchGain, adaptive.data(), target.data(), rest.data()));
  if (delay[0] < kSubframeSize) sharpen(search.impulse, delay[0], sharpening_);
  std::array<Zpp32f, 616> matrix;
  require(zppsToeplizMatrix_G729_32f(search.impulse.data(), matrix.data()));
  const auto [signs, positions] =
      self().searchFixedCodebook(subframe, backwardFilter(rest, search.impulse), matrix.data(), code);
  parameters.signs = signs;
  parameters.positions = positions;
  const Subframe fixed = convolve(code, search.impulse);
  sharpen(code, delay[0], sharpening_);

  // Gains (clause 3.9)
  std::array<Zpp32f, 2> gains;
  require(zppsGainCodebookSearch_G729_32f(target.data(), adaptive.data(), code.data(), fixed.data(), gainMemory_.data(),
                                          parameters.gains, gains.data(), tamed));
  sharpening_ = sharpeningFor(gains[0]);
  taming_.update(gains[0], delay[0]);

  // Memories (clause 3.10)
  mixExcitation(excitation(subframe), code, gains[0], gains[1]);
  for (int n = 0; n < kSubframeSize; ++n) rest[n] = target[n] - gains[0] * adaptive[n] - gains[1] * fixed[n];
  self().coded(subframe, rest);
  return delay;
}

template class FrameEncoder<MainBodyEncoder>;
template class FrameEncoder<AnnexAEncoder>;

}  // namespace codecs::g729f
