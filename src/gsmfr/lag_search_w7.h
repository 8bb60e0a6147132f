// The lag search of the long-term predictor with sums of four lags at a time.
#pragma once

#include "core/simd_w7.h"
#include "gsmfr/kernels.h"

namespace zpp::gsmfr {

// Four lags a pass, each lane with a best of its own; of equal ones a lane keeps its smallest lag. Four: FourLags or wider
template <class Four>
LagMax bestLag(const Zpp16s* target, const Zpp16s* history) {
  V most = _mm_setzero_si128(), mostLag = _mm_set1_epi32(kGsmFrShortestLag);
  for (int lag = kGsmFrShortestLag;; lag += 4) {
    if (lag > kGsmFrLongestLag - 3) lag = kGsmFrLongestLag - 3;  // the last pass repeats lags of the one before
    Four four;
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

}  // namespace zpp::gsmfr
