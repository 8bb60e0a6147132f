// The inputs' share of a high-pass filter: SSE2 kernel.
#include "core/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

void ownHighPassInputs_16s32s_W7(const Zpp16s* b, const Zpp16s* src, Zpp32s* dst, int len) {
  const V newer = pairOf(b[0], b[1]), older = pairOf(b[2], b[3]);
  int n = 0;
  for (; n + 8 <= len; n += 8) {
    const V x0 = load(src + n), x1 = load(src + n - 1), x2 = load(src + n - 2), x3 = load(src + n - 3);
    store(dst + n,
          _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(x0, x1), newer), _mm_madd_epi16(_mm_unpacklo_epi16(x2, x3), older)));
    store(dst + n + 4,
          _mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(x0, x1), newer), _mm_madd_epi16(_mm_unpackhi_epi16(x2, x3), older)));
  }
  if (n < len) ownHighPassInputs_16s32s_PX(b, src + n, dst + n, len - n);
}
