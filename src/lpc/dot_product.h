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

// The products of a number of samples that the compiler knows, where they are known to fit 32 bits. It sees a form that it has
// vectors for.
template <int len>
constexpr Zpp32s exactDotProduct(const Zpp16s* x, const Zpp16s* y) {
  Zpp32s sum = 0;
  for (int n = 0; n < len; ++n) sum += x[n] * y[n];
  return sum;
}

// Sums of doubled products that saturate at every step, and are then shifted left by `shift`, up to 14, rounded and saturated
// to 16 bits: whatever the steps do, the result is that of the exact sum if the magnitudes of all products stay within this. At
// the first step that saturates 2^30 of them are spent. The rest takes neither sum further back than to 2^31 less all of them,
// which is 2^(30 - shift) or more and saturates at the end. (The product of two numbers of -32768 must not occur.)
constexpr Zpp64s magnitudesThatRound(int shift) { return (Zpp64s{1} << 31) - (Zpp64s{1} << (30 - shift)); }
// That result, of the exact sum of products
constexpr Zpp16s roundedSum(Zpp32s sum, int shift) { return sat16((sum + (1 << (14 - shift))) >> (15 - shift)); }

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
