// Pre-emphasis and de-emphasis: SSE2 kernels.
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/simd_rounding_w7.h"

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

// The recursion is serial, so its length is that of a multiplication, an addition and a shift: it runs without saturation, a
// block at a time, while its bits tell whether a step should have saturated. |y| grows by no more than the inputs of a block,
// and 40 of them do not leave 32 bits in the product: 28180 * (32768 + 40 * 32768) < 2^36, hence the small block.
void ownDeemphasize_GSMFR_16s_I_W7(Zpp16s* srcDst, int len, Zpp16s* memory) {
  ownDeemphasize_GSMFR_16s_I_PX(srcDst, len, memory);
}
