// Quantisation of a region: SSE2 kernel.
#include "g7221/quantisation.h"

#include "core/simd_w7.h"
#include "g7221/kernels.h"

using namespace zpp;

void ownPreHuffman_16s_W7(const Zpp16s* src, Zpp16s* levels, Zpp32s category, Zpp32s powerIndex) {
  const Quantiser q(category, powerIndex);
  const V zero = _mm_setzero_si128(), twiceLowBits = _mm_set1_epi16(static_cast<Zpp16s>(2 * q.inverseLowBits));
  const V deadZoneLowBits = _mm_set1_epi16(q.deadZoneLowBits), deadZone = _mm_set1_epi32(q.deadZone);
  const V inverse = _mm_unpacklo_epi16(_mm_set1_epi16(q.inverse), _mm_set1_epi16(1)), maxLevel = _mm_set1_epi16(q.maxLevel);
  const auto quantised = [&](V c) {
    const V magnitude = _mm_max_epi16(c, _mm_subs_epi16(zero, c));
    const V low = _mm_srai_epi16(_mm_mullo_epi16(magnitude, twiceLowBits), 1);
    const V carry = _mm_srai_epi16(_mm_add_epi16(low, deadZoneLowBits), 2);
    const auto level = [&](V pairs) { return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(pairs, inverse), deadZone), 13); };
    const V wide = _mm_packs_epi32(level(_mm_unpacklo_epi16(magnitude, carry)), level(_mm_unpackhi_epi16(magnitude, carry)));
    return _mm_max_epi16(_mm_min_epi16(wide, maxLevel), zero);
  };
  store(levels, quantised(load(src)));
  store(levels + 8, quantised(load(src + 8)));
  store4(levels + 16, quantised(load4(src + 16)));
}
