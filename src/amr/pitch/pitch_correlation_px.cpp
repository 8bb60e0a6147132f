// Normalised correlation of the closed-loop pitch search: filtered excitation, portable kernel.
#include "amr/pitch/pitch_correlation.h"

#include <utility>

#include "amr/pitch/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/dot_product.h"
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

namespace {

// Energy of the filtered excitation: exact where it fits 32 bits, and that is seldom far from the end
Zpp64s energyOf(const Zpp16s* x) {
  Zpp16s bits = 0;
  for (int n = 0; n < kSubframe; ++n) bits = static_cast<Zpp16s>(bits | (x[n] ^ (x[n] >> 15)));
  return bits < 4096 ? exactDotProduct<kSubframe>(x, x) : ownDotProd_16s(x, x, kSubframe);
}

// One sample further back: the filtered excitation moves on and the response to the new sample is added. largest: of the
// response's magnitudes, or one more.
void moveOn(const Zpp16s* filtered, const Zpp16s* impulse, int largest, Zpp16s sample, int shift, Zpp16s* moved) {
  if (absSat16(sample) * largest >> shift < kMax16) {
    Zpp16s added[kSubframe];
    for (int n = 0; n < kSubframe; ++n) added[n] = static_cast<Zpp16s>((sample * impulse[n]) >> shift);
    Zpp16s overflows = 0;  // in the sign bit
    for (int n = 1; n < kSubframe; ++n) {
      const auto sum = static_cast<Zpp16s>(filtered[n - 1] + added[n]);
      overflows = static_cast<Zpp16s>(overflows | ((sum ^ filtered[n - 1]) & (sum ^ added[n])));
      moved[n] = sum;
    }
    if (overflows >= 0) return;
  }
  for (int n = 1; n < kSubframe; ++n) moved[n] = addSat16(filtered[n - 1], sat16((sample * impulse[n]) >> shift));
}

}  // namespace

void ownNormCorr_GSMAMR_16s_PX(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag,
                               Zpp16s* corr) {
  Zpp16s buffer[2][kSubframe];
  Zpp16s *filtered = buffer[0], *moved = buffer[1];
  ownFilteredExcitation_GSMAMR_16s(excitation, minLag, impulse, filtered);
  const bool loud = isLoud(filtered);
  if (loud) ownRShiftC_16s(filtered, filtered, kSubframe, 2);
  const int shift = loud ? 14 : 12, largest = ownMaxAbs_16s(impulse, kSubframe) + 1;
  const Zpp64s energyTarget = ownDotProd_16s(target, target, kSubframe);
  for (int lag = minLag; lag <= maxLag; ++lag) {
    const Zpp64s energy = energyOf(filtered);
    const Zpp32s product = productsFit(energyTarget, energy) ? 2 * exactDotProduct<kSubframe>(target, filtered)
                                                             : dotProductStepwise(target, filtered, kSubframe);
    corr[lag - minLag] = normalisedCorrelation(product, sat32(2 * energy));
    if (lag == maxLag) break;
    const Zpp16s sample = excitation[-lag - 1];
    moveOn(filtered, impulse, largest, sample, shift, moved);
    moved[0] = static_cast<Zpp16s>(loud ? sample >> 2 : sample);
    std::swap(filtered, moved);
  }
}
