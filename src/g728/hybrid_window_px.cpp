// Hybrid window: portable kernels.
#include "g728/hybrid_window.h"

#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

void ownWindow_G728_16s_PX(const Zpp16s* src, const Zpp16s* window, Zpp16s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) {
    const Zpp32s product = src[n] * window[n];
    dst[n] = roundHigh16(shift < 0 ? product >> 1 : product * (1 << shift));
  }
}

void ownWindowBlock_G728_16s_PX(const Zpp16s* src, const Zpp16s* window, const Zpp16s* shift, Zpp16s* dst, int vectors) {
  for (int n = 0; n < kVector * vectors; ++n) dst[n] = roundHigh16(shlSat32(src[n] * window[n], shift[n / kVector]));
}

Zpp32s ownFinishLags_G728_32s16s_PX(const Zpp32s* leaving, const Zpp32s* newest, Zpp16s* sums, Zpp16s* dst, int order,
                                    const LagShifts& s) {
  Zpp32s last = 0;
  for (int lag = 0; lag < order; ++lag) {
    sums[lag] = roundHigh16(shlSat32(advancedSum(sums[lag], leaving[lag], s), s.sums));
    last = shlSat32(wholeSum(sums[lag], newest[lag], s), s.result);
    dst[lag] = roundHigh16(last);
  }
  return last;
}
