#include "codecs/g729/postfilter.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::g729 {
namespace {

constexpr Zpp16s kNumeratorWeight = 18022, kDenominatorWeight = 22938;  // 0.55 and 0.7

// The first reflection coefficient of a response, Q15, -r(1) / r(0); 0 where it would not be stable
Zpp16s tiltOf(std::span<const Zpp16s, 20> impulse) {
  Zpp32s r0 = 0, r1 = 0;
  for (std::size_t n = 0; n < impulse.size(); ++n) {
    r0 = macDbl(r0, impulse[n], impulse[n]);
    if (n > 0) r1 = macDbl(r1, impulse[n - 1], impulse[n]);
  }
  const int norm = norm32(r0);
  const Zpp16s energy = high16(shlSat32(r0, norm)), correlation = high16(shlSat32(r1, norm)), magnitude = absSat16(correlation);
  if (energy < magnitude || energy == 0) return 0;
  const auto tilt = static_cast<Zpp16s>(std::min((magnitude << 15) / energy, 32767));
  return correlation > 0 ? static_cast<Zpp16s>(-tilt) : tilt;
}

}  // namespace

void Postfilter::shiftHistory() {
  std::copy(residual_.begin() + kSubframeSize, residual_.end(), residual_.begin());
  std::copy(shortTerm_.end() - kOrder, shortTerm_.end(), shortTerm_.begin());
}

bool MainBodyPostfilter::filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output) {
  Zpp16s* const residual = residual_.data() + kPastResidual;
  Zpp16s* const shortTerm = shortTerm_.data() + kOrder;
  require(zppsResidualFilter_G729_16s(weight(a, kNumeratorWeight).data(), synthesis, residual, kSubframeSize));
  Zpp16s selected = 0;
  if (noise) {
    std::copy_n(residual, kSubframeSize, shortTerm);
  } else {
    // A lost frame may repeat the 144 of a second subframe, for which the filter's search would look beyond its history.
    require(zppsLongTermPostFilter_G729_16s(16384, std::min(delay, kLongestDelay), residual, shortTerm, &selected));
  }
  std::array<Zpp16s, 20> impulse;
  warns(zppsShortTermPostFilter_G729_16s(a.data(), shortTerm, shortTerm, impulse.data()));
  std::copy_n(shortTerm, kSubframeSize, output);
  require(zppsTiltCompensation_G729_16s(tiltOf(impulse), output, &tiltMemory_));
  require(zppsGainControl_G729_16s_I(synthesis, output, &gain_));
  shiftHistory();
  return selected != 0;
}

bool AnnexAPostfilter::filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output) {
  Zpp16s* const shortTerm = shortTerm_.data() + kOrder;
  std::array<Zpp16s, 2 * (kOrder + 1)> weights;  // numerator and denominator, as the tilt compensation wants them
  Zpp16s* const numerator = weights.data();
  Zpp16s* const denominator = numerator + kOrder + 1;
  std::ranges::copy(weight(a, kNumeratorWeight), numerator);
  std::ranges::copy(weight(a, kDenominatorWeight), denominator);
  // The sample before the subframe is the memory of the tilt compensation.
  std::array<Zpp16s, 1 + kSubframeSize> harmonic;
  harmonic[0] = tiltMemory_;
  if (noise) {
    Zpp16s* const residual = residual_.data() + kPastResidual;
    require(zppsResidualFilter_G729_16s(numerator, synthesis, residual, kSubframeSize));
    std::copy_n(residual, kSubframeSize, harmonic.data() + 1);
  } else {
    require(zppsLongTermPostFilter_G729A_16s(delay, synthesis, numerator, residual_.data(), harmonic.data() + 1));
  }
  require(zppsTiltCompensation_G729A_16s(weights.data(), harmonic.data() + 1));
  tiltMemory_ = harmonic[0];
  warns(zppsShortTermPostFilter_G729A_16s(denominator, harmonic.data() + 1, shortTerm));
  std::copy_n(shortTerm, kSubframeSize, output);
  require(zppsGainControl_G729A_16s_I(synthesis, output, &gain_));
  shiftHistory();
  return !noise;
}

}  // namespace codecs::g729
