// Long-term predictor: portable kernels.
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/tables.h"

using namespace zpp;
using namespace zpp::gsmfr;

LagMax ownLTPCorrelation_GSMFR_16s_PX(const Zpp16s* target, const Zpp16s* history) {
  LagMax best = {0, kGsmFrShortestLag};
  for (int lag = kGsmFrShortestLag; lag <= kGsmFrLongestLag; ++lag) {
    Zpp32s sum = 0;
    for (int n = 0; n < kGsmFrSubframe; ++n) sum += target[n] * history[kGsmFrHistory - lag + n];
    if (sum > best.value) best = {sum, lag};
  }
  return best;
}

void ownLTPPredict_GSMFR_16s_PX(const Zpp16s* history, Zpp16s* dst, int lag, int gain) {
  for (int n = 0; n < kGsmFrSubframe; ++n) dst[n] = mulRoundQ15(ltpGain[gain], history[kGsmFrHistory - lag + n]);
}
