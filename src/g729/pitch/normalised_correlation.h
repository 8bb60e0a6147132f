// Correlations of the pitch searches, divided by the root of an energy.
#pragma once

#include "core/fixed_point.h"
#include "core/kernels.h"

namespace zpp {

// Twice the sum of products, saturated after each step
inline Zpp32s dotSat(const Zpp16s* src1, const Zpp16s* src2, int len) {
  Zpp32s acc = 0;
  for (int n = 0; n < len; ++n) acc = macDbl(acc, src1[n], src2[n]);
  return acc;
}

// corr / sqrt(energy), both doubled sums, in the scale of the root's table
inline Zpp32s overRoot(Zpp32s corr, Zpp32s energy) { return mulDpf(toDpf(corr), toDpf(ownInvSqrt(energy))); }

}  // namespace zpp
