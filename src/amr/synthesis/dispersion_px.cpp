// Anti-sparseness processing (3GPP TS 26.090 clause 6.1): convolution, portable kernel.
#include "amr/synthesis/kernels.h"
#include "core/fixed_point.h"

using namespace zpp;

void ownDisperse_GSMAMR_16s_PX(const Zpp16s* pulses, const DispersionResponse& response, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = 0;
  for (int position = 0; position < kSubframe; ++position) {
    if (pulses[position] == 0) continue;
    const Zpp16s* const delayed = response.from(position);
    for (int n = 0; n < kSubframe; ++n) dst[n] = addSat16(dst[n], mulQ15(pulses[position], delayed[n]));
  }
}
