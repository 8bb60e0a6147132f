// Pre-emphasis and de-emphasis: portable kernels.
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"

using namespace zpp;

void ownPreemphasize_GSMFR_16s_PX(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  Zpp16s previous = *memory;
  for (int n = 0; n < len; ++n) {
    const Zpp16s input = src[n];
    dst[n] = addSat16(input, mulRoundQ15(previous, -28180));
    previous = input;
  }
  *memory = previous;
}

void ownDeemphasize_GSMFR_16s_I_PX(Zpp16s* srcDst, int len, Zpp16s* memory) {
  Zpp16s previous = *memory;
  for (int n = 0; n < len; ++n) {
    previous = addSat16(srcDst[n], mulRoundQ15(previous, 28180));
    srcDst[n] = static_cast<Zpp16s>(addSat16(previous, previous) & ~7);
  }
  *memory = previous;
}
