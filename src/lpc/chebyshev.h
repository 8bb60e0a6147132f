// The sum and difference polynomials of LP coefficients as Chebyshev series, and the search of their roots (ITU-T G.729 clause
// 3.2.3, 3GPP TS 26.090 clause 5.2.3).
#pragma once

#include "core/fixed_point.h"

namespace zpp {

// One of the two polynomials of order 5 as a Chebyshev series, Q11 or Q10. Its value C(x) is computed by Clenshaw's recursion.
class ChebyshevSeries {
 public:
  // precision: fractional bits of the coefficients, which are kept in the series' own format. False when one saturates.
  bool assign(const Zpp16s* a, int sign, int qFormat, int precision) {
    q_ = qFormat;
    Zpp16s previous = static_cast<Zpp16s>(1 << precision);
    f_[0] = 1 << q_;
    bool exact = true;
    for (int i = 0; i < 5; ++i) {
      const Zpp32s next = ((a[i + 1] + sign * a[10 - i]) >> (12 - precision)) - sign * previous;
      previous = sat16(next);
      exact = exact && previous == next;
      f_[i + 1] = previous * (1 << (q_ - precision));
    }
    // The recursion saturates at 128 (256 in Q10). |b_i| is at most the sum of |f_k| (i - k + 1) over k up to i, and the sums
    // on the way to b_4 stay below twice that of b_3 plus |f_4|: the largest of all is bounded by the weighted sum below. 127
    // leaves room for the truncations.
    const auto magnitude = [this](int i) { return f_[i] < 0 ? -f_[i] : f_[i]; };
    unlimited_ = 8 * f_[0] + 6 * magnitude(1) + 4 * magnitude(2) + 2 * magnitude(3) + magnitude(4) < 127 << 11;
    return exact;
  }

  Zpp16s operator()(Zpp16s x) const { return unlimited_ ? exactValue(x) : saturatedValue(x); }  // Q15 in, Q14 out

  // Whether the step-by-step saturation of the standard cannot act, so that exactValue holds
  bool unlimited() const { return unlimited_; }
  Zpp32s coefficient(int i) const { return f_[i]; }
  int resultShift() const { return q_ - 2; }

  // Without saturation every sum of the recursion is even, so that half of it is the whole state.
  Zpp16s exactValue(Zpp16s x) const {
    const auto times = [x](Zpp32s b) { return static_cast<Zpp32s>((Zpp64s{b} * x) >> 15); };
    Zpp32s b2 = 4096 * f_[0], b1 = 2 * times(b2) + 4096 * f_[1];
    for (int i = 2; i <= 4; ++i) {
      const Zpp32s b = 2 * times(b1) + (4096 * f_[i] - b2);
      b2 = b1;
      b1 = b;
    }
    return sat16((times(b1) + (2048 * f_[5] - b2)) >> resultShift());
  }

  // The standard's recursion in double precision, saturating at every step
  Zpp16s saturatedValue(Zpp16s x) const {
    const auto minusOlder = [](Zpp32s sum, Dpf b) { return msuDbl(macDbl(sum, b.hi, -32768), b.lo, 1); };
    Dpf b2 = {static_cast<Zpp16s>(f_[0] >> 3), 0};
    Dpf b1 = toDpf(addSat32(mulDbl(x, static_cast<Zpp16s>(f_[0] >> 2)), f_[1] * 8192));
    for (int i = 2; i <= 4; ++i) {
      const Dpf b = toDpf(addSat32(minusOlder(shlSat32(mulDpf16(b1, x), 1), b2), f_[i] * 8192));
      b2 = b1;
      b1 = b;
    }
    return high16(shlSat32(addSat32(minusOlder(mulDpf16(b1, x), b2), f_[5] * 4096), 17 - q_));
  }

 private:
  Zpp32s f_[6];
  int q_;
  bool unlimited_;
};

struct Point {
  Zpp16s x, y;
};

inline bool signChange(Zpp16s y1, Zpp16s y2) { return y1 * y2 <= 0; }

inline Zpp16s midpoint(Zpp16s x1, Zpp16s x2) { return static_cast<Zpp16s>((x1 >> 1) + (x2 >> 1)); }

// Keeps the half with the sign change. Which one is a coin toss: selection beats a branch.
inline void narrow(Point& low, Point& high, Point middle) {
  const bool lower = signChange(low.y, middle.y);
  high = lower ? middle : high;
  low = lower ? low : middle;
}

// Halves an interval with a sign change of the series.
inline void bisect(const ChebyshevSeries& f, int halvings, Point& low, Point& high) {
  for (int n = 0; n < halvings; ++n) {
    const Zpp16s x = midpoint(low.x, high.x);
    narrow(low, high, {x, f(x)});
  }
}

// Where the line through the ends of an interval crosses zero
inline Zpp16s interpolatedRoot(Point low, Point high) {
  const Zpp16s dx = subSat16(high.x, low.x), dy = subSat16(high.y, low.y);
  if (dy == 0) return low.x;
  const int shift = norm16(absSat16(dy));
  const Zpp16s reciprocal = divQ15(16383, shlSat16(absSat16(dy), shift));
  const Zpp16s magnitude = low16(mulDbl(dx, reciprocal) >> (20 - shift));
  const Zpp16s slope = dy < 0 ? negSat16(magnitude) : magnitude;
  return subSat16(low.x, low16(mulDbl(low.y, slope) >> 11));
}

struct LspPolynomials {
  ChebyshevSeries f[2];

  // precision 11: coefficients and series in Q11, but one saturated coefficient moves both polynomials to Q10, where there is
  // more headroom (ITU-T G.729). precision 10: coefficients rounded to Q10 in series of Q11 (3GPP TS 26.073).
  LspPolynomials(const Zpp16s* a, int precision) {
    const bool exactSum = f[0].assign(a, 1, 11, precision);
    const bool exactDifference = f[1].assign(a, -1, 11, precision);
    if (precision == 10 || (exactSum && exactDifference)) return;
    f[0].assign(a, 1, 10, 10);
    f[1].assign(a, -1, 10, 10);
  }
};

}  // namespace zpp
