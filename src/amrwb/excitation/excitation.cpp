// Total excitation of a subframe (3GPP TS 26.190 clauses 5.10 and 6.1).
#include "amrwb/excitation/kernels.h"
#include "core/checks.h"

using namespace zpp;

ZppStatus zppsExcitation_AMRWB_16s_I(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch) {
  if (anyNull(code, srcDst)) return zppStsNullPointer;
  ownExcitation_AMRWB_16s_I(code, srcDst, gainCode, gainPitch);
  return zppStsOk;
}
