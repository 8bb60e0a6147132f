// Normalised correlations, adaptive-codebook vector and its filters: portable kernels.
#include "amrwb/pitch/kernels.h"
#include "amrwb/pitch/pitch_correlation.h"
#include "amrwb/pitch/tables.h"

using namespace zpp;
using namespace zpp::amrwb;

void ownConvolution_AMRWB_16s_PX(const Zpp16s* src, const Zpp16s* impulse, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = 0;
    for (int k = 0; k <= n; ++k) sum = macDbl(sum, src[k], impulse[n - k]);
    dst[n] = roundHigh16(sum);
  }
}

void ownRemove_AMRWB_16s_PX(const Zpp16s* x, const Zpp16s* y, Zpp16s gain, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = sat16((x[n] * 16384 - y[n] * gain) >> 14);
}

void ownNormCorr_AMRWB_16s_PX(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag,
                              Zpp16s* corr) {
  const Zpp64s energyTarget = ownDotProd_16s(target, target, kSubframe);
  const int targetScale = targetScaleOf(energyTarget);
  Zpp16s filtered[kSubframe];
  ownConvolution_AMRWB_16s(excitation - minLag, impulse, filtered);
  for (int t = minLag;; ++t) {
    const Zpp64s energyFiltered = ownDotProd_16s(filtered, filtered, kSubframe);
    const Zpp32s correlation = dotProduct(target, filtered, kSubframe, 1, energyTarget, energyFiltered);
    *corr++ = normalisedCorrelation(correlation, energyFiltered, targetScale);
    if (t == maxLag) break;
    // One sample earlier: the response to the sample that enters, added to the old one delayed
    const Zpp16s entering = excitation[-t - 1];
    for (int n = kSubframe - 1; n > 0; --n) filtered[n] = addSat16(mulQ15(entering, impulse[n]), filtered[n - 1]);
    filtered[0] = mulQ15(entering, impulse[0]);
  }
}

void ownPredLt_AMRWB_16s_I_PX(Zpp16s* excitation, int lag, int quarters) {
  const Zpp16s* past = excitation - lag - 15;
  if (quarters > 0) --past;
  const Zpp16s* const taps = excitationTaps[(4 - quarters) & 3];
  for (int n = 0; n <= kSubframe; ++n) excitation[n] = roundHigh16(shlSat32(dotProductStepwise(past + n, taps, 32, 0), 1));
}

void ownAdaptiveCodebookLowPass_AMRWB_16s_PX(const Zpp16s* src, Zpp16s* dst, int len) {
  // The taps add up to 32768: the doubled sum stays within 2^31, which rounding saturates.
  for (int n = 0; n < len; ++n) dst[n] = roundHigh16(macDbl(macDbl(mulDbl(5898, src[n - 1]), 20972, src[n]), 5898, src[n + 1]));
}
