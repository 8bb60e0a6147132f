// Fixed-point operators: the arithmetic of the ITU-T basic operators (G.191 STL), written once.
//
// Names tell width and rounding: sat16/sat32 clamp an exact value; ...Sat16, ...Sat32 saturate their result; "dbl" products
// are doubled (Q15 x Q15 -> Q31); "wrap" operators keep the low bits on purpose. Nothing here has undefined behaviour for any
// argument: shifts beyond the width are written out and wrap-around runs in unsigned arithmetic.
// The comment behind an operator names the G.191 operator with the same result.
//
// ZPP_RANGE states what an operator takes and gives where that is less than all values of the type. A checked build
// (-DZPPSC_CHECKED=ON) stops at the first value outside; all other builds are the same with these lines or without.
#pragma once

#include <bit>
#include <cstdint>

#include "zppsc.h"

#ifdef ZPPSC_CHECKED
#include <cstdio>
#include <cstdlib>
#define ZPP_RANGE(condition) ((condition) ? void() : ::zpp::outOfRange(#condition, __func__, __FILE__, __LINE__))
#else
#define ZPP_RANGE(condition) void()
#endif

namespace zpp {

#ifdef ZPPSC_CHECKED
// With ZPPSC_OUT_OF_RANGE in the environment it goes on: for tests with arguments that no operator was made for.
inline void outOfRange(const char* condition, const char* operation, const char* file, int line) {
  if (std::getenv("ZPPSC_OUT_OF_RANGE") != nullptr) return;
  std::fprintf(stderr, "%s:%d: %s: not %s\n", file, line, operation, condition);
  std::abort();
}
#endif

inline constexpr Zpp32s kMax16 = 32767, kMin16 = -32768;
inline constexpr Zpp32s kMax32 = INT32_MAX, kMin32 = INT32_MIN;

constexpr bool isWord(Zpp32s x) { return x >= kMin16 && x <= kMax16; }

// --- Saturation and wrap-around of exact values -------------------------------------------------------------------------

constexpr Zpp16s sat16(Zpp32s x) { return static_cast<Zpp16s>(x > kMax16 ? kMax16 : x < kMin16 ? kMin16 : x); }
constexpr Zpp16s sat16(Zpp64s x) { return static_cast<Zpp16s>(x > kMax16 ? kMax16 : x < kMin16 ? kMin16 : x); }
constexpr Zpp32s sat32(Zpp64s x) { return static_cast<Zpp32s>(x > kMax32 ? kMax32 : x < kMin32 ? kMin32 : x); }
constexpr Zpp16s wrap16(Zpp32s x) { return static_cast<Zpp16s>(x); }
constexpr Zpp32s wrap32(Zpp64s x) { return static_cast<Zpp32s>(x); }
constexpr Zpp32s addWrap32(Zpp32s a, Zpp32s b) { return static_cast<Zpp32s>(static_cast<Zpp32u>(a) + static_cast<Zpp32u>(b)); }
constexpr Zpp32s subWrap32(Zpp32s a, Zpp32s b) { return static_cast<Zpp32s>(static_cast<Zpp32u>(a) - static_cast<Zpp32u>(b)); }
constexpr Zpp32s shlWrap32(Zpp32s x, int n) {
  ZPP_RANGE(n >= 0);
  return n > 31 ? 0 : static_cast<Zpp32s>(static_cast<Zpp32u>(x) << n);
}

// --- 16 bits ------------------------------------------------------------------------------------------------------------

constexpr Zpp16s addSat16(Zpp32s a, Zpp32s b) {  // add
  ZPP_RANGE(isWord(a) && isWord(b));
  return sat16(a + b);
}
constexpr Zpp16s subSat16(Zpp32s a, Zpp32s b) {  // sub
  ZPP_RANGE(isWord(a) && isWord(b));
  return sat16(a - b);
}
constexpr Zpp16s negSat16(Zpp32s a) {  // negate
  ZPP_RANGE(isWord(a));
  return sat16(-a);
}
constexpr Zpp16s absSat16(Zpp32s a) {  // abs_s
  ZPP_RANGE(isWord(a));
  return sat16(a < 0 ? -a : a);
}
constexpr Zpp16s mulQ15(Zpp16s a, Zpp16s b) { return sat16((Zpp32s{a} * b) >> 15); }               // mult
constexpr Zpp16s mulRoundQ15(Zpp16s a, Zpp16s b) { return sat16((Zpp32s{a} * b + 16384) >> 15); }  // mult_r
// x >> n, arithmetic, for any n of 0 or more
constexpr Zpp16s shr16(Zpp16s x, int n) {
  ZPP_RANGE(n >= 0);
  return static_cast<Zpp16s>(x >> (n > 15 ? 15 : n));
}
// x << n saturated; n below 0 shifts right
constexpr Zpp16s shlSat16(Zpp16s x, int n) {  // shl
  if (n <= 0) return shr16(x, -n);
  if (n > 15) return static_cast<Zpp16s>(x == 0 ? 0 : x > 0 ? kMax16 : kMin16);
  return sat16(Zpp32s{x} * (Zpp32s{1} << n));
}
// left shifts that bring bit 14 to differ from the sign bit; 0 for 0, 15 for -1
constexpr int norm16(Zpp16s x) {  // norm_s
  if (x == 0) return 0;
  const auto y = static_cast<Zpp16u>(x < 0 ? ~x : x);
  return std::countl_zero(y) - 1;
}
// num / den in Q15 by restoring division, for 0 <= num <= den, den > 0; 32767 for num = den
constexpr Zpp16s divQ15(Zpp16s num, Zpp16s den) {  // div_s
  ZPP_RANGE(num >= 0 && num <= den && den > 0);
  return num >= den ? static_cast<Zpp16s>(kMax16) : static_cast<Zpp16s>((Zpp32s{num} << 15) / den);
}

// --- 32 bits ------------------------------------------------------------------------------------------------------------

constexpr Zpp32s addSat32(Zpp32s a, Zpp32s b) {  // L_add
  Zpp32s sum = 0;
  return __builtin_add_overflow(a, b, &sum) ? (a < 0 ? kMin32 : kMax32) : sum;
}
constexpr Zpp32s subSat32(Zpp32s a, Zpp32s b) {  // L_sub
  Zpp32s difference = 0;
  return __builtin_sub_overflow(a, b, &difference) ? (a < 0 ? kMin32 : kMax32) : difference;
}
constexpr Zpp32s negSat32(Zpp32s a) { return a == kMin32 ? kMax32 : -a; }  // L_negate
constexpr Zpp32s absSat32(Zpp32s a) { return a < 0 ? negSat32(a) : a; }    // L_abs
constexpr Zpp32s mulDbl(Zpp16s a, Zpp16s b) {                              // L_mult
  const Zpp32s p = Zpp32s{a} * b;
  return p == 0x40000000 ? kMax32 : p * 2;
}
constexpr Zpp32s macDbl(Zpp32s acc, Zpp16s a, Zpp16s b) { return addSat32(acc, mulDbl(a, b)); }  // L_mac
constexpr Zpp32s msuDbl(Zpp32s acc, Zpp16s a, Zpp16s b) { return subSat32(acc, mulDbl(a, b)); }  // L_msu
constexpr Zpp32s mul32Q15(Zpp32s x, Zpp16s c) { return sat32((Zpp64s{x} * c) >> 15); }           // L_mls
constexpr Zpp32s shr32(Zpp32s x, int n) {
  ZPP_RANGE(n >= 0);
  return x >> (n > 31 ? 31 : n);
}
// x << n saturated; n below 0 shifts right
constexpr Zpp32s shlSat32(Zpp32s x, int n) {  // L_shl
  if (n <= 0) return shr32(x, -n);
  if (n > 31) return x == 0 ? 0 : x > 0 ? kMax32 : kMin32;
  const Zpp32s shifted = shlWrap32(x, n);
  return shifted >> n == x ? shifted : x < 0 ? kMin32 : kMax32;
}
// x >> n with round half up, n of 0 or more; n below 0 shifts left with saturation
constexpr Zpp32s shrRound32(Zpp32s x, int n) {  // L_shr_r
  if (n <= 0) return shlSat32(x, -n);
  if (n > 31) return 0;
  return static_cast<Zpp32s>((Zpp64s{x} + (Zpp64s{1} << (n - 1))) >> n);
}
constexpr Zpp16s high16(Zpp32s x) { return static_cast<Zpp16s>(x >> 16); }      // extract_h
constexpr Zpp16s low16(Zpp32s x) { return static_cast<Zpp16s>(x); }             // extract_l
constexpr Zpp32s fromHigh16(Zpp16s x) { return Zpp32s{x} * 65536; }             // L_deposit_h
constexpr Zpp16s roundHigh16(Zpp32s x) { return high16(addSat32(x, 0x8000)); }  // round
// left shifts that bring bit 30 to differ from the sign bit; 0 for 0, 31 for -1
constexpr int norm32(Zpp32s x) {  // norm_l
  if (x == 0) return 0;
  return std::countl_zero(static_cast<Zpp32u>(x < 0 ? ~x : x)) - 1;
}

// --- Double precision: a 32-bit value as hi * 2^16 + lo * 2, lo of 15 bits (ITU-T G.729 "DPF") -----------------------------

struct Dpf {
  Zpp16s hi, lo;
};
constexpr Dpf toDpf(Zpp32s x) { return {high16(x), static_cast<Zpp16s>((x >> 1) & 0x7fff)}; }  // L_Extract
constexpr Zpp32s fromDpf(Dpf x) {                                                              // L_Comp
  ZPP_RANGE(x.lo >= 0);
  return addSat32(fromHigh16(x.hi), Zpp32s{x.lo} * 2);
}
// Only the product of two upper words of -32768 saturates: the cross products are of magnitude 2^16 at most, and with other
// upper words the sum stays between -2147483646 and 2147483642.
constexpr Zpp32s mulDpf(Dpf a, Dpf b) {  // Mpy_32
  ZPP_RANGE(a.lo >= 0 && b.lo >= 0);
  return mulDbl(a.hi, b.hi) + 2 * ((a.hi * b.lo) >> 15) + 2 * ((a.lo * b.hi) >> 15);
}
constexpr Zpp32s mulDpf16(Dpf a, Zpp16s b) {  // Mpy_32_16
  ZPP_RANGE(a.lo >= 0);
  return mulDbl(a.hi, b) + 2 * ((a.lo * b) >> 15);
}
// num / den in Q31 for num of 0 or more, saturated where num is den or more: one Newton step on a 14-bit reciprocal. den is
// normalised (0x40000000 or more); another gives a number of no meaning.
constexpr Zpp32s divDpf(Zpp32s num, Dpf den) {  // Div_32
  ZPP_RANGE(num >= 0 && den.lo >= 0);
  const Zpp16s approx = den.hi < 0x3fff ? static_cast<Zpp16s>(kMax16) : divQ15(0x3fff, den.hi);
  const Zpp32s error = subSat32(kMax32, mulDpf16(den, approx));
  const Zpp32s reciprocal = mulDpf16(toDpf(error), approx);
  return shlSat32(mulDpf(toDpf(num), toDpf(reciprocal)), 2);
}

// --- Scaling by a power of two ----------------------------------------------------------------------------------------------

// The "Sfs" rule: v * 2^-s, rounded half to even, s beyond +-31 taken as +-31. Exact for |v| below 2^62; a left shift first
// clamps v to +-2^31, which cannot change a result that is then saturated to 32 bits or fewer.
constexpr Zpp64s scaled(Zpp64s v, int s) {
  ZPP_RANGE(v > -(Zpp64s{1} << 62) && v < Zpp64s{1} << 62);
  if (s == 0) return v;
  if (s > 0) {
    if (s > 31) s = 31;
    return (v + (Zpp64s{1} << (s - 1)) - 1 + ((v >> s) & 1)) >> s;
  }
  constexpr Zpp64s limit = Zpp64s{1} << 31;
  if (v > limit) v = limit;
  if (v < -limit) v = -limit;
  return v * (Zpp64s{1} << (s < -31 ? 31 : -s));
}
// v * 2^-s rounded towards minus infinity, s beyond +-31 taken as +-31
constexpr Zpp64s truncated(Zpp64s v, int s) { return s <= 0 ? scaled(v, s) : v >> (s > 31 ? 31 : s); }
// The "NR" rule: (v + 2^(s-1)) >> s, round half up, for any s of 0 or more and |v| of at most 2^31
constexpr Zpp64s shrRoundHalfUp(Zpp64s v, int s) {
  ZPP_RANGE(s >= 0 && v >= kMin32 && v <= Zpp64s{1} << 31);
  if (s == 0) return v;
  if (s > 33) return 0;
  return (v + (Zpp64s{1} << (s - 1))) >> s;
}
constexpr Zpp32s shrRoundHalfUp(Zpp32s v, int s) {
  ZPP_RANGE(s >= 0);
  if (s == 0) return v;
  return s > 31 ? 0 : (v >> s) + ((v >> (s - 1)) & 1);
}

}  // namespace zpp
