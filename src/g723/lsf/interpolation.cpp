// LSF interpolation between two frames (ITU-T G.723.1 clause 2.7).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/lsf/kernels.h"

using namespace zpp;

ZppStatus zppsLSFInterpolation_G723_16s(const Zpp16s* prevLsf, const Zpp16s* lsf, Zpp16s* lpc) {
  if (anyNull(prevLsf, lsf, lpc)) return zppStsNullPointer;
  ownLSFInterpolation_G723_16s(prevLsf, lsf, lpc);
  return zppStsOk;
}

void ownLSFInterpolation_G723_16s(const Zpp16s* prevLsf, const Zpp16s* lsf, Zpp16s* lpc) {
  constexpr int kOrder = 10, kSubframes = 4;
  for (int i = 1; i <= kSubframes; ++i, lpc += kOrder) {
    // A weighted mean, rounded half up, lies between its two.
    for (int j = 0; j < kOrder; ++j)
      lpc[j] = static_cast<Zpp16s>((kSubframes * prevLsf[j] + i * (lsf[j] - prevLsf[j]) + 2) >> 2);
    ownLSFToLPC_G723_16s_I(lpc);
  }
}
