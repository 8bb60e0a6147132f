// Pre-emphasis: SSE2 kernel.
#include "amrwb/filters/emphasis.h"
#include "amrwb/filters/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;
using namespace zpp::amrwb;

int ownPreemphasisScale_AMRWB_16s_W7(const Zpp16s* src, int len, Zpp16s gamma, Zpp16s prev) {
  constexpr int lanes = 8;
  if (len < lanes || gamma == kMin16) return ownPreemphasisScale_AMRWB_16s_PX(src, len, gamma, prev);
  const V factors = pairOf(gamma, kMin16);  // of the sample before and of a sample: the negative difference
  V magnitudes = _mm_setzero_si128();
  const auto take = [&](V negative) {
    const V sign = _mm_srai_epi32(negative, 31);
    magnitudes = _mm_or_si128(magnitudes, _mm_sub_epi32(_mm_xor_si128(negative, sign), sign));
  };
  V before = _mm_insert_epi16(_mm_slli_si128(load(src), 2), prev, 0);
  for (int n = 0; n < len; n += lanes) {
    if (n > len - lanes) n = len - lanes;
    const V x = load(src + n);
    if (n > 0) before = load(src + n - 1);
    take(_mm_madd_epi16(_mm_unpacklo_epi16(before, x), factors));
    take(_mm_madd_epi16(_mm_unpackhi_epi16(before, x), factors));
  }
  magnitudes = _mm_or_si128(magnitudes, _mm_srli_si128(magnitudes, 8));
  magnitudes = _mm_or_si128(magnitudes, _mm_srli_si128(magnitudes, 4));
  return preemphasisShift(_mm_cvtsi128_si32(magnitudes));
}

void ownPreemphasize_AMRWB_16s_I_W7(Zpp16s* srcDst, int len, Zpp16s gamma, int shift, Zpp16s* mem) {
  constexpr int lanes = 8;
  // With any other gamma, a difference and its rounding stay below 2^31.
  if (gamma == kMin16) return ownPreemphasize_AMRWB_16s_I_PX(srcDst, len, gamma, shift, mem);
  const V factor = _mm_set1_epi16(gamma), half = _mm_set1_epi32(1 << (15 - shift)), zero = _mm_setzero_si128();
  const V down = _mm_cvtsi32_si128(16 - shift);
  V before = _mm_slli_si128(_mm_cvtsi32_si128(*mem), 14);  // its last lane is the sample before
  int n = 0;
  for (; n + lanes <= len; n += lanes) {
    const V x = load(srcDst + n), prev = _mm_or_si128(_mm_slli_si128(x, 2), _mm_srli_si128(before, 14));
    const V low = _mm_sub_epi32(_mm_srai_epi32(_mm_unpacklo_epi16(zero, x), 1), mulLow(prev, factor));
    const V high = _mm_sub_epi32(_mm_srai_epi32(_mm_unpackhi_epi16(zero, x), 1), mulHigh(prev, factor));
    before = x;
    store(srcDst + n,
          _mm_packs_epi32(_mm_sra_epi32(_mm_add_epi32(low, half), down), _mm_sra_epi32(_mm_add_epi32(high, half), down)));
  }
  *mem = static_cast<Zpp16s>(_mm_extract_epi16(before, 7));
  if (n < len) ownPreemphasize_AMRWB_16s_I_PX(srcDst + n, len - n, gamma, shift, mem);
}
