// SSE2 helpers of this room's kernels. Include it from *_w7.cpp files only.
#pragma once

#include "core/simd_w7.h"

namespace zpp {

// Interleaves the first four of eight rows with the last four: a third of a transposition.
inline void interleave(const V (&rows)[8], V (&out)[8]) {
  out[0] = _mm_unpacklo_epi16(rows[0], rows[4]);
  out[1] = _mm_unpackhi_epi16(rows[0], rows[4]);
  out[2] = _mm_unpacklo_epi16(rows[1], rows[5]);
  out[3] = _mm_unpackhi_epi16(rows[1], rows[5]);
  out[4] = _mm_unpacklo_epi16(rows[2], rows[6]);
  out[5] = _mm_unpackhi_epi16(rows[2], rows[6]);
  out[6] = _mm_unpacklo_epi16(rows[3], rows[7]);
  out[7] = _mm_unpackhi_epi16(rows[3], rows[7]);
}
// Transposes eight rows of eight 16-bit lanes.
inline void transpose(V (&rows)[8]) {
  V first[8], second[8];
  interleave(rows, first);
  interleave(first, second);
  interleave(second, rows);
}

}  // namespace zpp
