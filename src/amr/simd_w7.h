// SSE2 helpers of this room's kernels. Include it from *_w7.cpp files only.
#pragma once

#include "core/simd_w7.h"

namespace zpp {

// (a * b) >> 15 of 16-bit lanes; -32768 * -32768 gives -32768
inline V mulQ15(V a, V b) {
  return _mm_or_si128(_mm_slli_epi16(_mm_mulhi_epi16(a, b), 1), _mm_srli_epi16(_mm_mullo_epi16(a, b), 15));
}

// Transposes eight rows of eight 16-bit lanes.
inline void transpose(V (&rows)[8]) {
  V a[8], b[8];
  for (int i = 0; i < 4; ++i) {
    a[2 * i] = _mm_unpacklo_epi16(rows[i], rows[i + 4]);
    a[2 * i + 1] = _mm_unpackhi_epi16(rows[i], rows[i + 4]);
  }
  for (int i = 0; i < 4; ++i) {
    b[2 * i] = _mm_unpacklo_epi16(a[i], a[i + 4]);
    b[2 * i + 1] = _mm_unpackhi_epi16(a[i], a[i + 4]);
  }
  for (int i = 0; i < 4; ++i) {
    rows[2 * i] = _mm_unpacklo_epi16(b[i], b[i + 4]);
    rows[2 * i + 1] = _mm_unpackhi_epi16(b[i], b[i + 4]);
  }
}

}  // namespace zpp
