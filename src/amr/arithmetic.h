// Arithmetic of 3GPP TS 26.073 beyond the basic operators.
#pragma once

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/dot_product.h"

namespace zpp::amr {

// shr and shrr of 16 bits for any count: a count below 0 shifts left with saturation.
constexpr Zpp16s shiftRight16(Zpp16s x, int n) { return shlSat16(x, -n); }
constexpr Zpp16s shiftRightRound16(Zpp16s x, int n) {  // shr_r
  if (n > 15) return 0;
  return n <= 0 ? shlSat16(x, -n) : static_cast<Zpp16s>(shr16(x, n) + ((x >> (n - 1)) & 1));
}
constexpr Zpp32s shiftRight32(Zpp32s x, int n) { return shlSat32(x, -n); }

// acc + x * y, its terms added with saturation
constexpr Zpp32s macDpf16(Zpp32s acc, Dpf x, Zpp16s y) {  // Mac_32_16
  return macDbl(macDbl(acc, x.hi, y), mulQ15(x.lo, y), 1);
}
constexpr Zpp32s macDpf(Zpp32s acc, Dpf x, Dpf y) {  // Mac_32
  return macDbl(macDbl(macDbl(acc, x.hi, y.hi), mulQ15(x.hi, y.lo), 1), mulQ15(x.lo, y.hi), 1);
}
constexpr Zpp32s mulDpf16(Zpp32s x, Zpp16s y) { return zpp::mulDpf16(toDpf(x), y); }

// Base-2 logarithm as exponent (hi) and fraction of 15 bits (lo)
inline Dpf logarithm(Zpp32s x) {
  Dpf result;
  ownLog2(x, &result.hi, &result.lo);
  return result;
}

// Upper half of a sum, normalised, and the shift
struct Normalised {
  Zpp16s value;
  int shift;
};
inline Normalised normalised(Zpp32s x) {
  const int shift = norm32(x);
  return {high16(shlWrap32(x, shift)), shift};
}

// The square root of x * 2^shift, in the format of x; shift is even
struct Root {
  Zpp32s value;
  int shift;
};
Root squareRoot(Zpp32s x);  // sqrt_l_exp

// The median of an odd number of up to 9 values
Zpp16s median(const Zpp16s* values, int count);  // gmed_n

}  // namespace zpp::amr
