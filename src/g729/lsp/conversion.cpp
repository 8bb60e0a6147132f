// LSPs to LP coefficients (ITU-T G.729 clause 3.2.6), LSPs to LSFs and back (clause 3.2.4), interpolation (clause 3.2.5).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"
#include "lpc/kernels.h"
#include "lpc/tables.h"

using namespace zpp;

namespace {

// Visits the LSPs from the last to the first with the sample of cos15 at or above each. The sample never moves back, also where
// the LSPs are out of order.
template <class Convert>
void walkCosines(const Zpp16s* lsp, Convert convert) {
  int index = 63;
  for (int i = 9; i >= 0; --i) {
    while (cos15[index] < lsp[i]) --index;
    convert(i, index, (lsp[i] - cos15[index]) * acos12[index]);
  }
}

}  // namespace

void ownLSPToLSF_G729_16s(const Zpp16s* lsp, Zpp16s* lsf) {
  walkCosines(lsp, [lsf](int i, int index, Zpp32s offset) {
    const Zpp16s normalised = wrap16(index * 512 + (offset >> 11));  // Q16
    lsf[i] = wrap16((normalised * 3217) >> 12);
  });
}

void ownLSPToLSF_Norm_G729_16s(const Zpp16s* lsp, Zpp16s* lsfNorm) {
  walkCosines(lsp, [lsfNorm](int i, int index, Zpp32s offset) { lsfNorm[i] = sat16(index * 256 + ((offset + 2048) >> 12)); });
}

ZppStatus ownLSFToLSP_G729_16s(const Zpp16s* lsf, Zpp16s* lsp) {
  for (int i = 0; i < 10; ++i) {
    const Zpp32s normalised = (lsf[i] * 20861) >> 15;  // Q15
    if (normalised < 0) return zppStsOutOfDomain;
    const int index = normalised >> 8 > 63 ? 63 : normalised >> 8;
    lsp[i] = addSat16(cos15[index], ((normalised & 255) * slope_cos[index]) >> 12);
  }
  return zppStsOk;
}

ZppStatus zppsLSPToLPC_G729_16s(const Zpp16s* lsp, Zpp16s* a) {
  if (anyNull(lsp, a)) return zppStsNullPointer;
  ownLSPToLPC_G729_16s(lsp, a);
  return zppStsOk;
}

ZppStatus zppsLSPToLSF_G729_16s(const Zpp16s* lsp, Zpp16s* lsf) {
  if (anyNull(lsp, lsf)) return zppStsNullPointer;
  ownLSPToLSF_G729_16s(lsp, lsf);
  return zppStsOk;
}

ZppStatus zppsLSPToLSF_Norm_G729_16s(const Zpp16s* lsp, Zpp16s* lsfNorm) {
  if (anyNull(lsp, lsfNorm)) return zppStsNullPointer;
  ownLSPToLSF_Norm_G729_16s(lsp, lsfNorm);
  return zppStsOk;
}

ZppStatus zppsLSFToLSP_G729_16s(const Zpp16s* lsf, Zpp16s* lsp) {
  if (anyNull(lsf, lsp)) return zppStsNullPointer;
  return ownLSFToLSP_G729_16s(lsf, lsp);
}

void ownInterpolate_G729_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = static_cast<Zpp16s>((src1[n] >> 1) + (src2[n] >> 1));
}

void ownInterpolateC_G729_16s_Sfs(const Zpp16s* src1, Zpp16s weight1, const Zpp16s* src2, Zpp16s weight2, Zpp16s* dst, int len,
                                  int scaleFactor) {
  for (int n = 0; n < len; ++n) {
    const Zpp32s sum = addSat32(Zpp32s{src1[n]} * weight1, Zpp32s{src2[n]} * weight2);
    dst[n] = sat16(shr32(sum, scaleFactor));
  }
}

ZppStatus zppsInterpolate_G729_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownInterpolate_G729_16s(src1, src2, dst, len);
  return zppStsOk;
}

ZppStatus zppsInterpolateC_G729_16s_Sfs(const Zpp16s* src1, Zpp16s weight1, const Zpp16s* src2, Zpp16s weight2, Zpp16s* dst,
                                        int len, int scaleFactor) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (scaleFactor < 0) return zppStsBadScale;
  if (len < 1) return zppStsBadSize;
  ownInterpolateC_G729_16s_Sfs(src1, weight1, src2, weight2, dst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsInterpolateC_NR_G729_16s_Sfs(const Zpp16s* src1, Zpp16s weight1, const Zpp16s* src2, Zpp16s weight2, Zpp16s* dst,
                                           int len, int scaleFactor) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (scaleFactor < 0) return zppStsBadScale;
  if (len < 1) return zppStsBadSize;
  ownInterpolateC_NR_G729_16s_Sfs(src1, weight1, src2, weight2, dst, len, scaleFactor);
  return zppStsOk;
}
