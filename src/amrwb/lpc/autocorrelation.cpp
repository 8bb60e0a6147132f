// Windowing, autocorrelation and lag window (3GPP TS 26.190 clauses 5.2.1 and 5.2.2).
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/lpc/kernels.h"
#include "amrwb/lpc/tables.h"
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kWindow = 384;

}  // namespace

ZppStatus zppsAutoCorr_AMRWB_16s32s(const Zpp16s* src, Zpp32s* dst) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  ownAutoCorr_AMRWB_16s32s(src, dst);
  return zppStsOk;
}

void ownAutoCorr_AMRWB_16s32s(const Zpp16s* src, Zpp32s* dst) {
  alignas(16) Zpp16s windowed[kWindow];
  Zpp64s sum = fromHigh16(16);  // no term is negative: saturating the total is saturating every step
  for (int n = 0; n < kWindow; ++n) {
    windowed[n] = mulRoundQ15(src[n], analysisWindow[n]);
    sum += mulDbl(windowed[n], windowed[n]) >> 8;
  }
  const int shift = std::max(4 - (norm32(sat32(sum)) >> 1), 0);
  if (shift > 0)
    for (Zpp16s& x : windowed) x = static_cast<Zpp16s>((x + (1 << (shift - 1))) >> shift);

  Zpp32s lags[kOrder + 1];
  const Zpp64s exactEnergy = ownDotProd_16s(windowed, windowed, kWindow);
  const Zpp32s lag0 = sat32(1 + 2 * exactEnergy);
  const int norm = norm32(lag0);
  if (productsFit(exactEnergy, exactEnergy)) {
    ownPartialCorr_16s32s(windowed, windowed, kWindow, lags, kOrder + 1);
    for (Zpp32s& lag : lags) lag *= 2;
  } else {
    for (int k = 1; k <= kOrder; ++k) lags[k] = dotProductStepwise(windowed, windowed + k, kWindow - k, 0);
  }
  dst[0] = fromDpf(toDpf(shlWrap32(lag0, norm)));
  for (int k = 1; k <= kOrder; ++k) {
    const Dpf window = {lagWindowHigh[k - 1], lagWindowLow[k - 1]};
    dst[k] = fromDpf(toDpf(mulDpf(toDpf(shlSat32(lags[k], norm)), window)));
  }
}
