// Autocorrelation of a windowed frame.
#include <utility>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr Zpp32s kEnergyLimit = 1073741823;  // the largest energy that can be doubled in 32 bits

}  // namespace

void ownAutoCorr_G729_16s32s_Sfs(const Zpp16s* src, int len, int firstLag, Zpp32s* dst, int lenDst, int shift) {
  ownPartialCorr_16s32s(src, src + firstLag, len - firstLag, dst, lenDst);
  for (int j = 0; j < lenDst; ++j) dst[j] = shlSat32(dst[j], shift);
}

bool ownAutoCorr_NormE_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, Zpp32s* norm) {
  const Zpp64s energy = ownDotProd_16s(src, src, len);
  if (energy > kEnergyLimit) return false;
  // No lag exceeds the energy, so its sum modulo 2^32 is exact.
  const Zpp32s r0 = static_cast<Zpp32s>(energy) * 2 + 1;  // never zero
  const int shift = norm32(r0);
  ownAutoCorr_G729_16s32s_Sfs(src, len, 1, dst + 1, lenDst - 1, shift + 1);
  dst[0] = shlSat32(r0, shift);
  *norm = shift;
  return true;
}

void ownAutoCorr_NormE_NR_16s(const Zpp16s* src, int len, int firstLag, int step, Zpp16s* dst, int lenDst, Zpp32s* norm) {
  const Zpp64s energy = ownDotProd_16s(src, src, len);
  const Zpp32s r0 = sat32(2 * energy);
  const int shift = norm32(r0);
  dst[0] = roundHigh16(shlSat32(r0, shift));
  const auto rounded = [shift](Zpp32s lag) { return roundHigh16(shlSat32(lag, shift + 1)); };
  *norm = shift;
  int j = 1, lag = firstLag;
  if (step == 1 && energy <= kMax32) {
    // No lag exceeds the energy, so its sum modulo 2^32 is exact.
    Zpp32s sums[16];
    while (j < lenDst) {
      const int lags = lenDst - j < 16 ? lenDst - j : 16;
      ownPartialCorr_16s32s(src, src + lag, len - lag, sums, lags);
      for (int i = 0; i < lags; ++i) dst[j + i] = rounded(sums[i]);
      j += lags;
      lag += lags;
    }
  }
  for (; j < lenDst; ++j, lag += step)
    dst[j] = lag < len ? rounded(sat32(ownDotProd_16s(src, src + lag, len - lag))) : Zpp16s{0};
}

void ownAutoCorr_Inv_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst) {
  ownCorr_16s32s(src, src - (lenDst - 1), len, dst, lenDst);
  for (int i = 0, k = lenDst - 1; i < k; ++i, --k) std::swap(dst[i], dst[k]);
}

ZppStatus zppsAutoCorr_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1 || lenDst < 1) return zppStsBadSize;
  ownPartialCorr_16s32s(src, src, len, dst, lenDst);
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
