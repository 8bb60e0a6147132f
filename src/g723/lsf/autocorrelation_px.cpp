// Autocorrelation of 180 samples: portable kernel.
#include "core/fixed_point.h"
#include "g723/lsf/kernels.h"

using namespace zpp;

void ownAutoCorr_NormE_G723_16s32s_PX(const Zpp16s* src, int norm, Zpp32s* corr) {
  for (int k = 1; k <= 10; ++k) {
    Zpp32s sum = 0;
    for (int j = k; j < 180; ++j) sum += Zpp32s{src[j]} * src[j - k];
    corr[k - 1] = shlWrap32(sum, norm);  // exact: |sum| is at most the energy that norm was made for
  }
}
