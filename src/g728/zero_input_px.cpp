// Zero-input response of the synthesis filter: portable kernel.
#include "g728/kernels.h"
#include "g728/synthesis_filter.h"

using namespace zpp;
using namespace zpp::g728;

void ownZeroInputSums_G728_16s_PX(const Zpp16s* coef, const Zpp16s* memory, const Zpp16s* shift, Zpp64s* sums) {
  for (int n = 0; n < kVector; ++n) {
    sums[n] = 0;
    // Sample k of the memory, oldest first, meets coefficient kOrder - 1 - k + n, if there is one.
    for (int vector = 0; vector < kPastVectors; ++vector) {
      if (vector == 0 && shift[0] >= 30) continue;
      Zpp32s sum = 0;
      for (int k = vector == 0 ? n : 0; k < kVector; ++k)
        sum = subWrap32(sum, memory[kVector * vector + k] * coef[kOrder - 1 - kVector * vector - k + n]);
      sums[n] += shr32(sum, shift[vector]);
    }
  }
}
