// Formant postfilter with tilt compensation, and the gain control behind it (ITU-T G.723.1 clauses 3.8 and 3.9).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/filters/kernels.h"
#include "g723/postfilter/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

namespace {

// First reflection coefficient of a subframe. *energy: of the subframe, a sixteenth of it doubled
Zpp16s reflection(const Zpp16s* src, Zpp32s* energy) {
  Zpp16s scaled[kSubframe];
  const int scale = blockScale(src, scaled, kSubframe);
  // 60 products of samples of at most 4096 stay below 2^31.
  const Zpp32s full = zpp::energy(scaled, kSubframe);
  const Zpp32s half = wrap32(ownDotProd_16s(scaled + 1, scaled, kSubframe - 1));
  *energy = shlSat32(full, -(2 * scale + 4));
  const Zpp16s divisor = high16(full);
  if (divisor == 0) return 0;
  const Zpp16s magnitude = quotient(absSat32(half), divisor);
  return static_cast<Zpp16s>(half < 0 ? -magnitude : magnitude);
}

}  // namespace

ZppStatus zppsFormantPostFilter_G723_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory, Zpp16s* tilt, Zpp32s* energy) {
  if (anyNull(lpc, srcDst, memory, tilt) || anyNull(energy)) return zppStsNullPointer;
  *energy = ownFormantPostFilter_G723_16s_I(lpc, srcDst, memory, tilt);
  return zppStsOk;
}

ZppStatus zppsGainControl_G723_16s_I(Zpp16s* srcDst, Zpp16s* gain, Zpp32s energy) {
  if (anyNull(srcDst, gain)) return zppStsNullPointer;
  if (energy < 0) return zppStsBadArgument;
  ownGainControl_G723_16s_I(srcDst, gain, energy);
  return zppStsOk;
}

Zpp32s ownFormantPostFilter_G723_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory, Zpp16s* tilt) {
  Zpp16s zeros[kOrder], poles[kOrder];
  for (int k = 0; k < kOrder; ++k) {
    zeros[k] = mulRoundQ15(lpc[k], PostFiltZeroTable[k]);
    poles[k] = mulRoundQ15(lpc[k], PostFiltPoleTable[k]);
  }
  Zpp32s energy = 0;
  constexpr Zpp16s kNewShare = 8192;  // Q15
  const Zpp16s newest = reflection(srcDst, &energy);
  *tilt = roundHigh16(macDbl(msuDbl(fromHigh16(*tilt), *tilt, kNewShare), newest, kNewShare));
  const auto compensation = static_cast<Zpp16s>(mulQ15(*tilt, -16384) & -4);
  ownPoleZeroFilter_G723_16s_I(zeros, poles, compensation, srcDst, memory);
  return energy;
}

void ownGainControl_G723_16s_I(Zpp16s* srcDst, Zpp16s* gain, Zpp32s energy) {
  constexpr Zpp16s kNewShare = 2048;  // Q15
  Zpp16s quarter[kSubframe];
  for (int n = 0; n < kSubframe; ++n) quarter[n] = static_cast<Zpp16s>(srcDst[n] >> 2);
  const Zpp32s present = zpp::energy(quarter, kSubframe);
  Zpp16s target = 4096;  // Q12
  if (present > 0 && energy > 0) {
    const int normPresent = norm32(present), normEnergy = norm32(energy);
    const Zpp16s ratio = quotient((energy << normEnergy) >> 1, high16(present << normPresent));
    target = squareRoot(shr32(fromHigh16(ratio), std::max(5 - normPresent + normEnergy, 0)));
  }
  for (int n = 0; n < kSubframe; ++n) {
    *gain = roundHigh16(macDbl(msuDbl(fromHigh16(*gain), *gain, kNewShare), target, kNewShare));
    const Zpp16s lifted = addSat16(*gain, *gain >> 4);
    srcDst[n] = roundHigh16(shlSat32(mulDbl(srcDst[n], lifted), 4));
  }
}
