// Zero-input response of the synthesis filter: SSE2 kernel, the outputs side by side in 32-bit lanes.
#include "core/simd_w7.h"
#include "g728/kernels.h"
#include "g728/synthesis_filter.h"

using namespace zpp;
using namespace zpp::g728;

void ownZeroInputSums_G728_16s_W7(const Zpp16s* coef, const Zpp16s* memory, const Zpp16s* shift, Zpp64s* sums) {
  // Pairs of neighbouring coefficients, zeros behind the last
  alignas(16) Zpp16s pairs[64][2];
  for (int n = 0; n < 48; n += 8) {
    const V first = load(coef + n), second = load(coef + n + 1);
    store(pairs[n], _mm_unpacklo_epi16(first, second));
    store(pairs[n + 4], _mm_unpackhi_epi16(first, second));
  }
  for (int n = 48; n < 64; n += 4) store(pairs[n], _mm_setzero_si128());
  pairs[48][0] = coef[48];
  pairs[48][1] = pairs[49][0] = coef[49];

  const V zero = _mm_setzero_si128(), lowerHalf = _mm_set1_epi32(0xffff);
  // Halves of the sums for outputs 0..3 and for output 4, so that the sums of all vectors need no more than 32 bits
  V upper[2] = {zero, zero}, lower[2] = {zero, zero};
  for (int vector = shift[0] < 30 ? 0 : 1; vector < kPastVectors; ++vector) {
    const Zpp16s* sample = memory + kVector * vector;
    const V last = _mm_sub_epi16(zero, load4(sample + 1));
    const V newest = _mm_shufflelo_epi16(last, _MM_SHUFFLE(2, 3, 2, 3)),
            middle = _mm_shufflelo_epi16(last, _MM_SHUFFLE(0, 1, 0, 1));
    const V s43 = _mm_unpacklo_epi64(newest, newest), s21 = _mm_unpacklo_epi64(middle, middle), s0 = pairOf(-sample[0], 0);
    const Zpp16s(*first)[2] = pairs + kOrder - kVector * (vector + 1);
    const V at4 = load(first[4]);
    const V sum[2] = {_mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(load(first[0]), s43), _mm_madd_epi16(load(first[2]), s21)),
                                    _mm_madd_epi16(at4, s0)),
                      _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(at4, s43), _mm_madd_epi16(load(first[6]), s21)),
                                    _mm_madd_epi16(load(first[8]), s0))};
    const V count = _mm_cvtsi32_si128(shift[vector]);
    for (int i = 0; i < 2; ++i) {
      const V shifted = _mm_sra_epi32(sum[i], count);
      upper[i] = _mm_add_epi32(upper[i], _mm_srai_epi32(shifted, 16));
      lower[i] = _mm_add_epi32(lower[i], _mm_and_si128(shifted, lowerHalf));
    }
  }
  Zpp32s uppers[8], lowers[8];
  for (int i = 0; i < 2; ++i) store(uppers + 4 * i, upper[i]), store(lowers + 4 * i, lower[i]);
  for (int n = 0; n < kVector; ++n) sums[n] = Zpp64s{uppers[n]} * 65536 + lowers[n];
}
