// Normalised correlations, adaptive-codebook vector and its filters: portable kernels.
#include <algorithm>
#include <type_traits>
#include <utility>

#include "amrwb/pitch/kernels.h"
#include "amrwb/pitch/pitch_correlation.h"
#include "amrwb/pitch/tables.h"

using namespace zpp;
using namespace zpp::amrwb;

void ownConvolution_AMRWB_16s_PX(const Zpp16s* src, const Zpp16s* impulse, Zpp16s* dst) {
  if (!productsFit(ownDotProd_16s(src, src, kSubframe), ownDotProd_16s(impulse, impulse, kSubframe))) {
    for (int n = 0; n < kSubframe; ++n) {
      Zpp32s sum = 0;
      for (int k = 0; k <= n; ++k) sum = macDbl(sum, src[k], impulse[n - k]);
      dst[n] = roundHigh16(sum);
    }
    return;
  }
  // Backwards the response lies as the source does; behind its start come zeros.
  Zpp16s backwards[kSubframe + 16] = {};
  std::reverse_copy(impulse, impulse + kSubframe, backwards);
  const auto ofQuarter = [&](auto quarter) {
    constexpr int first = 16 * quarter;
    for (int n = first; n < first + 16; ++n)
      dst[n] = roundedSum(exactDotProduct<first + 16>(src, backwards + kSubframe - 1 - n), 0);
  };
  ofQuarter(std::integral_constant<int, 0>{});
  ofQuarter(std::integral_constant<int, 1>{});
  ofQuarter(std::integral_constant<int, 2>{});
  ofQuarter(std::integral_constant<int, 3>{});
}

void ownRemove_AMRWB_16s_PX(const Zpp16s* x, const Zpp16s* y, Zpp16s gain, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = sat16((x[n] * 16384 - y[n] * gain) >> 14);
}

namespace {

// Whether all lie within -8192..8191
bool isQuiet(const Zpp16s* x) {
  Zpp16s bits = 0;
  for (int n = 0; n < kSubframe; ++n) bits = static_cast<Zpp16s>(bits | (x[n] ^ (x[n] >> 15)));
  return bits < 8192;
}

Zpp64s energyOfQuiet(const Zpp16s* x) {
  Zpp64s sum = 0;
  for (int n = 0; n < kSubframe; n += 16) sum += exactDotProduct<16>(x + n, x + n);
  return sum;
}

// One sample earlier: the response to the sample that enters, added to the old one delayed
void moveOn(const Zpp16s* filtered, const Zpp16s* impulse, Zpp16s entering, Zpp16s* moved) {
  Zpp16s response[kSubframe];
  for (int n = 0; n < kSubframe; ++n) response[n] = static_cast<Zpp16s>((entering * impulse[n]) >> 15);
  moved[0] = response[0];
  Zpp16s overflows = 0;  // in the sign bit
  for (int n = 1; n < kSubframe; ++n) {
    const auto sum = static_cast<Zpp16s>(filtered[n - 1] + response[n]);
    overflows = static_cast<Zpp16s>(overflows | ((sum ^ filtered[n - 1]) & (sum ^ response[n])));
    moved[n] = sum;
  }
  if (overflows >= 0 && entering != kMin16) return;
  moved[0] = mulQ15(entering, impulse[0]);
  for (int n = 1; n < kSubframe; ++n) moved[n] = addSat16(mulQ15(entering, impulse[n]), filtered[n - 1]);
}

}  // namespace

void ownNormCorr_AMRWB_16s_PX(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag,
                              Zpp16s* corr) {
  const Zpp64s energyTarget = ownDotProd_16s(target, target, kSubframe);
  const int targetScale = targetScaleOf(energyTarget);
  Zpp16s buffer[2][kSubframe];
  Zpp16s *filtered = buffer[0], *moved = buffer[1];
  ownConvolution_AMRWB_16s(excitation - minLag, impulse, filtered);
  for (int t = minLag;; ++t) {
    const Zpp64s energyFiltered = isQuiet(filtered) ? energyOfQuiet(filtered) : ownDotProd_16s(filtered, filtered, kSubframe);
    const Zpp32s correlation = productsFit(energyTarget, energyFiltered) ? 1 + 2 * exactDotProduct<kSubframe>(target, filtered)
                                                                         : dotProductStepwise(target, filtered, kSubframe, 1);
    *corr++ = normalisedCorrelation(correlation, energyFiltered, targetScale);
    if (t == maxLag) break;
    moveOn(filtered, impulse, excitation[-t - 1], moved);
    std::swap(filtered, moved);
  }
}

void ownPredLt_AMRWB_16s_I_PX(Zpp16s* excitation, int lag, int quarters) {
  const Zpp16s* past = excitation - lag - 15;
  if (quarters > 0) --past;
  const Zpp16s* const taps = excitationTaps[(4 - quarters) & 3];
  // The magnitudes of a filter's taps add up to 35692 at the most: no input needs the standard's steps.
  static_assert(32768 * Zpp64s{35692} <= magnitudesThatRound(1));
  for (int n = 0; n <= kSubframe; ++n) excitation[n] = roundedSum(exactDotProduct<32>(past + n, taps), 1);
}

void ownAdaptiveCodebookLowPass_AMRWB_16s_PX(const Zpp16s* src, Zpp16s* dst, int len) {
  // The taps add up to 32768: the doubled sum stays within 2^31, which rounding saturates.
  for (int n = 0; n < len; ++n) dst[n] = roundHigh16(macDbl(macDbl(mulDbl(5898, src[n - 1]), 20972, src[n]), 5898, src[n + 1]));
}
