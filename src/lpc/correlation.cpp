// Cross-correlation and lag search.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

Zpp32s backwardFiltered(const Zpp16s* target, const Zpp16s* signal, int len, int n) {
  return sat32(2 * ownDotProd_16s(target + n, signal, len - n));
}

}  // namespace

void ownCorrelate_16s32s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags) {
  for (int k = 0; k < lags; ++k) dst[k] = wrap32(ownDotProd_16s(src1, src2 + k, len));
}

void ownCrossCorr_16s32s_Sfs(const Zpp16s* target, const Zpp16s* signal, int len, Zpp32s* dst, int scaleFactor) {
  for (int n = 0; n < len; ++n) dst[n] = sat32(scaled(ownDotProd_16s(target + n, signal, len - n), scaleFactor));
}

void ownCrossCorr_NormM_16s(const Zpp16s* target, const Zpp16s* signal, int len, Zpp16s* dst) {
  Zpp32s most = 0;
  for (int n = 0; n < len; ++n) {
    const Zpp32s magnitude = absSat32(backwardFiltered(target, signal, len, n));
    if (magnitude > most) most = magnitude;
  }
  const int norm = norm32(most);
  const int shift = 18 - (norm > 16 ? 16 : norm);
  for (int n = 0; n < len; ++n) dst[n] = low16(shr32(backwardFiltered(target, signal, len, n), shift));
}

void ownCrossCorr_NR_16s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp16s* dst, int lags) {
  for (int k = 0; k < lags; ++k) dst[k] = roundHigh16(sat32(2 * ownDotProd_16s(src1, src2 + k, len)));
}

LagMax ownCrossCorrLagMax_16s(const Zpp16s* src1, const Zpp16s* src2, int len, int maxLag) {
  LagMax best{0, maxLag};
  for (int lag = maxLag; lag >= 0; --lag) {
    const Zpp32s sum = sat32(ownDotProd_16s(src1, src2 + lag, len));
    if (sum > best.value) best = {sum, lag};
  }
  return best;
}

LagMax ownCrossCorrLagMax_Inv_16s(const Zpp16s* target, const Zpp16s* signal, int len, int minLag, int maxLag) {
  LagMax best{kMin32, minLag};
  for (int lag = minLag; lag <= maxLag; ++lag) {
    const Zpp32s sum = sat32(2 * ownDotProd_16s(target, signal - lag, len));
    if (sum > best.value) best = {sum, lag};
  }
  return best;
}

LagMax ownAutoCorrLagMax_Fwd_16s(const Zpp16s* src, int len, int minLag, int maxLag) {
  LagMax best{kMin32, minLag > maxLag ? 0 : minLag};
  for (int lag = minLag; lag <= maxLag; ++lag) {
    const Zpp32s sum = wrap32(ownDotProd_16s(src, src + lag, len));
    if (sum > best.value) best = {sum, lag};
  }
  return best;
}

LagMax ownAutoCorrLagMax_Inv_16s(const Zpp16s* src, int len, int minLag, int maxLag) {
  LagMax best{kMin32, minLag > maxLag ? 0 : minLag};
  for (int lag = minLag; lag <= maxLag; ++lag) {
    const Zpp32s sum = wrap32(ownDotProd_16s(src, src - lag, len));
    if (sum > best.value) best = {sum, lag};
  }
  return best;
}

bool ownDotProd_G729A_16s32s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp) {
  Zpp32s acc = 0;
  bool overflow = false;
  for (int n = 0; n < len; n += 2) {
    const Zpp64s product = Zpp64s{2} * src1[n] * src2[n];
    const Zpp64s sum = acc + Zpp64s{sat32(product)};
    acc = sat32(sum);
    overflow |= product > kMax32 || acc != sum;
  }
  *dp = acc;
  return overflow;
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
