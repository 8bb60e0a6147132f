// Pre-emphasis: portable kernel.
#include "amrwb/filters/emphasis.h"
#include "amrwb/filters/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

int ownPreemphasisScale_AMRWB_16s_PX(const Zpp16s* src, int len, Zpp16s gamma, Zpp16s prev) {
  // The leading zeros of the largest magnitude are those of all together.
  Zpp32s magnitudes = 0;
  for (int n = 0; n < len; ++n) {
    magnitudes |= absSat32(preemphasised(src[n], prev, gamma));
    prev = src[n];
  }
  return preemphasisShift(magnitudes);
}

void ownPreemphasize_AMRWB_16s_I_PX(Zpp16s* srcDst, int len, Zpp16s gamma, int shift, Zpp16s* mem) {
  Zpp16s prev = *mem;
  for (int n = 0; n < len; ++n) {
    const Zpp16s x = srcDst[n];
    srcDst[n] = roundHigh16(shlSat32(preemphasised(x, prev, gamma), shift));
    prev = x;
  }
  *mem = prev;
}
