// The rounded product of the standard in eight lanes.
#pragma once

#include "core/simd_w7.h"

namespace zpp::gsmfr {

// (a * b + 16384) >> 15 of eight lanes; -32768 times itself wraps to -32768
inline V mulRoundWrapQ15(V a, V b) {
  const V upper = _mm_mulhi_epi16(a, b);
  const V carry = _mm_avg_epu16(_mm_srli_epi16(_mm_mullo_epi16(a, b), 14), _mm_setzero_si128());
  return _mm_add_epi16(_mm_add_epi16(upper, upper), carry);
}

}  // namespace zpp::gsmfr
