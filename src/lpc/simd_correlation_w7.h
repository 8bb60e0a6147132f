// Correlation sums with SSE2: four lags a pass share the loads of one operand.
#pragma once

#include "core/simd_w7.h"

namespace zpp {

// Four accumulators, one a lag (named, not an array, so that they stay in registers)
struct FourLags {
  V sum0 = _mm_setzero_si128(), sum1 = sum0, sum2 = sum0, sum3 = sum0;

  // Eight products of each lag: x with y[0..7], y[1..8], y[2..9], y[3..10]. Modulo 2^32 the overflow of pmaddwd does not count.
  void add(V x, const Zpp16s* y) {
    sum0 = _mm_add_epi32(sum0, _mm_madd_epi16(x, load(y)));
    sum1 = _mm_add_epi32(sum1, _mm_madd_epi16(x, load(y + 1)));
    sum2 = _mm_add_epi32(sum2, _mm_madd_epi16(x, load(y + 2)));
    sum3 = _mm_add_epi32(sum3, _mm_madd_epi16(x, load(y + 3)));
  }
  void add(const Zpp16s* x, const Zpp16s* y, int len) {  // len: a multiple of 8
    for (int n = 0; n < len; n += 8) add(load(x + n), y + n);
  }
  V total() const { return sumsOfLanes32(sum0, sum1, sum2, sum3); }
};

// The last or first n (0..7) lanes of eight kept, the others zero
inline constexpr Zpp16s kLaneMask[24] = {0, 0, 0, 0, 0, 0, 0, 0, -1, -1, -1, -1, -1, -1, -1, -1};
inline V keepLast(V v, int n) { return _mm_and_si128(v, load(kLaneMask + n)); }
inline V keepFirst(V v, int n) { return _mm_and_si128(v, load(kLaneMask + 16 - n)); }

// An upper bound of the energy of src in units of 256: each pair of squares p counts (p >> 8) + 1.
inline Zpp64s energyBound(const Zpp16s* src, int len) {
  Zpp64s bound = 0;
  int n = 0;
  while (n + 8 <= len) {
    // A lane grows by 2^23 a step at the most (pmaddwd's one overflow is right when taken unsigned): 2^8 steps fit.
    const int end = len - n > 8 << 8 ? n + (8 << 8) : len;
    V sum = _mm_setzero_si128();
    for (; n + 8 <= end; n += 8) {
      const V x = load(src + n);
      sum = _mm_add_epi32(sum, _mm_srli_epi32(_mm_madd_epi16(x, x), 8));
    }
    bound += sumLanes64(addUnsigned64(sum));
  }
  bound += n / 2;
  for (; n < len; ++n) bound += ((Zpp32s{src[n]} * src[n]) >> 8) + 1;
  return bound;
}

// True when every correlation of a part of src1 with a part of src2, and every partial sum of one, stays below 2^bits in
// magnitude: by Cauchy and Schwarz its square is at most the product of the two energies.
inline bool correlationsFit(int bits, const Zpp16s* src1, int len1, const Zpp16s* src2, int len2) {
  const Zpp64s bound1 = energyBound(src1, len1), bound2 = energyBound(src2, len2);
  if ((bound1 | bound2) >> 31 != 0) return false;
  return bound1 * bound2 <= Zpp64s{1} << (2 * bits - 16);
}

}  // namespace zpp
