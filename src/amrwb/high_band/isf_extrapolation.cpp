// Extrapolation of the ISFs to the high band at 6.60 kbit/s (3GPP TS 26.190 clause 6.3.2.1).
#include <algorithm>

#include "amrwb/high_band/kernels.h"
#include "amrwb/lpc/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kHighOrder = 20;

}  // namespace

ZppStatus zppsISFExtrapolate_AMRWB_16s(const Zpp16s* isf, Zpp16s* isp) {
  if (anyNull(isf, isp)) return zppStsNullPointer;
  Zpp16s extended[kHighOrder];
  ownISFExtrapolate_AMRWB_16s(isf, extended);
  ownISFToISP_AMRWB_16s(extended, isp, kHighOrder);
  return zppStsOk;
}

void ownISFExtrapolate_AMRWB_16s(const Zpp16s* isf, Zpp16s* extended) {
  constexpr int known = kOrder - 1, spacings = known - 1;  // the last ISF is of another kind
  Zpp16s* const h = extended;
  std::copy_n(isf, kOrder, h);
  h[kHighOrder - 1] = isf[kOrder - 1];

  // The lag, 2 to 4, at which the spacings repeat best
  Zpp16s spacing[spacings];
  for (int i = 0; i < spacings; ++i) spacing[i] = subSat16(h[i + 1], h[i]);
  Zpp32s sum = 0;
  for (int i = 2; i < spacings; ++i) sum = macDbl(sum, spacing[i], 2731);  // 1/12
  Zpp16s mean = roundHigh16(sum);
  const int norm = norm16(std::max<Zpp16s>(0, *std::max_element(spacing, spacing + spacings)));
  for (Zpp16s& s : spacing) s = shlSat16(s, norm);
  mean = shlSat16(mean, norm);
  const auto correlation = [&](int lag) {
    Zpp32s total = 0;
    for (int i = 7; i < spacings; ++i) {
      const Dpf product = toDpf(mulDbl(subSat16(spacing[i], mean), subSat16(spacing[i - lag], mean)));
      total = addSat32(total, mulDpf(product, product));
    }
    return total;
  };
  const Zpp32s at2 = correlation(2), at3 = correlation(3), at4 = correlation(4);
  int lag = at2 > at3 ? 2 : 3;
  if (at4 > std::max(at2, at3)) lag = 4;
  for (int i = known; i < kHighOrder - 1; ++i) h[i] = addSat16(h[i - 1], subSat16(h[i - lag], h[i - lag - 1]));

  // Stretched or compressed so that the last one lies where the lowest three predict it
  Zpp16s top = addSat16(mulQ15(subSat16(h[2], addSat16(h[4], h[3])), 5461), 20390);
  top = subSat16(std::min<Zpp16s>(top, 19456), h[known - 1]);
  const Zpp16s width = subSat16(h[kHighOrder - 2], h[known - 1]);
  const int normWidth = norm16(width), normTop = norm16(top) - 1;
  const Zpp16s factor = quotientQ15(shlSat16(top, normTop), shlSat16(width, normWidth));
  Zpp16s step[4];
  for (int k = 0; k < 4; ++k) step[k] = shlSat16(mulQ15(subSat16(h[known + k], h[known + k - 1]), factor), normWidth - normTop);
  for (int k = 1; k < 4; ++k) {  // two steps are at least 1280 (500 Hz) together
    if (addSat16(step[k], step[k - 1]) >= 1280) continue;
    if (step[k] > step[k - 1])
      step[k - 1] = subSat16(1280, step[k]);
    else
      step[k] = subSat16(1280, step[k - 1]);
  }
  for (int k = 0; k < 4; ++k) h[known + k] = addSat16(h[known + k - 1], step[k]);

  for (int i = 0; i < kHighOrder - 1; ++i) h[i] = mulQ15(h[i], 26214);  // 12.8 to 16 kHz
}
