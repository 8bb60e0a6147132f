// What the filters of order 10 share with SSE2.
#pragma once

#include <cstdlib>

#include "lpc/kernels.h"
#include "lpc/simd_correlation_w7.h"

namespace zpp {

// Whether the magnitudes of a filter's coefficients add up to less than 16.0, in Q12: then no sum of its products with 16-bit
// samples reaches 2^31 - 2^15, so that 32 bits hold it and its rounding exactly. A magnitude of 32768 counts 32767 here.
inline bool harmlessSums(const Zpp16s* coef) {
  const auto magnitudes = [](V x) {
    return _mm_madd_epi16(_mm_max_epi16(x, _mm_subs_epi16(_mm_setzero_si128(), x)), _mm_set1_epi16(1));
  };
  const V first = load(coef + 1), last = load(coef + kLpcOrder - 7);
  return sumLanes32(_mm_add_epi32(magnitudes(first), magnitudes(keepLast(last, 2)))) + std::abs(coef[0]) <= 65523;
}

}  // namespace zpp
