// Cross-correlation and lag search: entries.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

void ownCrossCorr_NR_16s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp16s* dst, int lags) {
  for (int k = 0; k < lags; ++k) dst[k] = roundHigh16(sat32(2 * ownDotProd_16s(src1, src2 + k, len)));
}

ZppStatus zppsCrossCorrLagMax_16s(const Zpp16s* src1, const Zpp16s* src2, int len, int maxLag, Zpp32s* max, Zpp32s* maxLagOut) {
  if (anyNull(src1, src2, max, maxLagOut)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (maxLag < 0) return zppStsOutOfRange;
  const LagMax best = ownCrossCorrLagMax_16s(src1, src2, len, maxLag);
  *max = best.value;
  *maxLagOut = best.lag;
  return zppStsOk;
}

ZppStatus zppsAutoCorrLagMax_Fwd_16s(const Zpp16s* src, int len, int minLag, int maxLag, Zpp32s* max, Zpp32s* lag) {
  if (anyNull(src, max, lag)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  const LagMax best = ownAutoCorrLagMax_Fwd_16s(src, len, minLag, maxLag);
  *max = best.value;
  *lag = best.lag;
  return zppStsOk;
}

ZppStatus zppsAutoCorrLagMax_Inv_16s(const Zpp16s* src, int len, int minLag, int maxLag, Zpp32s* max, Zpp32s* lag) {
  if (anyNull(src, max, lag)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  const LagMax best = ownAutoCorrLagMax_Inv_16s(src, len, minLag, maxLag);
  *max = best.value;
  *lag = best.lag;
  return zppStsOk;
}

ZppStatus _zppsCrossCorrLagMax_Inv_16s(const Zpp16s* target, const Zpp16s* signal, int len, int minLag, int maxLag, Zpp32s* max,
                                       Zpp32s* lag) {
  if (minLag > maxLag) return zppStsOk;
  const LagMax best = ownCrossCorrLagMax_Inv_16s(target, signal, len, minLag, maxLag);
  *max = best.value;
  *lag = best.lag;
  return zppStsOk;
}

ZppStatus zppsCrossCorr_16s32s_Sfs(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int scaleFactor) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownCrossCorr_16s32s_Sfs(src1, src2, len, dst, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsCrossCorr_NR_16s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp16s* dst, int lags) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1 || lags < 1) return zppStsBadSize;
  ownCrossCorr_NR_16s(src1, src2, len, dst, lags);
  return zppStsOk;
}

ZppStatus zppsCrossCorr_NormM_16s(const Zpp16s* target, const Zpp16s* signal, int len, Zpp16s* dst) {
  if (anyNull(target, signal, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownCrossCorr_NormM_16s(target, signal, len, dst);
  return zppStsOk;
}

ZppStatus zppsDotProd_G729A_16s32s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp) {
  if (anyNull(src1, src2, dp)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  return ownDotProd_G729A_16s32s(src1, src2, len, dp) ? zppStsOverflowWarn : zppStsOk;
}
