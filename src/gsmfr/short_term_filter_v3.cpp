// Short-term synthesis lattice: AVX2 kernel.
#include "core/simd_v3.h"
#include "gsmfr/kernels.h"

using namespace zpp;

// One lane, stage by stage: vpmulhrsw is the standard's rounded product and the saturating additions cost nothing, so that no
// bound is needed. From a sample to the next the longest way leads through two products and three additions.
void ownShortTermSynthesisFilter_GSMFR_16s_V3(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  const V r = load(refl);
  // A coefficient of -1 may have a product that does not fit.
  if (_mm_movemask_epi8(_mm_cmpeq_epi16(r, _mm_set1_epi16(-32768))) != 0)
    return ownShortTermSynthesisFilter_GSMFR_16s_PX(refl, src, dst, len, memory);
  const V m = load(memory);
  const V r0 = r, r1 = _mm_srli_si128(r, 2), r2 = _mm_srli_si128(r, 4), r3 = _mm_srli_si128(r, 6), r4 = _mm_srli_si128(r, 8),
          r5 = _mm_srli_si128(r, 10), r6 = _mm_srli_si128(r, 12), r7 = _mm_srli_si128(r, 14);
  V v0 = m, v1 = _mm_srli_si128(m, 2), v2 = _mm_srli_si128(m, 4), v3 = _mm_srli_si128(m, 6), v4 = _mm_srli_si128(m, 8),
    v5 = _mm_srli_si128(m, 10), v6 = _mm_srli_si128(m, 12), v7 = _mm_srli_si128(m, 14);
  for (int n = 0; n < len; ++n) {
    V s = _mm_subs_epi16(_mm_set1_epi16(src[n]), _mm_mulhrs_epi16(r7, v7));
    const auto stage = [&s](V factor, V& from, V& to) {
      s = _mm_subs_epi16(s, _mm_mulhrs_epi16(factor, from));
      to = _mm_adds_epi16(from, _mm_mulhrs_epi16(factor, s));
    };
    stage(r6, v6, v7);
    stage(r5, v5, v6);
    stage(r4, v4, v5);
    stage(r3, v3, v4);
    stage(r2, v2, v3);
    stage(r1, v1, v2);
    stage(r0, v0, v1);
    v0 = s;
    dst[n] = static_cast<Zpp16s>(_mm_extract_epi16(s, 0));
  }
  const V pairs0 = _mm_unpacklo_epi16(v0, v1), pairs2 = _mm_unpacklo_epi16(v2, v3), pairs4 = _mm_unpacklo_epi16(v4, v5),
          pairs6 = _mm_unpacklo_epi16(v6, v7);
  store(memory, _mm_unpacklo_epi64(_mm_unpacklo_epi32(pairs0, pairs2), _mm_unpacklo_epi32(pairs4, pairs6)));
}
