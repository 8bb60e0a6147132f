// LP synthesis filters 1/A(z): the Syn_filt of ITU-T G.729 with a 32-bit accumulator that wraps.
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "lpc/kernels.h"

using namespace zpp;

void ownSynthesisFilterZeroStateResponse_NR_16s(const Zpp16s* coef, Zpp16s* dst, int len, int scaleFactor) {
  std::memset(dst, 0, static_cast<unsigned>(len) * sizeof(Zpp16s));
  dst[0] = static_cast<Zpp16s>(1 << scaleFactor);
  ownSynthesisFilter_NR_16s(coef, dst, dst, len, scaleFactor, nullptr);
}

ZppStatus zppsSynthesisFilter_NR_16s_Sfs(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, int scaleFactor,
                                         const Zpp16s* hist) {
  if (anyNull(coef, src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(scaleFactor, 12, 13)) return zppStsBadScale;
  return ownSynthesisFilter_NR_16s(coef, src, dst, len, scaleFactor, hist) ? zppStsOverflowWarn : zppStsOk;
}

ZppStatus zppsSynthesisFilter_NR_16s_ISfs(const Zpp16s* coef, Zpp16s* srcDst, int len, int scaleFactor, const Zpp16s* hist) {
  if (anyNull(coef, srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(scaleFactor, 12, 13)) return zppStsBadScale;
  return ownSynthesisFilter_NR_16s(coef, srcDst, srcDst, len, scaleFactor, hist) ? zppStsOverflowWarn : zppStsOk;
}

ZppStatus zppsSynthesisFilterLow_NR_16s_ISfs(const Zpp16s* coef, Zpp16s* srcDst, int len, int scaleFactor, const Zpp16s* hist) {
  if (anyNull(coef, srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(scaleFactor, 12, 13)) return zppStsBadScale;
  ownSynthesisFilter_NR_16s(coef, srcDst, srcDst, len, scaleFactor, hist);
  return zppStsOk;
}

ZppStatus zppsSynthesisFilterZeroStateResponse_NR_16s(const Zpp16s* coef, Zpp16s* dst, int len, int scaleFactor) {
  if (anyNull(coef, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(scaleFactor, 12, 13)) return zppStsBadScale;
  ownSynthesisFilterZeroStateResponse_NR_16s(coef, dst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsSynthesisFilter_G729E_16s(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len,
                                        const Zpp16s* hist) {
  if (anyNull(coef, src, dst)) return zppStsNullPointer;
  if (len < 1 || order < 1) return zppStsBadSize;
  const bool overflow = order == kLpcOrder ? ownSynthesisFilter_NR_16s(coef, src, dst, len, 12, hist)
                                           : ownSynthesisFilter_G729E_16s(coef, order, src, dst, len, hist);
  return overflow ? zppStsOverflowWarn : zppStsOk;
}

ZppStatus zppsSynthesisFilter_G729_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len) {
  if (anyNull(coef, src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  return ownSynthesisFilter_NR_16s(coef, src, dst, len, 12, dst - kLpcOrder) ? zppStsOverflowWarn : zppStsOk;
}
