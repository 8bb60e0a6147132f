// The functions of a real variable that the codec needs, in double precision: power series, so that the results are the same
// bits in both word sizes, which those of a C library need not be.
#pragma once

#include <cmath>

namespace codecs::g729f {

// 1 + r(0) x (1 + r(1) x (1 + ...)), of as many terms
template <class Ratio>
constexpr double series(double x, int terms, Ratio ratio) {
  double sum = 1;
  for (int k = terms - 1; k >= 0; --k) sum = 1 + ratio(k) * x * sum;
  return sum;
}

inline constexpr double kPi = 3.14159265358979323846;

// Of an angle within 0..pi
constexpr double cosine(double angle) {
  const double x = kPi / 2 - angle;
  return x * series(x * x, 10, [](int k) { return -1.0 / ((2 * k + 2) * (2 * k + 3)); });
}

// 0..pi; values beyond +-1 count as +-1.
inline double arccosine(double c) {
  if (c < 0) return kPi - arccosine(-c);
  if (c >= 1) return 0;
  // The angle's half, and a quarter of it, up to pi/8
  const double half = std::sqrt((1 - c) / 2), quarter = half / std::sqrt(2 * (1 + std::sqrt(1 - half * half)));
  return 4 * quarter *
         series(quarter * quarter, 12, [](int k) { return (2 * k + 1) * (2 * k + 1) / ((2 * k + 2) * (2 * k + 3.0)); });
}

// Of a positive number
inline double log10Of(double x) {
  int exponent = 0;
  double mantissa = std::frexp(x, &exponent);
  if (mantissa < 0.70710678) {
    mantissa *= 2;
    --exponent;
  }
  const double s = (mantissa - 1) / (mantissa + 1);
  const double logarithm = 2 * s * series(s * s, 9, [](int k) { return (2 * k + 1) / (2 * k + 3.0); });
  return exponent * 0.30102999566398119521 + logarithm * 0.43429448190325182765;
}

// 10^x
inline double powerOf10(double x) {
  const double octaves = x * 3.3219280948873623479;
  const double whole = std::floor(octaves + 0.5);
  const double exponent = (octaves - whole) * 0.69314718055994530942;
  return std::ldexp(series(exponent, 13, [](int k) { return 1.0 / (k + 1); }), static_cast<int>(whole));
}

}  // namespace codecs::g729f
