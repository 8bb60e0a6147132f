// Weighted sums of two vectors: SSE2 kernel.
#include "core/fixed_point.h"
#include "core/simd_w7.h"
#include "g729/lsp/kernels.h"

using namespace zpp;

void ownInterpolateC_NR_G729_16s_Sfs_W7(const Zpp16s* src1, Zpp16s weight1, const Zpp16s* src2, Zpp16s weight2, Zpp16s* dst,
                                        int len, int scaleFactor) {
  // Of all sums of two products only that of four -32768 needs more than 32 bits.
  const bool exact = (weight1 != kMin16 || weight2 != kMin16) && scaleFactor < 32;
  int n = 0;
  if (exact) {
    const V weights = pairOf(weight1, weight2);
    const V shift = _mm_cvtsi32_si128(scaleFactor), before = _mm_cvtsi32_si128(scaleFactor - 1);
    const V roundingBit = _mm_set1_epi32(scaleFactor > 0 ? 1 : 0);
    const auto narrow = [&](V sum) {
      return _mm_add_epi32(_mm_sra_epi32(sum, shift), _mm_and_si128(_mm_sra_epi32(sum, before), roundingBit));
    };
    for (; n + 8 <= len; n += 8) {
      const V a = load(src1 + n), b = load(src2 + n);
      const V low = narrow(_mm_madd_epi16(_mm_unpacklo_epi16(a, b), weights));
      const V high = narrow(_mm_madd_epi16(_mm_unpackhi_epi16(a, b), weights));
      store(dst + n, _mm_packs_epi32(low, high));
    }
  }
  ownInterpolateC_NR_G729_16s_Sfs_PX(src1 + n, weight1, src2 + n, weight2, dst + n, len - n, scaleFactor);
}
