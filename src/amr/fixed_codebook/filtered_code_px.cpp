// The filtered code vector: portable kernel.
#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"

using namespace zpp;

void ownFilteredCode_GSMAMR_16s_PX(const Zpp16s* impulse, const Zpp16s* positions, const Zpp16s* weights, int pulses,
                                   Zpp16s* filtered) {
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = 0;
    for (int k = 0; k < pulses; ++k)
      if (n >= positions[k]) sum = macDbl(sum, impulse[n - positions[k]], weights[k]);
    filtered[n] = roundHigh16(sum);
  }
}
