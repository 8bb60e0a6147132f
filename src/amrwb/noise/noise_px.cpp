// White noise: portable kernel.
#include "amrwb/arithmetic.h"
#include "amrwb/noise/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

void ownNoise_AMRWB_16s_PX(Zpp16s* dst, int len, int shift, Zpp16s* seed) {
  for (int n = 0; n < len; ++n) dst[n] = shr16(nextRandom(*seed), shift);
}
