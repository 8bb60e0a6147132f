// Immittance spectral pairs and frequencies (3GPP TS 26.190 clause 5.2.5).
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/lpc/kernels.h"
#include "amrwb/lpc/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr Zpp16s kHalfTurn = 16384;  // the ISF of the Nyquist frequency

constexpr bool isOrder(int order) { return order == 16 || order == 20; }

}  // namespace

ZppStatus zppsISPToISF_AMRWB_16s(const Zpp16s* isp, Zpp16s* isf, int order) {
  if (anyNull(isp, isf)) return zppStsNullPointer;
  if (!isOrder(order)) return zppStsBadSize;
  ownISPToISF_AMRWB_16s(isp, isf, order);
  return zppStsOk;
}

ZppStatus zppsISFToISP_AMRWB_16s(const Zpp16s* isf, Zpp16s* isp, int order) {
  if (anyNull(isf, isp)) return zppStsNullPointer;
  if (!isOrder(order)) return zppStsBadSize;
  ownISFToISP_AMRWB_16s(isf, isp, order);
  return zppStsOk;
}

void ownISPToISF_AMRWB_16s(const Zpp16s* isp, Zpp16s* isf, int order) {
  int step = 127;
  for (int i = order - 1; i >= 0; --i) {
    if (i == order - 2) step = 127;
    while (ispCosine[step] < isp[i]) --step;  // ends at 0, whose cosine is 32767
    const Zpp32s within = mulDbl(subSat16(isp[i], ispCosine[step]), ispSlope[step]);
    isf[i] = addSat16(roundHigh16(shlSat32(within, 4)), 128 * step);
  }
  isf[order - 1] >>= 1;
}

void ownISFToISP_AMRWB_16s(const Zpp16s* isf, Zpp16s* isp, int order) {
  for (int i = 0; i < order; ++i) {
    const Zpp16s x = i == order - 1 ? shlSat16(isf[i], 1) : isf[i];
    const Zpp16s angle = std::clamp<Zpp16s>(x, 0, kHalfTurn);
    const int step = angle >> 7, within = angle & 127;
    const Zpp16s cosine = ispCosine[step];
    isp[i] = within == 0 ? cosine : addSat16(cosine, ((ispCosine[step + 1] - cosine) * within * 2) >> 8);
  }
}
