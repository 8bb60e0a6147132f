// Normalised correlation of the closed-loop pitch search: filtered excitation, portable kernel.
#include "amr/pitch/pitch_correlation.h"

#include "amr/pitch/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

void ownFilteredExcitation_GSMAMR_16s(const Zpp16s* excitation, int lag, const Zpp16s* impulse, Zpp16s* filtered) {
  const Zpp16s* past = excitation - lag;
  Zpp64s responseSum = 0;
  for (int n = 0; n < kSubframe; ++n) responseSum += absSat16(impulse[n]);
  if (ownMaxAbs_16s(past, kSubframe) * responseSum < 1 << 30) {  // no sum of doubled products can saturate
    ownConvPartial_16s_Sfs(past, impulse, filtered, kSubframe, 12);
    return;
  }
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = 0;
    for (int i = 0; i <= n; ++i) sum = macDbl(sum, past[i], impulse[n - i]);
    filtered[n] = high16(shlSat32(sum, 3));
  }
}

void ownNormCorr_GSMAMR_16s_PX(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag,
                               Zpp16s* corr) {
  Zpp16s filtered[kSubframe];
  ownFilteredExcitation_GSMAMR_16s(excitation, minLag, impulse, filtered);
  const bool loud = isLoud(filtered);
  if (loud) ownRShiftC_16s(filtered, filtered, kSubframe, 2);
  const int shift = loud ? 14 : 12;
  for (int lag = minLag; lag <= maxLag; ++lag) {
    Zpp32s energy = 0, product = 0;
    for (int n = 0; n < kSubframe; ++n) {
      energy = macDbl(energy, filtered[n], filtered[n]);
      product = macDbl(product, target[n], filtered[n]);
    }
    corr[lag - minLag] = normalisedCorrelation(product, energy);
    if (lag == maxLag) break;
    // One sample further back: the filtered excitation moves on and the response to the new sample is added.
    const Zpp16s sample = excitation[-lag - 1];
    for (int n = kSubframe - 1; n > 0; --n) filtered[n] = addSat16(filtered[n - 1], sat16((sample * impulse[n]) >> shift));
    filtered[0] = static_cast<Zpp16s>(loud ? sample >> 2 : sample);
  }
}
