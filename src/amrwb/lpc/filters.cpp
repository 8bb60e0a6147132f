// LP residual and synthesis filters (3GPP TS 26.190 clauses 5.3 and 6.1).
#include "amrwb/arithmetic.h"
#include "amrwb/lpc/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsResidualFilter_AMRWB_16s(const Zpp16s* lpc, const Zpp16s* src, Zpp16s* dst, int len) {
  if (anyNull(lpc, src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownResidualFilter_AMRWB_16s(lpc, src, dst, len);
  return zppStsOk;
}

ZppStatus zppsSynthesisFilter_AMRWB_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, int len, int order, Zpp16s* mem) {
  if (anyNull(lpc, srcDst, mem)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (order != 16 && order != 20) return zppStsOutOfRange;
  ownSynthesisFilter_AMRWB_16s_I(lpc, srcDst, len, order, mem);
  return zppStsOk;
}

ZppStatus zppsSynthesisFilter_AMRWB_16s32s(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale) {
  if (anyNull(lpc, src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(scale, 0, 8)) return zppStsBadScale;
  ownSynthesisFilter_AMRWB_16s32s(lpc, src, dst, len, scale);
  return zppStsOk;
}

void ownResidualFilter_AMRWB_16s(const Zpp16s* lpc, const Zpp16s* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp32s acc = mulDbl(src[n], lpc[0]);
    for (int j = 1; j <= kOrder; ++j) acc = macDbl(acc, lpc[j], src[n - j]);
    dst[n] = roundHigh16(shlSat32(acc, 4));
  }
}

void ownSynthesisFilter_AMRWB_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, int len, int order, Zpp16s* mem) {
  const int shift = norm16(lpc[0]) + 1;  // 3 for Q12
  const auto inputGain = static_cast<Zpp16s>(lpc[0] >> 1);
  for (int n = 0; n < len; ++n) {
    Zpp32s acc = mulDbl(srcDst[n], inputGain);
    for (int j = 1; j <= order; ++j) acc = msuDbl(acc, lpc[j], n >= j ? srcDst[n - j] : mem[order + n - j]);
    srcDst[n] = roundHigh16(shlSat32(acc, shift));
  }
  for (int j = 0; j < order; ++j) mem[j] = len + j >= order ? srcDst[len - order + j] : mem[len + j];
}

void ownSynthesisFilter_AMRWB_16s32s(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale) {
  const int shift = norm16(lpc[0]) + 1;
  const auto inputGain = static_cast<Zpp16s>(lpc[0] >> (4 + scale));
  for (int n = 0; n < len; ++n) {
    Zpp32s acc = 0;
    for (int j = 1; j <= kOrder; ++j) acc = msuDbl(acc, static_cast<Zpp16s>(dst[n - j] & 4095), lpc[j]);
    acc = macDbl(acc >> 12, src[n], inputGain);
    for (int j = 1; j <= kOrder; ++j) acc = msuDbl(acc, low16(dst[n - j] >> 12), lpc[j]);
    dst[n] = shlSat32(acc, shift) >> 4;
  }
}
