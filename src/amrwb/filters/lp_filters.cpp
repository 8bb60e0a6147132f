// LP residual and synthesis filters of order 16 and 20 (3GPP TS 26.190 clauses 5.3, 6.1 and 6.3): entries.
#include "amrwb/filters/kernels.h"
#include "core/checks.h"

using namespace zpp;

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
  synthesise(lpc, srcDst, len, order, mem);
  return zppStsOk;
}

ZppStatus zppsSynthesisFilter_AMRWB_16s32s(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale) {
  if (anyNull(lpc, src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(scale, 0, 8)) return zppStsBadScale;
  ownSynthesisFilter_AMRWB_16s32s(lpc, src, dst, len, scale);
  return zppStsOk;
}
