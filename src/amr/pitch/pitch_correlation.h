// What the portable and the vector kernel of the normalised correlation share (3GPP TS 26.090 clause 5.6).
#pragma once

#include "amr/fixed_codebook/grid.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

// Filtered excitation that loud is kept divided by 4. Decided once a search, at the smallest lag.
inline bool isLoud(const Zpp16s* filtered) { return 2 * ownDotProd_16s(filtered, filtered, kSubframe) > 1 << 26; }

// product / sqrt(energy), both sums of doubled products
inline Zpp16s normalisedCorrelation(Zpp32s product, Zpp32s energy) {
  return zpp::sat16(zpp::mulDpf(zpp::toDpf(product), zpp::toDpf(ownInvSqrt(energy))));
}
