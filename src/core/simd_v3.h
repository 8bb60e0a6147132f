// Thin wrappers over AVX2, named as those over SSE2 with a "Wide" behind them. Include it from *_v3.cpp files only.
#pragma once

#include <immintrin.h>

#include "core/simd_w7.h"

namespace zpp {

using W = __m256i;  // sixteen 16-bit, eight 32-bit or four 64-bit lanes

inline W loadWide(const void* p) { return _mm256_loadu_si256(static_cast<const W*>(p)); }
inline void storeWide(void* p, W v) { _mm256_storeu_si256(static_cast<W*>(p), v); }
inline V lowHalf(W v) { return _mm256_castsi256_si128(v); }
inline V highHalf(W v) { return _mm256_extracti128_si256(v, 1); }
inline W joined(V low, V high) { return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1); }
// What packing instructions leave, which work on each half apart, in order
inline W inOrder(W packed) { return _mm256_permute4x64_epi64(packed, _MM_SHUFFLE(3, 1, 2, 0)); }

// mulQ15 of sixteen lanes
inline W mulQ15(W a, W b) {
  const W product =
      _mm256_or_si256(_mm256_slli_epi16(_mm256_mulhi_epi16(a, b), 1), _mm256_srli_epi16(_mm256_mullo_epi16(a, b), 15));
  return _mm256_xor_si256(product, _mm256_cmpeq_epi16(product, _mm256_set1_epi16(-32768)));
}

// The lane sums of four vectors of 32-bit lanes, in order, modulo 2^32
inline V sumsOfLanes32(W a, W b, W c, W d) {
  const W sums = _mm256_hadd_epi32(_mm256_hadd_epi32(a, b), _mm256_hadd_epi32(c, d));
  return _mm_add_epi32(lowHalf(sums), highHalf(sums));
}

}  // namespace zpp
