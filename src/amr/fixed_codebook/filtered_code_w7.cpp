// The filtered code vector: SSE2 kernel.
//
// The standard weighs a response by 32767 or -32768 of Q15, at 12.2 kbit/s by 8192 or -8192, and rounds the sum. As long as the
// magnitudes at a sample sum up to less than full scale no step saturates, and with A the plain sum of the signed responses and
// B that of the positive ones the result is A + ((16384 - B) >> 15), or (A + 2) >> 2 at 12.2 kbit/s.
#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"
#include "core/simd_w7.h"

using namespace zpp;

void ownFilteredCode_GSMAMR_16s_W7(const Zpp16s* impulse, const Zpp16s* positions, const Zpp16s* weights, int pulses,
                                   Zpp16s* filtered) {
  constexpr int kVectors = kSubframe / 8;
  const V zero = _mm_setzero_si128();
  alignas(16) Zpp16s delayed[2 * kSubframe];  // zeros before the response
  for (int n = 0; n < kSubframe; n += 8) {
    store(delayed + n, zero);
    store(delayed + kSubframe + n, load(impulse + n));
  }
  const bool quarter = weights[0] == 8192 || weights[0] == -8192;
  V largest = zero, result[kVectors];
  for (int i = 0; i < kVectors; ++i) {
    V sum = zero, ofPositive = zero, magnitudes = zero;
    for (int k = 0; k < pulses; ++k) {
      const V response = load(delayed + kSubframe + 8 * i - positions[k]);
      const V negative = _mm_set1_epi16(static_cast<Zpp16s>(weights[k] >> 15));
      sum = _mm_add_epi16(sum, _mm_sub_epi16(_mm_xor_si128(response, negative), negative));
      ofPositive = _mm_add_epi16(ofPositive, _mm_andnot_si128(negative, response));
      magnitudes = _mm_adds_epi16(magnitudes, _mm_max_epi16(response, _mm_subs_epi16(zero, response)));
    }
    largest = _mm_max_epi16(largest, magnitudes);
    const V up = _mm_cmpgt_epi16(_mm_set1_epi16(-16383), ofPositive), down = _mm_cmpgt_epi16(ofPositive, _mm_set1_epi16(16384));
    result[i] =
        quarter ? _mm_srai_epi16(_mm_add_epi16(sum, _mm_set1_epi16(2)), 2) : _mm_add_epi16(_mm_sub_epi16(sum, up), down);
  }
  if (_mm_movemask_epi8(_mm_cmpgt_epi16(largest, _mm_set1_epi16(kMax16 - 4))) != 0)
    return ownFilteredCode_GSMAMR_16s_PX(impulse, positions, weights, pulses, filtered);
  for (int i = 0; i < kVectors; ++i) store(filtered + 8 * i, result[i]);
}
