// LSPs to LP coefficients (ITU-T G.729 clause 3.2.6) and interpolation (clause 3.2.5) in single precision (Annex C).
#include "core/checks.h"
#include "g729/lsp/kernels.h"

using namespace zpp;

namespace {

// The polynomial whose roots are five LSPs, every other one from lsp on: coefficients 0..5
void expandRoots(const Zpp32f* lsp, Zpp64f* g) {
  g[0] = 1;
  g[1] = -2 * Zpp64f{lsp[0]};
  for (int i = 2; i <= 5; ++i) {
    const Zpp64f b = -2 * Zpp64f{lsp[2 * (i - 1)]};
    g[i] = b * g[i - 1] + 2 * g[i - 2];
    for (int m = i - 1; m >= 2; --m) g[m] += b * g[m - 1] + g[m - 2];
    g[1] += b;
  }
}

}  // namespace

void ownLSPToLPC_G729_32f(const Zpp32f* lsp, Zpp32f* a) {
  Zpp64f f1[6], f2[6];
  expandRoots(lsp, f1);
  expandRoots(lsp + 1, f2);
  for (int i = 5; i > 0; --i) {
    f1[i] += f1[i - 1];
    f2[i] -= f2[i - 1];
  }
  a[0] = 1;
  for (int i = 1; i <= 5; ++i) {
    a[i] = static_cast<Zpp32f>((f1[i] + f2[i]) / 2);
    a[11 - i] = static_cast<Zpp32f>((f1[i] - f2[i]) / 2);
  }
}

void ownInterpolateC_G729_32f(const Zpp32f* src1, Zpp32f weight1, const Zpp32f* src2, Zpp32f weight2, Zpp32f* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = src1[n] * weight1 + src2[n] * weight2;
}

ZppStatus zppsLSPToLPC_G729_32f(const Zpp32f* lsp, Zpp32f* a) {
  if (anyNull(lsp, a)) return zppStsNullPointer;
  ownLSPToLPC_G729_32f(lsp, a);
  return zppStsOk;
}

ZppStatus zppsInterpolateC_G729_32f(const Zpp32f* src1, Zpp32f weight1, const Zpp32f* src2, Zpp32f weight2, Zpp32f* dst,
                                    int len) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownInterpolateC_G729_32f(src1, weight1, src2, weight2, dst, len);
  return zppStsOk;
}
