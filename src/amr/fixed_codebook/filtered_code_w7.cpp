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
  alignas(16) Zpp16s positive[2 * kSubframe], negative[2 * kSubframe], magnitude[2 * kSubframe];  // zeros, then the response
  for (int n = 0; n < kSubframe; n += 8) {
    const V h = load(impulse + n), negated = _mm_subs_epi16(zero, h);
    for (Zpp16s* delayed : {positive, negative, magnitude}) store(delayed + n, zero);
    store(positive + kSubframe + n, h);
    store(negative + kSubframe + n, negated);
    store(magnitude + kSubframe + n, _mm_max_epi16(h, negated));
  }
  const bool quarter = weights[0] == 8192 || weights[0] == -8192;
  V sum[kVectors], magnitudes[kVectors], ofPositive[kVectors];
  unrolled<kVectors>([&](int i) { sum[i] = magnitudes[i] = ofPositive[i] = zero; });
  for (int k = 0; k < pulses; ++k) {
    const int from = kSubframe - positions[k];
    const Zpp16s *response = (weights[k] < 0 ? negative : positive) + from, *ofMagnitude = magnitude + from;
    unrolled<kVectors>([&](int i) {
      sum[i] = _mm_add_epi16(sum[i], load(response + 8 * i));
      magnitudes[i] = _mm_adds_epi16(magnitudes[i], load(ofMagnitude + 8 * i));
    });
    if (quarter || weights[k] < 0) continue;
    unrolled<kVectors>([&](int i) { ofPositive[i] = _mm_add_epi16(ofPositive[i], load(response + 8 * i)); });
  }
  V largest = zero;
  unrolled<kVectors>([&](int i) { largest = _mm_max_epi16(largest, magnitudes[i]); });
  if (_mm_movemask_epi8(_mm_cmpgt_epi16(largest, _mm_set1_epi16(kMax16 - 4))) != 0)
    return ownFilteredCode_GSMAMR_16s_PX(impulse, positions, weights, pulses, filtered);
  unrolled<kVectors>([&](int i) {
    const V up = _mm_cmpgt_epi16(_mm_set1_epi16(-16383), ofPositive[i]);
    const V down = _mm_cmpgt_epi16(ofPositive[i], _mm_set1_epi16(16384));
    store(filtered + 8 * i, quarter ? _mm_srai_epi16(_mm_add_epi16(sum[i], _mm_set1_epi16(2)), 2)
                                    : _mm_add_epi16(_mm_sub_epi16(sum[i], up), down));
  });
}
