// Energies and sums of products as the standards take them, each term doubled and added with saturation, without the steps
// where a bound allows it.
#pragma once

#include <bit>

#include "core/fixed_point.h"
#include "core/kernels.h"

namespace zpp {

// start + the doubled squares of x. No term is negative, so saturation at every step is saturation at the end.
inline Zpp32s energy(const Zpp16s* x, int len, Zpp32s start = 0) { return sat32(start + 2 * ownDotProd_16s(x, x, len)); }

// By Cauchy and Schwarz, no partial sum of products of x and y reaches 2^30 when the product of their exact energies stays
// below 2^60: then no doubled sum saturates, nor one that started at 1.
constexpr bool productsFit(Zpp64s energy1, Zpp64s energy2) {
  return std::bit_width(static_cast<std::uint64_t>(energy1)) + std::bit_width(static_cast<std::uint64_t>(energy2)) <= 60;
}

// start + the doubled products of x and y, each added with saturation
inline Zpp32s dotProductStepwise(const Zpp16s* x, const Zpp16s* y, int len, Zpp32s start = 0) {
  for (int n = 0; n < len; ++n) start = macDbl(start, x[n], y[n]);
  return start;
}
// The same for a start of 0 or 1; energies: exact, of x and y
inline Zpp32s dotProduct(const Zpp16s* x, const Zpp16s* y, int len, Zpp32s start, Zpp64s energyX, Zpp64s energyY) {
  if (!productsFit(energyX, energyY)) return dotProductStepwise(x, y, len, start);
  return start + 2 * static_cast<Zpp32s>(ownDotProd_16s(x, y, len));
}
inline Zpp32s dotProduct(const Zpp16s* x, const Zpp16s* y, int len, Zpp32s start = 0) {
  return dotProduct(x, y, len, start, ownDotProd_16s(x, x, len), ownDotProd_16s(y, y, len));
}

}  // namespace zpp
