// Correlations that both searches begin with.
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/fixed_codebook/kernels.h"
#include "lpc/kernels.h"

using namespace g723;
using namespace zpp;

void ownCorrelationChains_G723_16s32s(const Zpp16s* a, const Zpp16s* b, Zpp32s* dst) {
  const Zpp32s energyA = zpp::energy(a, kSubframe), energyB = zpp::energy(b, kSubframe);
  if (energyA == kMax32 || energyB == kMax32) {  // only then may a sum saturate (Cauchy and Schwarz)
    for (int d = 0; d < kSubframe; ++d) dst[d] = zpp::dotProductStepwise(a, b + d, kSubframe - d);
    return;
  }
  ownPartialCorr_16s32s(a, b, kSubframe, dst, kSubframe);
  for (int d = 0; d < kSubframe; ++d) dst[d] *= 2;
}
