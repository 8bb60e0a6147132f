// The filtered code vector: AVX2 kernel. What it computes stands with the SSE2 kernel.
#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"
#include "core/simd_v3.h"

using namespace zpp;

void ownFilteredCode_GSMAMR_16s_V3(const Zpp16s* impulse, const Zpp16s* positions, const Zpp16s* weights, int pulses,
                                   Zpp16s* filtered) {
  constexpr int kLanes = 16, kVectors = 3, kBuffer = kSubframe + kVectors * kLanes;  // forty samples, eight zeros behind
  const W zero = _mm256_setzero_si256();
  alignas(32) Zpp16s responses[2][kBuffer];  // zeros, then the response, as it is and negated
  for (int negated = 0; negated < 2; ++negated) {
    Zpp16s* const to = responses[negated];
    for (int n = 0; n < kSubframe; n += kLanes) storeWide(to + n, zero);
    const auto signedWide = [&](W h) { return negated ? _mm256_subs_epi16(zero, h) : h; };
    storeWide(to + kSubframe, signedWide(loadWide(impulse)));
    storeWide(to + kSubframe + kLanes, signedWide(loadWide(impulse + kLanes)));
    storeWide(to + kSubframe + 2 * kLanes, signedWide(joined(load(impulse + 2 * kLanes), _mm_setzero_si128())));
  }
  const bool quarter = weights[0] == 8192 || weights[0] == -8192;
  W sum[kVectors] = {zero, zero, zero}, magnitudes[kVectors] = {zero, zero, zero}, ofPositive[kVectors] = {zero, zero, zero};
  for (int k = 0; k < pulses; ++k) {
    const bool isNegative = weights[k] < 0;
    const Zpp16s* const response = responses[isNegative] + kSubframe - positions[k];
    const W counts = _mm256_set1_epi16(isNegative ? 0 : -1);
    unrolled<kVectors>([&](int i) __attribute__((always_inline)) {
      const W r = loadWide(response + kLanes * i);
      sum[i] = _mm256_add_epi16(sum[i], r);
      magnitudes[i] = _mm256_adds_epu16(magnitudes[i], _mm256_abs_epi16(r));
      ofPositive[i] = _mm256_add_epi16(ofPositive[i], _mm256_and_si256(r, counts));
    });
  }
  const W largest = _mm256_max_epu16(_mm256_max_epu16(magnitudes[0], magnitudes[1]), magnitudes[2]);
  const W beyond = _mm256_subs_epu16(largest, _mm256_set1_epi16(kMax16 - 4));
  if (_mm256_testz_si256(beyond, beyond) == 0)
    return ownFilteredCode_GSMAMR_16s_PX(impulse, positions, weights, pulses, filtered);
  unrolled<kVectors>([&](int i) __attribute__((always_inline)) {
    const W up = _mm256_cmpgt_epi16(_mm256_set1_epi16(-16383), ofPositive[i]);
    const W down = _mm256_cmpgt_epi16(ofPositive[i], _mm256_set1_epi16(16384));
    const W result = quarter ? _mm256_srai_epi16(_mm256_add_epi16(sum[i], _mm256_set1_epi16(2)), 2)
                             : _mm256_add_epi16(_mm256_sub_epi16(sum[i], up), down);
    if (i < 2)
      storeWide(filtered + kLanes * i, result);
    else
      store(filtered + 2 * kLanes, lowHalf(result));
  });
}
