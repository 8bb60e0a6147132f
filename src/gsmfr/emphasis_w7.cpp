// Pre-emphasis and de-emphasis: SSE2 kernels.
#include <algorithm>

#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/rounded_products_w7.h"

using namespace zpp;
using namespace zpp::gsmfr;

void ownPreemphasize_GSMFR_16s_W7(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  const V factor = _mm_set1_epi16(-28180);
  int n = 0;
  for (; n + 8 <= len; n += 8) {
    const V x = load(src + n), delayed = _mm_insert_epi16(_mm_slli_si128(x, 2), *memory, 0);
    *memory = src[n + 7];
    store(dst + n, _mm_adds_epi16(x, mulRoundWrapQ15(delayed, factor)));
  }
  if (n < len) ownPreemphasize_GSMFR_16s_PX(src + n, dst + n, len - n, memory);
}

// A serial recursion, so it runs exactly, a block at a time, and without the saturation of sum and output, which is left out
// under the proof that none acts: magnitudes of up to 2^14.
void ownDeemphasize_GSMFR_16s_I_W7(Zpp16s* srcDst, int len, Zpp16s* memory) {
  constexpr int kBlock = 40;
  alignas(16) Zpp16s block[kBlock] = {};
  for (; len > 0; len -= kBlock, srcDst += kBlock) {
    const int count = std::min(kBlock, len);
    Zpp32s y = *memory;
    Zpp32u seen = 0;
    for (int n = 0; n < count; ++n) {
      y = plusRounded(srcDst[n], 28180, y);
      seen |= static_cast<Zpp32u>(y) + 16384;
      block[n] = low16(y);
    }
    if (seen > 32767) {
      ownDeemphasize_GSMFR_16s_I_PX(srcDst, count, memory);
      continue;
    }
    *memory = low16(y);
    for (int n = 0; n < kBlock; n += 8) store(block + n, _mm_and_si128(_mm_slli_epi16(load(block + n), 1), _mm_set1_epi16(-8)));
    std::memcpy(srcDst, block, static_cast<unsigned>(count) * sizeof(Zpp16s));
  }
}
