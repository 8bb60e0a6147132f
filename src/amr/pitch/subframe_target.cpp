// Impulse response, LP residual and target of a subframe (3GPP TS 26.090 clause 5.5).
#include "amr/pitch/kernels.h"
#include "core/checks.h"

using namespace zpp;

ZppStatus zppsImpulseResponseTarget_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* weight1, const Zpp16s* weight2,
                                               const Zpp16s* quantLpc, const Zpp16s* errorMem, const Zpp16s* weightMem,
                                               Zpp16s* impulse, Zpp16s* residual, Zpp16s* target) {
  if (anyNull(speech, weight1, weight2, quantLpc, errorMem, weightMem, impulse, residual, target)) return zppStsNullPointer;
  ownImpulseResponseTarget_GSMAMR_16s(speech, weight1, weight2, quantLpc, errorMem, weightMem, impulse, residual, target);
  return zppStsOk;
}
