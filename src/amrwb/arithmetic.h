// Arithmetic that the steps of this room share: sums of products, numbers with an exponent, and the random generator of
// 3GPP TS 26.173.
#pragma once

#include <bit>

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/tables.h"

namespace zpp::amrwb {

inline constexpr int kFrame = 256, kSubframe = 64, kOrder = 16;  // at 12.8 kHz

// mantissa * 2^(exponent - 31)
struct Floating {
  Zpp32s mantissa;
  int exponent;
};

// num / den in Q15, defined for all arguments: 0 unless both are positive, 32767 from num = den on
constexpr Zpp16s quotientQ15(Zpp16s num, Zpp16s den) { return num <= 0 || den <= 0 ? Zpp16s{0} : divQ15(num, den); }

// x * 2^shift, rounded half up where it shifts right and saturated where it shifts left
constexpr Zpp16s scaleRound16(Zpp16s x, int shift) { return roundHigh16(shlSat32(fromHigh16(x), shift)); }
inline void scaleRound16(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) dst[n] = scaleRound16(src[n], shift);
}

// start + the doubled squares of x. No term is negative, so saturation at every step is saturation at the end.
inline Zpp32s energy(const Zpp16s* x, int len, Zpp32s start = 0) { return sat32(start + 2 * ownDotProd_16s(x, x, len)); }

// By Cauchy and Schwarz, no partial sum of products of x and y reaches 2^30 when the product of their exact energies stays
// below 2^60: then no doubled sum saturates, nor one that started at 1.
constexpr bool productsFit(Zpp64s energy1, Zpp64s energy2) {
  return std::bit_width(static_cast<std::uint64_t>(energy1)) + std::bit_width(static_cast<std::uint64_t>(energy2)) <= 60;
}

// start + the doubled products of x and y, each added with saturation
inline Zpp32s dotProductStepwise(const Zpp16s* x, const Zpp16s* y, int len, Zpp32s start) {
  for (int n = 0; n < len; ++n) start = macDbl(start, x[n], y[n]);
  return start;
}
// The same for a start of 0 or 1; energies: exact, of x and y
inline Zpp32s dotProduct(const Zpp16s* x, const Zpp16s* y, int len, Zpp32s start, Zpp64s energyX, Zpp64s energyY) {
  if (!productsFit(energyX, energyY)) return dotProductStepwise(x, y, len, start);
  return start + 2 * static_cast<Zpp32s>(ownDotProd_16s(x, y, len));
}
inline Zpp32s dotProduct(const Zpp16s* x, const Zpp16s* y, int len, Zpp32s start) {
  return dotProduct(x, y, len, start, ownDotProd_16s(x, x, len), ownDotProd_16s(y, y, len));
}

// A sum brought to 31 bits (Dot_product12's result): mantissa normalised, value = mantissa * 2^(exponent - 30)
constexpr Floating normalised(Zpp32s sum) {
  const int shift = norm32(sum);
  return {shlWrap32(sum, shift), 30 - shift};
}
inline Floating dotProduct12(const Zpp16s* x, const Zpp16s* y, int len) { return normalised(dotProduct(x, y, len, 1)); }
inline Floating energy12(const Zpp16s* x, int len) { return normalised(energy(x, len, 1)); }

// 1 / sqrt of a normalised number (Isqrt_n)
inline Floating inverseSqrt(Floating x) {
  if (x.mantissa <= 0) return {kMax32, 0};
  if (x.exponent % 2 != 0) x.mantissa >>= 1;
  const int i = (x.mantissa >> 25) - 16;
  const Zpp32s fraction = (x.mantissa >> 10) & 0x7fff;
  return {fromHigh16(tabsqr[i]) - 2 * fraction * tabsqr_diff[i], -((x.exponent - 1) >> 1)};
}

// The next value of the random generator, which is also its new state
constexpr Zpp16s nextRandom(Zpp16s& seed) { return seed = wrap16(31821 * seed + 13849); }

}  // namespace zpp::amrwb
