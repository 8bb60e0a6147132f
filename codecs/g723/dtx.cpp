#include "codecs/g723/dtx.h"

#include <algorithm>
#include <cstdlib>

namespace codecs::g723 {

Autocorrelation Dtx::sum(const Autocorrelation* terms, int count) {
  Zpp16s lags[kFrames][kOrder + 1], exponents[kFrames];
  for (int i = 0; i < count; ++i) {
    std::copy(terms[i].lags.begin(), terms[i].lags.end(), lags[i]);
    exponents[i] = terms[i].exponent;
  }
  Autocorrelation result;
  require(zppsAutoCorrSum_G723_16s(lags[0], exponents, result.lags.data(), &result.exponent, count));
  return result;
}

Filter Dtx::solve(const Autocorrelation& autocorrelation, Zpp16s& energy) {
  Filter filter;
  Zpp16s sine = 0;
  require(zppsLevinsonDurbin_G723_16s(autocorrelation.lags.data(), &sine, &energy, filter.data()));
  return filter;
}

Dtx::Reference Dtx::referenceOf(const Filter& filter) {
  Reference reference;
  require(zppsLPCAutoCorr_G723_16s(filter.data(), reference.lags.data(), &reference.shift));
  return reference;
}

// Whether a filter still fits the newest frame
bool Dtx::fits(const Reference& reference) const {
  Zpp16s similar = 0;
  require(zppsLPCSimilarity_G723_16s(reference.lags.data(), frames_[0].lags.data(), &similar, reference.shift, energies_[0]));
  return similar != 0;
}

Zpp16s Dtx::averageGain() const {
  Zpp16s exponents[kEnergies], index = 0;
  for (unsigned i = 0; i < kEnergies; ++i) exponents[i] = frames_[i].exponent;
  require(zppsSIDGainQuant_G723_16s(energies_.data(), exponents, &index, silentFrames_));
  return index;
}

void Dtx::take(const std::array<Autocorrelation, kSubframes>& subframes) {
  std::copy_backward(frames_.begin(), frames_.end() - 1, frames_.end());
  frames_[0] = sum(subframes.data(), kSubframes);
}

bool Dtx::isSpeech(const Zpp16s* input, Zpp16s sineDetector) {
  Zpp16s active = 0;
  require(zppsVAD_G723_16s(input, lags_.data(), noiseFilter_.data(), levels_.data(), counters_.data(), &active, sineDetector));
  return active != 0;
}

Frame Dtx::describe(const Lsf& previousLsf) {
  constexpr int kGainMargin = 3;
  std::copy_backward(energies_.begin(), energies_.end() - 1, energies_.end());
  const Filter latest = solve(frames_[0], energies_[0]);
  silentFrames_ = noise.playing() ? std::min(silentFrames_ + 1, kEnergies) : 1;
  const Zpp16s gain = averageGain();
  Frame frame;
  if (noise.playing() && fits(reference_) && std::abs(gain - describedGain_) <= kGainMargin) return frame;

  frame.kind = Kind::descriptor;
  frame.noiseGain = describedGain_ = gain;
  describeSpectrum(latest, previousLsf, frame);
  noise.setGain(gain);
  return frame;
}

// The filter of the three frames before, or the newest frame's own where that one does not fit
void Dtx::describeSpectrum(const Filter& latest, const Lsf& previousLsf, Frame& frame) {
  Zpp16s energy = 0;
  Filter filter = solve(sum(&frames_[1], kFrames - 1), energy);
  const bool adapts = counters_[2] == 0;
  if (adapts) noiseFilter_ = filter;
  reference_ = referenceOf(filter);
  if (!fits(reference_)) {
    filter = latest;
    reference_ = referenceOf(filter);
  }
  Lsf lsf;
  require(zppsLPCToLSF_G723_16s(filter.data(), previousLsf.data(), lsf.data()));
  require(zppsLSFQuant_G723_16s32s(lsf.data(), previousLsf.data(), &frame.lsfIndex));
  noise.setLsf(decodedLsf(frame.lsfIndex, previousLsf));
}

}  // namespace codecs::g723
