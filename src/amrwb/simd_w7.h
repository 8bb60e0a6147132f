// SSE2 helpers of this room's kernels. Include it from *_w7.cpp files only.
#pragma once

#include "core/simd_w7.h"

namespace zpp::amrwb {

// The products of 8 * vectors taps with as many samples, in four sums modulo 2^32
template <int vectors>
[[gnu::always_inline]] inline V windowSums(const Zpp16s* x, const V* taps) {
  V sum = _mm_madd_epi16(load(x), taps[0]);
  unrolled<vectors - 1>([&](auto i) { sum = _mm_add_epi32(sum, _mm_madd_epi16(load(x + 8 * (i + 1)), taps[i + 1])); });
  return sum;
}

// The magnitudes of eight lanes, added in pairs to four sums
inline V magnitudes(V v) { return _mm_madd_epi16(v, _mm_or_si128(_mm_srai_epi16(v, 15), _mm_set1_epi16(1))); }

}  // namespace zpp::amrwb
