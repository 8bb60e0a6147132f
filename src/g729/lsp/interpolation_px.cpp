// Weighted sums of two vectors: portable kernel.
#include "core/fixed_point.h"
#include "g729/lsp/kernels.h"

using namespace zpp;

void ownInterpolateC_NR_G729_16s_Sfs_PX(const Zpp16s* src1, Zpp16s weight1, const Zpp16s* src2, Zpp16s weight2, Zpp16s* dst,
                                        int len, int scaleFactor) {
  for (int n = 0; n < len; ++n) {
    const Zpp32s sum = addSat32(Zpp32s{src1[n]} * weight1, Zpp32s{src2[n]} * weight2);
    dst[n] = sat16(shrRoundHalfUp(sum, scaleFactor));
  }
}
