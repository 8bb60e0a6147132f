// The least of many errors, for AVX2 searches. Include it from *_v3.cpp files only.
#pragma once

#include "core/fixed_point.h"
#include "core/simd_v3.h"

namespace zpp::amr {

// The least of errors that come eight at a time, and the lowest number that has it; 0 where all are the largest number. Numbers
// rise from one time to the next in each lane.
class LeastError {
 public:
  void take(W errors, W numbers) {
    number_ = _mm256_blendv_epi8(number_, numbers, _mm256_cmpgt_epi32(least_, errors));
    least_ = _mm256_min_epi32(least_, errors);
  }
  int found() const {
    W all = _mm256_min_epi32(least_, _mm256_permute4x64_epi64(least_, _MM_SHUFFLE(1, 0, 3, 2)));
    all = _mm256_min_epi32(all, _mm256_shuffle_epi32(all, _MM_SHUFFLE(1, 0, 3, 2)));
    all = _mm256_min_epi32(all, _mm256_shuffle_epi32(all, _MM_SHUFFLE(2, 3, 0, 1)));
    const W others = _mm256_andnot_si256(_mm256_cmpeq_epi32(least_, all), _mm256_set1_epi32(kMax32));
    const W numbers = _mm256_or_si256(number_, others);
    V number = _mm_min_epi32(lowHalf(numbers), highHalf(numbers));
    number = _mm_min_epi32(number, _mm_shuffle_epi32(number, _MM_SHUFFLE(1, 0, 3, 2)));
    number = _mm_min_epi32(number, _mm_shuffle_epi32(number, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_cvtsi128_si32(number);
  }

 private:
  W least_ = _mm256_set1_epi32(kMax32), number_ = _mm256_setzero_si256();
};

}  // namespace zpp::amr
