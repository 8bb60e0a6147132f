// Autocorrelation of a windowed frame.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr Zpp32s kEnergyLimit = 1073741823;  // the largest energy that can be doubled in 32 bits

Zpp64s lagSum(const Zpp16s* src, int len, int lag) { return lag < len ? ownDotProd_16s(src, src + lag, len - lag) : 0; }

}  // namespace

void ownAutoCorr_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst) {
  for (int k = 0; k < lenDst; ++k) dst[k] = wrap32(lagSum(src, len, k));
}

void ownAutoCorr_G729_16s32s_Sfs(const Zpp16s* src, int len, int firstLag, Zpp32s* dst, int lenDst, int shift) {
  for (int j = 0; j < lenDst; ++j) dst[j] = shlSat32(wrap32(lagSum(src, len, firstLag + j)), shift);
}

bool ownAutoCorr_NormE_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, Zpp32s* norm) {
  const Zpp64s energy = ownDotProd_16s(src, src, len);
  if (energy > kEnergyLimit) return false;
  const Zpp32s r0 = static_cast<Zpp32s>(energy) * 2 + 1;  // never zero
  const int shift = norm32(r0);
  dst[0] = shlSat32(r0, shift);
  ownAutoCorr_G729_16s32s_Sfs(src, len, 1, dst + 1, lenDst - 1, shift + 1);
  *norm = shift;
  return true;
}

void ownAutoCorr_NormE_NR_16s(const Zpp16s* src, int len, int firstLag, int step, Zpp16s* dst, int lenDst, Zpp32s* norm) {
  const Zpp32s r0 = sat32(2 * ownDotProd_16s(src, src, len));
  const int shift = norm32(r0);
  dst[0] = roundHigh16(shlSat32(r0, shift));
  for (int j = 1; j < lenDst; ++j)
    dst[j] = roundHigh16(shlSat32(sat32(lagSum(src, len, firstLag + (j - 1) * step)), shift + 1));
  *norm = shift;
}

void ownAutoCorr_Inv_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst) {
  for (int k = 0; k < lenDst; ++k) dst[k] = wrap32(ownDotProd_16s(src, src - k, len));
}

ZppStatus zppsAutoCorr_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1 || lenDst < 1) return zppStsBadSize;
  ownAutoCorr_16s32s(src, len, dst, lenDst);
  return zppStsOk;
}

ZppStatus zppsAutoCorr_NormE_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, Zpp32s* norm) {
  if (anyNull(src, dst, norm)) return zppStsNullPointer;
  if (len < 1 || lenDst < 1) return zppStsBadSize;
  return ownAutoCorr_NormE_16s32s(src, len, dst, lenDst, norm) ? zppStsOk : zppStsOverflowWarn;
}

ZppStatus zppsAutoCorr_NormE_NR_16s(const Zpp16s* src, int len, Zpp16s* dst, int lenDst, Zpp32s* norm) {
  if (anyNull(src, dst, norm)) return zppStsNullPointer;
  if (len < 1 || lenDst < 1) return zppStsBadSize;
  ownAutoCorr_NormE_NR_16s(src, len, 1, 1, dst, lenDst, norm);
  return zppStsOk;
}

ZppStatus _zppsAutoCorr_NormE_Step_NR_16s(const Zpp16s* src, int len, int firstLag, int step, Zpp16s* dst, int lenDst,
                                          Zpp32s* norm) {
  ownAutoCorr_NormE_NR_16s(src, len, firstLag, step, dst, lenDst, norm);
  return zppStsOk;
}

ZppStatus _zppsAutoCorr_G729_16s32s_Sfs(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, int firstLag, int shift) {
  ownAutoCorr_G729_16s32s_Sfs(src, len, firstLag, dst, lenDst, shift);
  return zppStsOk;
}

ZppStatus _zppsAutoCorr_Inv_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst) {
  ownAutoCorr_Inv_16s32s(src, len, dst, lenDst);
  return zppStsOk;
}
