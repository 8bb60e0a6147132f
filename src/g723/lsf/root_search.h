// What the searches for the roots of the sum and difference polynomial share (ITU-T G.723.1 clause 2.5).
#pragma once

#include "core/fixed_point.h"

// A polynomial: six coefficients, the k-th going with cos(k w), and zeros up to kPolynomial. The difference polynomial follows
// the sum polynomial.
inline constexpr int kLsfOrder = 10, kPolynomial = 8;
inline constexpr int kGrid = 256;  // steps from 0 to the Nyquist frequency

// Zero counts as positive.
constexpr bool signsDiffer(Zpp64s a, Zpp64s b) { return (a ^ b) < 0; }

// LSF of a root between the grid points j - 1 and j, where the polynomial is y1 and y2. As their signs differ, the sum of the
// magnitudes is 1 or more, and normalised it is positive.
inline Zpp16s interpolateRoot(int j, Zpp32s y1, Zpp32s y2) {
  using namespace zpp;
  const Zpp32s magnitude = absSat32(y1), sum = addSat32(magnitude, absSat32(y2));
  const int shift = norm32(sum);
  return sat16((j - 1) * 128 + ((magnitude << shift) >> 9) / high16(sum << shift));
}
