// Zero-input response of the synthesis filter: SSE2 kernel, the outputs side by side in 32-bit lanes.
#include "core/simd_w7.h"
#include "g728/kernels.h"
#include "g728/synthesis_filter.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

// Halves of sums for outputs 0..3 and for output 4, so that the sums of all vectors need no more than 32 bits
struct WideSums {
  V upper[2], lower[2];

  // A vector of the memory, times coef[0..8], those that its last sample meets first
  void add(const Zpp16s* sample, const Zpp16s* coef, int shift) {
    const V last = _mm_sub_epi16(_mm_setzero_si128(), load4(sample + 1));
    const V newest = _mm_shufflelo_epi16(last, _MM_SHUFFLE(2, 3, 2, 3)),
            middle = _mm_shufflelo_epi16(last, _MM_SHUFFLE(0, 1, 0, 1));
    const V s43 = _mm_unpacklo_epi64(newest, newest), s21 = _mm_unpacklo_epi64(middle, middle), s0 = pairOf(-sample[0], 0);
    // Pairs of neighbouring coefficients
    const V c0 = load(coef), c1 = load(coef + 1), c2 = load(coef + 2), c3 = load(coef + 3), c8 = load4(coef + 8);
    const V at4 = _mm_unpackhi_epi16(c0, c1);
    const V sum[2] = {_mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(c0, c1), s43),
                                                  _mm_madd_epi16(_mm_unpacklo_epi16(c2, c3), s21)),
                                    _mm_madd_epi16(at4, s0)),
                      _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(at4, s43), _mm_madd_epi16(_mm_unpackhi_epi16(c2, c3), s21)),
                                    _mm_madd_epi16(_mm_unpacklo_epi16(c8, c8), s0))};
    const V count = _mm_cvtsi32_si128(shift);
    for (int i = 0; i < 2; ++i) {
      const V shifted = _mm_sra_epi32(sum[i], count);
      upper[i] = _mm_add_epi32(upper[i], _mm_srai_epi32(shifted, 16));
      lower[i] = _mm_add_epi32(lower[i], _mm_and_si128(shifted, _mm_set1_epi32(0xffff)));
    }
  }
};

}  // namespace

void ownZeroInputSums_G728_16s_W7(const Zpp16s* coef, const Zpp16s* memory, const Zpp16s* shift, Zpp64s* sums) {
  // The oldest vectors meet the last coefficients and the zeros behind them.
  constexpr int kTail = 3, kFirst = kOrder - kVector * kTail;
  alignas(16) Zpp16s tail[kVector * kTail + 9];
  store(tail, load(coef + kFirst));
  store(tail + 8, _mm_srli_si128(load(coef + kOrder - 8), 2));
  store(tail + 16, _mm_setzero_si128());
  WideSums wide;
  for (int i = 0; i < 2; ++i) wide.upper[i] = wide.lower[i] = _mm_setzero_si128();
  for (int vector = kPastVectors - 1; vector >= kTail; --vector)
    wide.add(memory + kVector * vector, coef + kVector * (kPastVectors - 1 - vector), shift[vector]);
  for (int vector = kTail - 1; vector >= (shift[0] < 30 ? 0 : 1); --vector)
    wide.add(memory + kVector * vector, tail + kVector * (kTail - 1 - vector), shift[vector]);
  Zpp32s upper[8], lower[8];
  for (int i = 0; i < 2; ++i) store(upper + 4 * i, wide.upper[i]), store(lower + 4 * i, wide.lower[i]);
  for (int n = 0; n < kVector; ++n) sums[n] = Zpp64s{upper[n]} * 65536 + lower[n];
}
