// Formant perceptual weighting (ITU-T G.723.1 clause 2.8) and the decoder's synthesis filter (clause 3.7).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/filters/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

ZppStatus zppsWeightingLPC_G723_16s(const Zpp16s* lpc, Zpp16s* weighting) {
  if (anyNull(lpc, weighting)) return zppStsNullPointer;
  ownWeightingLPC_G723_16s(lpc, weighting);
  return zppStsOk;
}

ZppStatus zppsWeightingFilter_G723_16s_I(const Zpp16s* weighting, Zpp16s* srcDst, Zpp16s* memory) {
  if (anyNull(weighting, srcDst, memory)) return zppStsNullPointer;
  ownPoleZeroFilter_G723_16s_I(weighting, weighting + kOrder, 0, srcDst, memory);
  return zppStsOk;
}

ZppStatus zppsSynthesisFilter_G723_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory) {
  if (anyNull(lpc, srcDst, memory)) return zppStsNullPointer;
  ownSynthesisFilter_G723_16s_I(lpc, srcDst, memory);
  return zppStsOk;
}

void ownWeightingLPC_G723_16s(const Zpp16s* lpc, Zpp16s* weighting) {
  for (int k = 0; k < kOrder; ++k) {
    weighting[k] = mulRoundQ15(lpc[k], PerFiltZeroTable[k]);
    weighting[kOrder + k] = mulRoundQ15(lpc[k], PerFiltPoleTable[k]);
  }
}
