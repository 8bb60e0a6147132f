// Tilt compensation of the postfilter (3GPP TS 26.090 clause 6.2.1): portable kernel.
#include "amr/frame.h"
#include "amr/postfilter/kernels.h"
#include "core/fixed_point.h"

using namespace zpp;

void ownCompensateTilt_GSMAMR_16s_I_PX(Zpp16s factor, Zpp16s* srcDst) {
  for (int n = kSubframe - 1; n >= 0; --n) srcDst[n] = subSat16(srcDst[n], mulQ15(factor, srcDst[n - 1]));
}
