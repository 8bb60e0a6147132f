// Total excitation of a subframe: portable kernel.
#include "amrwb/arithmetic.h"
#include "amrwb/excitation/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

void ownExcitation_AMRWB_16s_I_PX(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch) {
  for (int n = 0; n < kSubframe; ++n) {
    const Zpp32s innovation = shlSat32(mulDbl(gainCode, code[n]), 5);
    srcDst[n] = roundHigh16(shlSat32(macDbl(innovation, srcDst[n], gainPitch), 1));
  }
}
