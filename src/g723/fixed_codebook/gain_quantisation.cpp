// Gain of the algebraic codebook (ITU-T G.723.1 clause 2.16).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/fixed_codebook/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

ZppStatus zppsGainQuant_G723_16s(const Zpp16s* target, const Zpp16s* filteredCode, Zpp16s* level) {
  if (anyNull(target, filteredCode, level)) return zppStsNullPointer;
  return ownGainQuant_G723_16s(target, filteredCode, level) ? zppStsOk : zppStsBadArgument;
}

bool ownGainQuant_G723_16s(const Zpp16s* target, const Zpp16s* filteredCode, Zpp16s* level) {
  constexpr int kLevels = 24;
  Zpp16s code[kSubframe];
  for (int n = 0; n < kSubframe; ++n) code[n] = static_cast<Zpp16s>(filteredCode[n] >> 3);
  const Zpp32s energy = zpp::energy(code, kSubframe);
  if (energy == 0) return false;
  const Zpp32s correlation = zpp::dotProduct(target, code, kSubframe);
  const int normCorrelation = norm32(correlation), normEnergy = norm32(energy);
  const Zpp16s c = high16(correlation << normCorrelation), e = high16(energy << normEnergy);
  *level = 0;
  if (c <= 0) return true;
  const Zpp16s gain = shlSat16(divQ15(static_cast<Zpp16s>(c >> 1), e), normEnergy - normCorrelation - 5);
  Zpp16s least = kMax16;
  for (int i = 0; i < kLevels; ++i) {
    const Zpp16s distance = absSat16(subSat16(gain, FcbkGainTable[i]));
    if (distance < least) least = distance, *level = static_cast<Zpp16s>(i);
  }
  return true;
}
