// Long-term predictor: SSE2 kernels.
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/lag_search_w7.h"
#include "gsmfr/rounded_products_w7.h"
#include "gsmfr/tables.h"
#include "lpc/simd_correlation_w7.h"

using namespace zpp;
using namespace zpp::gsmfr;

LagMax ownLTPCorrelation_GSMFR_16s_W7(const Zpp16s* target, const Zpp16s* history) {
  return bestLag<FourLags>(target, history);
}

void ownLTPPredict_GSMFR_16s_W7(const Zpp16s* history, Zpp16s* dst, int lag, int gain) {
  const V factor = _mm_set1_epi16(ltpGain[gain]);
  const Zpp16s* const delayed = history + kGsmFrHistory - lag;
  for (int n = 0; n < kGsmFrSubframe; n += 8) store(dst + n, mulRoundWrapQ15(factor, load(delayed + n)));
}
