// Stability factor of the spectrum (3GPP TS 26.190 clause 6.1).
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/isf/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsISFStability_AMRWB_16s(const Zpp16s* isf, const Zpp16s* prevIsf, Zpp16s* factor) {
  if (anyNull(isf, prevIsf, factor)) return zppStsNullPointer;
  *factor = ownISFStability_AMRWB_16s(isf, prevIsf);
  return zppStsOk;
}

Zpp16s ownISFStability_AMRWB_16s(const Zpp16s* isf, const Zpp16s* prevIsf) {
  Zpp32s distance = 0;
  for (int i = 0; i < kOrder - 1; ++i) {
    const Zpp16s d = subSat16(isf[i], prevIsf[i]);
    distance = macDbl(distance, d, d);
  }
  const Zpp16s weighted = mulQ15(high16(shlSat32(distance, 8)), 26214);
  return std::max<Zpp16s>(shlSat16(subSat16(20480, weighted), 1), 0);
}
