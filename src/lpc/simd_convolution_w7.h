// Convolutions of two vectors of the same length with SSE2, up to that length.
#pragma once

#include "core/simd_w7.h"

namespace zpp {

// Eight elements of src1 at a time are each spread over a register, in pairs; four outputs take two products each at once.
class Convolution {
 public:
  static constexpr int kMost = 320;

  // dst[n] = sum of src1[k] * src2[n - k], k = 0..n, modulo 2^32; len: 8..kMost
  Convolution(const Zpp16s* src1, const Zpp16s* src2, int len) {
    Zpp32s* const pairs = pairs_ + kAhead;
    for (int n = -kAhead; n < 0; n += 4) store(pairs + n, _mm_setzero_si128());
    V before = _mm_setzero_si128();  // element n - 1 in the highest lane
    for (int n = 0; n < len; n += 8) {
      const V x = n + 8 <= len ? load(src2 + n) : loadFirst(src2 + n, len - n);
      const V earlier = _mm_or_si128(_mm_slli_si128(x, 2), _mm_srli_si128(before, 14));
      store(pairs + n, _mm_unpacklo_epi16(x, earlier));
      store(pairs + n + 4, _mm_unpackhi_epi16(x, earlier));
      before = x;
    }
    for (int k = 0; k < len; k += 8) {
      const V x = k + 8 <= len ? load(src1 + k) : loadFirst(src1 + k, len - k);
      const V x0 = _mm_shuffle_epi32(x, 0x00), x2 = _mm_shuffle_epi32(x, 0x55), x4 = _mm_shuffle_epi32(x, 0xaa),
              x6 = _mm_shuffle_epi32(x, 0xff);
      const Zpp32s* const p = pairs - k;
      const auto sumAt = [&](int n) __attribute__((always_inline)) {
        return _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(load(p + n), x0), _mm_madd_epi16(load(p + n - 2), x2)),
                             _mm_add_epi32(_mm_madd_epi16(load(p + n - 4), x4), _mm_madd_epi16(load(p + n - 6), x6)));
      };
      for (int n = k; n < len; n += 8) {
        const V low = sumAt(n), high = sumAt(n + 4);
        store(sums_ + n, k == 0 ? low : _mm_add_epi32(low, four(n)));
        store(sums_ + n + 4, k == 0 ? high : _mm_add_epi32(high, four(n + 4)));
      }
    }
  }
  // Outputs n..n+3
  V four(int n) const { return load(sums_ + n); }

 private:
  static constexpr int kAhead = 8;

  alignas(16) Zpp32s pairs_[kAhead + kMost];  // at kAhead + n: elements n (low) and n - 1 of src2
  alignas(16) Zpp32s sums_[kMost];
};

}  // namespace zpp
