// Partial convolution, LP residual, harmonic sharpening: entries.
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;

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

ZppStatus zppsResidualFilter_G729E_16s(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len) {
  if (anyNull(coef, src, dst)) return zppStsNullPointer;
  if (len < 1 || order < 1) return zppStsBadSize;
  ownResidualFilter_G729E_16s(coef, order, src, dst, len);
  return zppStsOk;
}

ZppStatus zppsHarmonicFilter_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (lag < 1) return zppStsOutOfRange;
  ownHarmonicFilter_16s(gain, lag, srcDst, len);
  return zppStsOk;
}
