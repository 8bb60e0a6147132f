// Arithmetic of ITU-T G.728 Annex G: exact sums, normalisation to a number of bits, long division, block floating point.
#pragma once

#include <algorithm>
#include <cstring>

#include "core/fixed_point.h"
#include "g728/tables.h"

namespace zpp::g728 {

// x * 2^n for any n: floor when n is negative. A left shift stops at 31 bits: every result is saturated to 32 bits or fewer
// afterwards, so |x| must stay below 2^32 when n may be positive.
constexpr Zpp64s shifted(Zpp64s x, int n) { return n < 0 ? x >> std::min(-n, 63) : x * (Zpp64s{1} << std::min(n, 31)); }

// The same saturated to 32 bits, for any x
constexpr Zpp32s shiftedSat32(Zpp64s x, int n) {
  constexpr Zpp64s limit = Zpp64s{1} << 32;
  return sat32(shifted(n > 0 ? std::clamp(x, -limit, limit) : x, n));
}

// Upper half of x saturated to 32 bits, rounded half up (RND)
constexpr Zpp16s rounded(Zpp64s x) { return roundHigh16(sat32(x)); }

// Shift, left if positive, that brings x to a signed number of exactly `bits` bits; bits - 1 for 0
constexpr int normShift(Zpp64s x, int bits) {
  if (x == 0) return bits - 1;
  return std::countl_zero(static_cast<std::uint64_t>(x < 0 ? ~x : x)) - 1 - (64 - bits);
}
// The upper half of x brought to 32 bits, rounded
constexpr Zpp16s normalisedHigh(Zpp64s x) { return rounded(shifted(x, normShift(x, 32))); }

// The same for the larger of two values in magnitude, of 0 or less and of 0 or more, and for all elements of a vector (VSCALE)
constexpr int normShift(int smallest, int largest, int bits) {
  const int x = smallest < -largest ? smallest : largest;
  return x == 0 ? bits - 1 : std::countl_zero(static_cast<Zpp32u>(x < 0 ? ~x : x)) - 1 - (32 - bits);
}
constexpr int normShift(const Zpp16s* v, int len, int bits) {
  int smallest = 0, largest = 0;
  for (int n = 0; n < len; ++n) smallest = std::min<int>(smallest, v[n]), largest = std::max<int>(largest, v[n]);
  return normShift(smallest, largest, bits);
}

// A value mantissa * 2^-q
struct Floating {
  Zpp32s mantissa;
  int q;
};

// num / den to 15 bits, rounded by one step more (DIVIDE). The standard's long division subtracts the divisor from a remainder
// greater than it, not from an equal one: its quotient is one below the rounded-up one, its last remainder 1..den.
constexpr Floating quotient(Zpp32s num, int numQ, Zpp32s den, int denQ) {
  const bool negative = (num < 0) != (den < 0) && num != 0 && den != 0;
  auto n = static_cast<Zpp32u>(num < 0 ? -num : num);
  const auto d = static_cast<Zpp32u>(den < 0 ? -den : den);
  int q = numQ - denQ + 14;
  if (n < d) n *= 2, ++q;
  Zpp32u result = 0;
  if (n != 0 && n >= 2 * d) {
    result = 32768;  // every digit is 1
  } else if (n != 0) {
    result = ((n << 14) - 1) / d;
    result += 2 * ((n << 14) - result * d) > d;
  }
  return {negative ? -static_cast<Zpp32s>(result) : static_cast<Zpp32s>(result), q};
}

// Five samples with a common exponent: value = mantissa * 2^-q. Its form in buffers is six words, q last.
struct Block {
  Zpp16s mantissa[kVector];
  int q;

  // A caller's q is limited to +-64, far beyond those of any signal, so that no sum of exponents can overflow.
  static Block load(const Zpp16s* src) {
    Block b;
    std::copy_n(src, kVector, b.mantissa);
    b.q = std::clamp<int>(src[kVector], -64, 64);
    return b;
  }
  void store(Zpp16s* dst) const {
    std::copy_n(mantissa, kVector, dst);
    dst[kVector] = static_cast<Zpp16s>(q);
  }
  void normalise(int bits) {
    const int shift = normShift(mantissa, kVector, bits);
    const int left = std::max(shift, 0), right = std::max(-shift, 0);
    for (Zpp16s& m : mantissa) m = static_cast<Zpp16s>(m * (1 << left) >> right);
    q += shift;
  }
};

// A gain's form in buffers is two words.
inline Floating loadGain(const Zpp16s* src) { return {src[0], std::clamp<int>(src[1], -64, 64)}; }

}  // namespace zpp::g728
