// Five-tap gain filter of the adaptive codebook: portable kernel.
#include "core/fixed_point.h"
#include "g723/pitch/kernels.h"

using namespace zpp;

void ownAdaptiveCodebookDecode_G723_16s_PX(const Zpp16s* taps, const Zpp16s* work, Zpp16s* dst) {
  for (int n = 0; n < 60; ++n) {
    Zpp64s sum = 1 << 13;
    for (int k = 0; k < 5; ++k) sum += taps[k] * work[n + k];
    dst[n] = sat16(sum >> 14);  // the upper half of four times the sum
  }
}
