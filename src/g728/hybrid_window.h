// Lags of a hybrid window (ITU-T G.728 Annex G): how the recursive sums move on and join the newest samples' sums.
#pragma once

#include "g728/arithmetic.h"

namespace zpp::g728 {

// Shifts of an analysis; those to the right are 1 or more for what is added to something else.
struct LagShifts {
  int decay;                    // the recursive sums lose 2^-decay of themselves
  int oldSums, leaving, sums;   // right, right, then left to normalise the new sums
  int newSums, newest, result;  // right, right, then left to normalise the autocorrelations
};

constexpr Zpp32s shiftedRight(Zpp32s x, int n) { return shr32(x, n); }
constexpr Zpp64s shiftedRight(Zpp64s x, int n) { return shifted(x, -n); }

// The decayed sum and what joins it. In 32 bits for a correlation of 32 bits: both terms are below 2^30 in magnitude.
template <class Sum>
constexpr Sum advancedSum(Zpp16s sum, Sum leaving, const LagShifts& s) {
  const Zpp32s old = sum * (65536 - (1 << (16 - s.decay)));
  return static_cast<Sum>(shr32(old, s.oldSums)) + shiftedRight(leaving, s.leaving);
}
template <class Sum>
constexpr Sum wholeSum(Zpp16s sum, Sum newest, const LagShifts& s) {
  return static_cast<Sum>(shr32(sum * 65536, s.newSums)) + shiftedRight(newest, s.newest);
}

}  // namespace zpp::g728
