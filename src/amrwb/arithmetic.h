// Arithmetic that the steps of this room share: numbers with an exponent, and the random generator of
// 3GPP TS 26.173.
#pragma once

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/tables.h"
#include "lpc/dot_product.h"

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
