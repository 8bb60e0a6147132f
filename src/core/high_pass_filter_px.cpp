// The inputs' share of a high-pass filter: portable kernel.
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

void ownHighPassInputs_16s32s_PX(const Zpp16s* b, const Zpp16s* src, Zpp32s* dst, int len) {
  for (int n = 0; n < len; ++n)
    dst[n] = addWrap32(addWrap32(src[n] * b[0], src[n - 1] * b[1]), addWrap32(src[n - 2] * b[2], src[n - 3] * b[3]));
}
