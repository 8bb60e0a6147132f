// The filtered code vector: portable kernel.
#include <algorithm>

#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

void ownFilteredCode_GSMAMR_16s_PX(const Zpp16s* impulse, const Zpp16s* positions, const Zpp16s* weights, int pulses,
                                   Zpp16s* filtered) {
  Zpp64s magnitudes = 0;
  for (int k = 0; k < pulses; ++k) magnitudes += absSat16(weights[k]) + 1;
  if (magnitudes * (ownMaxAbs_16s(impulse, kSubframe) + 1) >= 1 << 30) {
    for (int n = 0; n < kSubframe; ++n) {
      Zpp32s sum = 0;
      for (int k = 0; k < pulses; ++k)
        if (n >= positions[k]) sum = macDbl(sum, impulse[n - positions[k]], weights[k]);
      filtered[n] = roundHigh16(sum);
    }
    return;
  }
  // No sum of doubled products can saturate: pulse by pulse, with zeros before the response.
  Zpp16s response[2 * kSubframe] = {};
  std::copy_n(impulse, kSubframe, response + kSubframe);
  Zpp32s sums[kSubframe] = {};
  for (int k = 0; k < pulses; ++k) {
    const Zpp16s* const from = response + kSubframe - positions[k];
    for (int n = 0; n < kSubframe; ++n) sums[n] += from[n] * weights[k];
  }
  for (int n = 0; n < kSubframe; ++n) filtered[n] = sat16((sums[n] + 0x4000) >> 15);
}
