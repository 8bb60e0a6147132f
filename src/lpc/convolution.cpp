// Filters without feedback from 1/A(z): partial convolution, LP residual, harmonic sharpening.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "lpc/kernels.h"

using namespace zpp;

void ownConvPartial_16s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  for (int n = 0; n < len; ++n) {
    Zpp64s sum = 0;
    for (int k = 0; k <= n; ++k) sum += Zpp32s{src1[k]} * src2[n - k];
    dst[n] = sat16(truncated(sum, scaleFactor));
  }
}

void ownConvPartial_16s32s(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp32s sum = 0;
    for (int k = 0; k <= n; ++k) sum = addWrap32(sum, Zpp32s{src1[k]} * src2[n - k]);
    dst[n] = sum;
  }
}

void ownResidualFilter_G729_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp64s sum = 0;
    for (int i = 0; i <= kLpcOrder; ++i) sum += Zpp32s{coef[i]} * src[n - i];
    dst[n] = sat16((sum + 2048) >> 12);
  }
}

void ownHarmonicFilter_16s(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  for (int n = 0; n < len; ++n) srcDst[n] = addSat16(srcDst[n], mulQ15(gain, srcDst[n - lag]));
}

ZppStatus zppsConvPartial_16s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (scaleFactor < 0) return zppStsBadArgument;
  ownConvPartial_16s_Sfs(src1, src2, dst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsConvPartial_16s32s(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownConvPartial_16s32s(src1, src2, dst, len);
  return zppStsOk;
}

ZppStatus zppsResidualFilter_G729_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len) {
  if (anyNull(coef, src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownResidualFilter_G729_16s(coef, src, dst, len);
  return zppStsOk;
}

ZppStatus zppsHarmonicFilter_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (lag < 1) return zppStsOutOfRange;
  ownHarmonicFilter_16s(gain, lag, srcDst, len);
  return zppStsOk;
}
