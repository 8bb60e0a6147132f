// Total excitation of a subframe (3GPP TS 26.190 clauses 5.10 and 6.1).
#include <cstdlib>

#include "amrwb/arithmetic.h"
#include "amrwb/excitation/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsExcitation_AMRWB_16s_I(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch) {
  if (anyNull(code, srcDst)) return zppStsNullPointer;
  ownExcitation_AMRWB_16s_I(code, srcDst, gainCode, gainPitch);
  return zppStsOk;
}

void ownExcitation_AMRWB_16s_I(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch) {
  // Up to here 32 times the innovation keeps within 2^29 and the other product within 2^30: half of the standard's sum is
  // exact.
  const bool exact = (ownMaxAbs_16s(code, kSubframe) + 1) * std::abs(gainCode) <= 1 << 24;
  for (int n = 0; n < kSubframe; ++n) {
    if (exact) {
      srcDst[n] = sat16((code[n] * gainCode * 32 + srcDst[n] * gainPitch + (1 << 13)) >> 14);
      continue;
    }
    const Zpp32s innovation = shlSat32(mulDbl(gainCode, code[n]), 5);
    srcDst[n] = roundHigh16(shlSat32(macDbl(innovation, srcDst[n], gainPitch), 1));
  }
}
