// Cosine and inverse cosine in double precision, accurate to 1e-11. Power series and a square root: unlike those of a C
// library, the results are the same bits in both word sizes and on every processor, wherever doubles are computed in double
// precision (all builds but those with x87 arithmetic).
#pragma once

#include <cmath>

#include "zppsc.h"

namespace zpp {

inline constexpr Zpp64f kPi = 3.14159265358979323846;

// A power series in the square of its argument, written as 1 + r0 s (1 + r1 s (1 + ...)): ratio holds r0, r1 and so on.
template <int terms>
struct RatioSeries {
  Zpp64f ratio[terms];

  constexpr Zpp64f operator()(Zpp64f square) const {
    Zpp64f sum = 1;
    for (int i = terms - 1; i >= 0; --i) sum = 1 + ratio[i] * square * sum;
    return sum;
  }
};

// cos x over -pi/2..pi/2; the first term left out is (pi/2)^18 / 18!, 5e-13.
inline constexpr auto kCosineSeries = [] {
  RatioSeries<8> series = {};
  for (int i = 0; i < 8; ++i) series.ratio[i] = -1.0 / ((2 * i + 1) * (2 * i + 2));
  return series;
}();

// (asin x) / x over -1/2..1/2: 1 + 1/2 x^2/3 + (1 3)/(2 4) x^4/5 + ...; the terms left out are below 2e-12.
inline constexpr auto kArcsineSeries = [] {
  RatioSeries<15> series = {};
  for (int i = 0; i < 15; ++i) series.ratio[i] = (2 * i + 1) * (2 * i + 1) / ((2 * i + 2) * (2 * i + 3.0));
  return series;
}();

// cos(x); 1 for NaN, infinity and magnitudes above 1e6, where single precision hardly tells an angle any more.
constexpr Zpp64f cosine(Zpp64f x) {
  // pi in two parts; the first has 33 bits, so that its products with numbers of half turns are exact.
  constexpr Zpp64f piHigh = 3.1415926534682512, piLow = 1.2154201013012384e-10;
  const Zpp64f magnitude = x < 0 ? -x : x;
  if (!(magnitude <= 1e6)) return 1;
  const int halfTurns = static_cast<int>(magnitude / kPi + 0.5);
  const Zpp64f angle = magnitude - halfTurns * piHigh - halfTurns * piLow;
  const Zpp64f value = kCosineSeries(angle * angle);
  return halfTurns % 2 != 0 ? -value : value;
}

// acos(x), 0..pi; magnitudes above 1 count as 1, and NaN stays NaN.
inline Zpp64f arccosine(Zpp64f x) {
  const Zpp64f magnitude = x < 0 ? -x : x;
  if (magnitude <= 0.5) return kPi / 2 - x * kArcsineSeries(x * x);
  if (magnitude >= 1) return x < 0 ? kPi : 0;
  // acos x = 2 asin sqrt((1 - x) / 2)
  const Zpp64f square = (1 - magnitude) / 2;
  const Zpp64f angle = 2 * std::sqrt(square) * kArcsineSeries(square);
  return x < 0 ? kPi - angle : angle;
}

}  // namespace zpp
