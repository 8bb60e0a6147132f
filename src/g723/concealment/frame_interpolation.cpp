// Concealment of lost frames (ITU-T G.723.1 clause 3.10): class of the last good excitation, and the excitation regenerated
// from it.
#include <algorithm>
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/concealment/kernels.h"
#include "g723/lag_correlations.h"

using namespace g723;
using namespace zpp;

ZppStatus zppsVoicingDecision_G723_16s(const Zpp16s* src, Zpp16s* period, Zpp16s* energy, Zpp16s lag) {
  if (anyNull(src, period, energy)) return zppStsNullPointer;
  if (outside<int>(lag, 18, 141)) return zppStsBadCodedParam;
  *period = static_cast<Zpp16s>(ownVoicingDecision_G723_16s(src, lag, energy));
  return zppStsOk;
}

ZppStatus zppsResidualInterpolation_G723_16s(Zpp16s* history, Zpp16s* seed, Zpp16s* dst, Zpp16s period, Zpp16s gain,
                                             int lossCount) {
  if (anyNull(history, seed, dst)) return zppStsNullPointer;
  if (outside<int>(period, 0, kHistory) || outside(lossCount, 1, 3)) return zppStsBadArgument;
  ownResidualInterpolation_G723_16s(history, seed, dst, period, gain, lossCount == 3);
  return zppStsOk;
}

int ownVoicingDecision_G723_16s(const Zpp16s* src, int lag, Zpp16s* energy) {
  constexpr int kMaxLag = 142, kReach = kNearLags / 2, kLength = 120;
  const Zpp16s* last = src + kHistory + kFrame - kLength;
  const Zpp32s ownEnergy = zpp::energy(last, kLength);
  const int centre = std::min(lag, kMaxLag);
  int period = centre;
  Zpp32s most = 0, periodEnergy = 0;
  const LagCorrelations lags = correlateLags(last, ownEnergy, kLength, last - centre - kReach, kNearLags);
  for (int i = kNearLags - 1; i >= 0; --i)  // from the shortest lag on
    if (lags.correlation[i] > most) most = lags.correlation[i], period = centre + kReach - i, periodEnergy = lags.energy[i];
  *energy = roundHigh16(ownEnergy);
  const Zpp16s c = roundHigh16(most), e = roundHigh16(periodEnergy);
  if (c <= 0) return 0;
  // Voiced from a prediction gain of 0.58 dB on: c^2 above an eighth of the product of the energies
  return msuDbl(mulDbl(e, *energy) >> 3, c, c) < 0 ? period : 0;
}

void ownResidualInterpolation_G723_16s(Zpp16s* history, Zpp16s* seed, Zpp16s* dst, int period, Zpp16s gain, bool muted) {
  constexpr Zpp16s kDecay = 24576;  // Q15
  if (muted) {
    std::fill_n(dst, kFrame, Zpp16s{0});
  } else if (period > 0) {
    const Zpp16s* from = history + kHistory - period;
    for (int n = 0, phase = 0; n < kFrame; ++n) {
      dst[n] = mulQ15(from[phase], kDecay);
      if (++phase == period) phase = 0;
    }
    std::copy_n(dst + kFrame - kHistory, kHistory, history);
    return;
  } else {
    for (int n = 0; n < kFrame; ++n) {
      *seed = nextSeed(*seed);
      dst[n] = mulQ15(gain, *seed);
    }
  }
  std::fill_n(history, kHistory, Zpp16s{0});
}
