// Long-term predictor: AVX2 kernel.
#include "gsmfr/kernels.h"
#include "gsmfr/lag_search_w7.h"
#include "lpc/simd_correlation_v3.h"

using namespace zpp;

LagMax ownLTPCorrelation_GSMFR_16s_V3(const Zpp16s* target, const Zpp16s* history) {
  return gsmfr::bestLag<FourLagsWide>(target, history);
}
