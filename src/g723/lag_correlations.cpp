#include "g723/lag_correlations.h"

#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "lpc/kernels.h"

namespace g723 {

LagCorrelations correlateLags(const Zpp16s* src, Zpp32s ownEnergy, int len, const Zpp16s* moved, int count) {
  using namespace zpp;
  LagCorrelations result;
  ownCorr_16s32s(src, moved, len, result.correlation, count);
  Zpp64s energy = ownDotProd_16s(moved, moved, len);
  for (int i = 0; i < count; ++i, ++moved) {
    result.energy[i] = sat32(2 * energy);
    // By Cauchy and Schwarz the sums, modulo 2^32, are exact unless an energy saturates.
    const bool saturates = ownEnergy == kMax32 || result.energy[i] == kMax32;
    result.correlation[i] = saturates ? zpp::dotProductStepwise(src, moved, len) : wrap32(2 * Zpp64s{result.correlation[i]});
    if (i + 1 < count) energy += Zpp32s{moved[len]} * moved[len] - Zpp32s{*moved} * *moved;
  }
  return result;
}

}  // namespace g723
