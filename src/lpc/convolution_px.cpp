// Partial convolution, LP residual, harmonic sharpening: portable kernels.
#include "core/fixed_point.h"
#include "lpc/kernels.h"

using namespace zpp;

void ownConvPartial_16s_Sfs_PX(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  for (int n = 0; n < len; ++n) {
    Zpp64s sum = 0;
    for (int k = 0; k <= n; ++k) sum += Zpp32s{src1[k]} * src2[n - k];
    dst[n] = sat16(truncated(sum, scaleFactor));
  }
}

void ownConvPartial_16s32s_PX(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp32s sum = 0;
    for (int k = 0; k <= n; ++k) sum = addWrap32(sum, Zpp32s{src1[k]} * src2[n - k]);
    dst[n] = sum;
  }
}

void ownResidualFilter_G729_16s_PX(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp64s sum = 0;
    for (int i = 0; i <= kLpcOrder; ++i) sum += Zpp32s{coef[i]} * src[n - i];
    dst[n] = sat16((sum + 2048) >> 12);
  }
}

void ownResidualFilter_G729E_16s_PX(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp64s sum = 0;
    for (int i = 0; i <= order; ++i) sum += Zpp32s{coef[i]} * src[n - i];
    dst[n] = sat16((sum + 2048) >> 12);
  }
}

void ownHarmonicFilter_16s_PX(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  for (int n = 0; n < len; ++n) srcDst[n] = addSat16(srcDst[n], mulQ15(gain, srcDst[n - lag]));
}
