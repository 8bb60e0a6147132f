// Closed-loop pitch analysis: delay and gain row of the adaptive codebook (ITU-T G.723.1 clause 2.14), and the target that the
// fixed codebook is left with.
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/pitch/kernels.h"
#include "g723/tables.h"
#include "lpc/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kWork = 64, kValues = 20;
constexpr int kMaxCandidates = 4;
constexpr int kMinLag = 18, kMaxLag = 141;

constexpr bool isOdd(int subframe) { return subframe % 2 != 0; }

}  // namespace

ZppStatus zppsAdaptiveCodebookSearch_G723(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* history,
                                          const Zpp32s* taming, Zpp16s* lag, Zpp16s* offset, Zpp16s* gainIndex,
                                          Zpp16s sineDetector, int subframe, ZppSpeechRate rate) {
  if (anyNull(target, impulse, history, lag, offset, gainIndex) || anyNull(taming)) return zppStsNullPointer;
  if (outside(subframe, 0, 3) || !isRate(rate)) return zppStsOutOfRange;
  if (outside<int>(*lag, kMinLag, isOdd(subframe) ? kMaxLag : kMaxLag + 1)) return zppStsBadArgument;
  const PitchChoice choice =
      ownAdaptiveCodebookSearch_G723(target, impulse, history, taming, *lag, sineDetector < 0, subframe, rate);
  *lag = static_cast<Zpp16s>(choice.lag);
  *offset = static_cast<Zpp16s>(choice.offset);
  *gainIndex = static_cast<Zpp16s>(choice.gainIndex);
  return zppStsOk;
}

ZppStatus zppsTargetUpdate_G723_16s_I(const Zpp16s* vector, const Zpp16s* impulse, Zpp16s* target) {
  if (anyNull(vector, impulse, target)) return zppStsNullPointer;
  ownTargetUpdate_G723_16s_I(vector, impulse, target);
  return zppStsOk;
}

PitchChoice ownAdaptiveCodebookSearch_G723(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* history,
                                           const Zpp32s* taming, int lag, bool sine, int subframe, ZppSpeechRate rate) {
  const bool odd = isOdd(subframe);
  const int centre = odd ? lag : std::clamp(lag, kMinLag + 1, kMaxLag - 1);
  const int firstDelay = centre - 1, candidates = odd ? kMaxCandidates : kMaxCandidates - 1;

  // All candidates' values share a scale.
  Zpp32s values[kMaxCandidates][kValues];
  Zpp32s largest = 0;
  for (int k = 0; k < candidates; ++k) {
    alignas(16) Zpp16s work[kWork];
    ownExcitationDelay_G723_16s(history, work, firstDelay + k);
    ownPitchCorrelations_G723_16s32s(target, impulse, work, values[k]);
    for (const Zpp32s value : values[k]) largest = std::max(largest, absSat32(value));
  }
  const int norm = norm32(largest);

  const int freedom = ownErrorTest_G723_32s(taming, firstDelay, firstDelay + candidates - 1, sine);
  const int rows[2] = {std::min(51 + 4 * freedom, 85), std::min(93 + 8 * freedom, 170)};
  Zpp32s best = 0;
  int bestCandidate = 1, bestRow = 0;
  for (int k = 0; k < candidates; ++k) {
    alignas(16) Zpp16s normalised[kValues];
    for (int j = 0; j < kValues; ++j) normalised[j] = roundHigh16(shlSat32(values[k][j], norm));
    const int table = ownTakesHighRateGains(odd ? centre : firstDelay + k, rate) ? 0 : 1;
    const int row = ownPitchGainSearch_G723_16s(normalised, AdCdbkGainTbl_G723[table], rows[table], &best);
    if (row >= 0) bestRow = row, bestCandidate = k;
  }
  return odd ? PitchChoice{lag, bestCandidate, bestRow} : PitchChoice{firstDelay + bestCandidate, 1, bestRow};
}

void ownTargetUpdate_G723_16s_I(const Zpp16s* vector, const Zpp16s* impulse, Zpp16s* target) {
  const Zpp64s energies[2] = {ownDotProd_16s(vector, vector, kSubframe), ownDotProd_16s(impulse, impulse, kSubframe)};
  // By Cauchy and Schwarz no sum exceeds 2^29: doubled it leaves room for the target's half.
  if ((energies[0] | energies[1]) >> 31 == 0 && energies[0] * energies[1] < Zpp64s{1} << 58) {
    Zpp32s sums[kSubframe];
    ownConvPartial_16s32s(vector, impulse, sums, kSubframe);
    for (int n = 0; n < kSubframe; ++n) target[n] = sat16(target[n] + (((1 << 13) - sums[n]) >> 14));
    return;
  }
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = fromHigh16(target[n]) >> 1;
    for (int j = 0; j <= n; ++j) sum = msuDbl(sum, vector[j], impulse[n - j]);
    target[n] = roundHigh16(shlSat32(sum, 1));
  }
}
