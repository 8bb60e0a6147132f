// Long-term predictor: SSE2 kernels.
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/rounded_products_w7.h"
#include "gsmfr/tables.h"
#include "lpc/simd_correlation_w7.h"

using namespace zpp;
using namespace zpp::gsmfr;

// Four lags a pass, each lane with a best of its own; of equal ones a lane keeps its smallest lag.
LagMax ownLTPCorrelation_GSMFR_16s_W7(const Zpp16s* target, const Zpp16s* history) {
  V most = _mm_setzero_si128(), mostLag = _mm_set1_epi32(kGsmFrShortestLag);
  for (int lag = kGsmFrShortestLag;; lag += 4) {
    if (lag > kGsmFrLongestLag - 3) lag = kGsmFrLongestLag - 3;  // the last pass repeats lags of the one before
    FourLags four;
    four.add(target, history + kGsmFrHistory - lag - 3, kGsmFrSubframe);
    const V sum = four.total(), better = _mm_cmpgt_epi32(sum, most);
    most = select(better, sum, most);
    mostLag = select(better, _mm_sub_epi32(_mm_set1_epi32(lag), _mm_setr_epi32(-3, -2, -1, 0)), mostLag);
    if (lag == kGsmFrLongestLag - 3) break;
  }
  Zpp32s sums[4], lags[4];
  store(sums, most);
  store(lags, mostLag);
  LagMax best = {sums[0], lags[0]};
  for (int i = 1; i < 4; ++i)
    if (sums[i] > best.value || (sums[i] == best.value && lags[i] < best.lag)) best = {sums[i], lags[i]};
  return best;
}

void ownLTPPredict_GSMFR_16s_W7(const Zpp16s* history, Zpp16s* dst, int lag, int gain) {
  const V factor = _mm_set1_epi16(ltpGain[gain]);
  const Zpp16s* const delayed = history + kGsmFrHistory - lag;
  for (int n = 0; n < kGsmFrSubframe; n += 8) store(dst + n, mulRoundWrapQ15(factor, load(delayed + n)));
}
