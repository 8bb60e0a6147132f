// Tilt compensation of the postfilter: SSE2 kernel.
#include "amr/frame.h"
#include "amr/postfilter/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

void ownCompensateTilt_GSMAMR_16s_I_W7(Zpp16s factor, Zpp16s* srcDst) {
  const V weight = _mm_set1_epi16(factor);
  for (int n = kSubframe - 8; n >= 0; n -= 8)
    store(srcDst + n, _mm_subs_epi16(load(srcDst + n), mulQ15(load(srcDst + n - 1), weight)));
}
