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

// The same of the products' magnitudes: their total is what no partial sum exceeds.
template <int vectors>
[[gnu::always_inline]] inline V windowMagnitudes(const Zpp16s* x, const V* taps) {
  const auto magnitude = [](V v) {  // 32768 where v is -32768: unsigned
    const V sign = _mm_srai_epi16(v, 15);
    return _mm_sub_epi16(_mm_xor_si128(v, sign), sign);
  };
  const auto products = [&](auto i) {
    const V level = magnitude(load(x + 8 * i)), tap = magnitude(taps[i]);
    const V low = _mm_mullo_epi16(level, tap), high = _mm_mulhi_epu16(level, tap);
    return _mm_add_epi32(_mm_unpacklo_epi16(low, high), _mm_unpackhi_epi16(low, high));
  };
  V sum = products(std::integral_constant<int, 0>{});
  unrolled<vectors - 1>([&](auto i) { sum = _mm_add_epi32(sum, products(std::integral_constant<int, i + 1>{})); });
  return sum;
}

}  // namespace zpp::amrwb
