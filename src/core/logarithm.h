// Common logarithm and power of ten in double precision, accurate to 1e-13 of the result or of 1, whichever is larger. Power
// series: unlike those of a C library, the results are the same bits in both word sizes and on every processor, wherever
// doubles are computed in double precision (all builds but those with x87 arithmetic).
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

#include "zppsc.h"

namespace zpp {

inline constexpr Zpp64f kLog10Of2 = 0.30102999566398119521, kLnOf10 = 2.30258509299404568402;

// log10(x); NaN unless x is positive, normal and finite.
constexpr Zpp64f decimalLogarithm(Zpp64f x) {
  using Limits = std::numeric_limits<Zpp64f>;
  if (!(x >= Limits::min() && x <= Limits::max())) return Limits::quiet_NaN();
  constexpr std::uint64_t exponentOf1 = std::uint64_t{1023} << 52, mantissaMask = (std::uint64_t{1} << 52) - 1;
  const auto bits = std::bit_cast<std::uint64_t>(x);
  int exponent = static_cast<int>(bits >> 52) - 1023;
  auto mantissa = std::bit_cast<Zpp64f>((bits & mantissaMask) | exponentOf1);
  if (mantissa > 1.41421356) {
    mantissa /= 2;
    ++exponent;
  }
  // ln m = 2 artanh s = 2 (s + s^3/3 + s^5/5 ...), |s| up to 0.1716; the first term left out is 1.2e-14.
  const Zpp64f s = (mantissa - 1) / (mantissa + 1), square = s * s;
  Zpp64f sum = 0;
  for (int k = 15; k > 0; k -= 2) sum = sum * square + 1.0 / k;
  return exponent * kLog10Of2 + s * sum * (2 / kLnOf10);
}

// 10^x; 0 below and infinity above -300..300, NaN for NaN.
constexpr Zpp64f powerOfTen(Zpp64f x) {
  if (x < -300) return 0;
  if (!(x <= 300)) return x + std::numeric_limits<Zpp64f>::infinity();
  const int exponent = static_cast<int>(x / kLog10Of2 + (x < 0 ? -0.5 : 0.5));
  // e^f, |f| up to (ln 2) / 2; the first term left out is 2e-16.
  const Zpp64f f = (x - exponent * kLog10Of2) * kLnOf10;
  Zpp64f sum = 1;
  for (int k = 12; k > 0; --k) sum = 1 + sum * f / k;
  return sum * std::bit_cast<Zpp64f>(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

}  // namespace zpp
