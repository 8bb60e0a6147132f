// Open-loop pitch analysis of the weighted speech and the search for the harmonic noise shaping filter (ITU-T G.723.1
// clauses 2.9 and 2.11).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/lag_correlations.h"
#include "g723/pitch/kernels.h"
#include "lpc/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kHalfFrame = 120, kMinLag = 18, kMaxLag = 142;

// What a lag of the open-loop search is worth: numerator * 2^-exponent / denominator, the normalised squared correlation
struct Score {
  int exponent;
  Zpp16s numerator, denominator;
};

Score scored(Zpp32s correlation, Zpp32s energy) {
  int exponent = norm32(correlation);
  const Zpp16s mantissa = roundHigh16(correlation << exponent);
  exponent *= 2;
  const Zpp32s square = mulDbl(mantissa, mantissa);
  const int norm = norm32(square), normEnergy = norm32(energy);
  Score score{exponent + norm - normEnergy, high16(square << norm), roundHigh16(shlWrap32(energy, normEnergy))};
  if (score.numerator >= score.denominator) {
    score.exponent -= 1;
    score.numerator = static_cast<Zpp16s>(score.numerator >> 1);
  }
  return score;
}

// Whether a score beats the best one; a lag that is no neighbour of the best lag must do so by 1.25 dB.
bool beats(const Score& score, const Score& best, bool neighbour) {
  if (score.exponent > best.exponent) return false;
  if (score.exponent + 1 < best.exponent) return true;
  const Zpp32s product = mulDbl(score.numerator, best.denominator);
  const auto bestNumerator = static_cast<Zpp16s>(best.numerator >> (score.exponent + 1 == best.exponent ? 1 : 0));
  if (msuDbl(product, score.denominator, bestNumerator) <= 0) return false;
  return neighbour || msuDbl(addSat32(-(product >> 2), product), score.denominator, bestNumerator) > 0;
}

}  // namespace

ZppStatus zppsOpenLoopPitchSearch_G723_16s(const Zpp16s* src, Zpp16s* lag) {
  if (anyNull(src, lag)) return zppStsNullPointer;
  *lag = static_cast<Zpp16s>(ownOpenLoopPitchSearch_G723_16s(src));
  return zppStsOk;
}

ZppStatus zppsHarmonicSearch_G723_16s(const Zpp16s* src, Zpp16s* lag, Zpp16s* gain, Zpp16s openLoopLag) {
  if (anyNull(src, lag, gain)) return zppStsNullPointer;
  if (outside<int>(openLoopLag, kMinLag, kMaxLag)) return zppStsBadArgument;
  *lag = static_cast<Zpp16s>(ownHarmonicSearch_G723_16s(src, openLoopLag, gain));
  return zppStsOk;
}

int ownOpenLoopPitchSearch_G723_16s(const Zpp16s* src) {
  constexpr int kLags = kMaxLag - kMinLag + 1;
  Zpp32s correlations[kLags];  // modulo 2^32, of lags kMaxLag down to kMinLag
  ownCorr_16s32s(src, src - kMaxLag, kHalfFrame, correlations, kLags);
  // Energies with and without saturation: the recursion keeps what it once lost.
  const Zpp64s ownEnergy = 2 * ownDotProd_16s(src, src, kHalfFrame);
  Zpp64s exactEnergy = 2 * ownDotProd_16s(src - kMinLag + 1, src - kMinLag + 1, kHalfFrame);
  Zpp32s energy = sat32(exactEnergy);
  int bestLag = kMinLag;
  Score best{30, 16384, 32767};
  for (int lag = kMinLag; lag <= kMaxLag; ++lag) {
    const Zpp16s oldest = src[-lag], left = src[kHalfFrame - lag];
    exactEnergy += 2 * (Zpp64s{oldest} * oldest - left * left);
    energy = macDbl(msuDbl(energy, left, left), oldest, oldest);
    // No partial sum of x y exceeds half the sum of the energies of x and y.
    const Zpp32s correlation = ownEnergy + exactEnergy <= 2 * Zpp64s{kMax32}
                                   ? wrap32(2 * Zpp64s{correlations[kMaxLag - lag]})
                                   : zpp::dotProductStepwise(src, src - lag, kHalfFrame);
    if (correlation <= 0) continue;
    const Score score = scored(correlation, energy);
    if (beats(score, best, lag - bestLag < kMinLag)) best = score, bestLag = lag;
  }
  return bestLag;
}

int ownHarmonicSearch_G723_16s(const Zpp16s* src, int openLoopLag, Zpp16s* gain) {
  constexpr Zpp16s kMaxGain = 10240;  // Q15: 0.3125
  const int lastLag = openLoopLag + kNearLags / 2;
  const Zpp32s energy = zpp::energy(src, kSubframe);
  const LagCorrelations lags = correlateLags(src, energy, kSubframe, src - lastLag, kNearLags);  // the last one first
  Zpp32s largest = energy;
  for (int i = 0; i < kNearLags; ++i) largest = std::max({largest, lags.energy[i], absSat32(lags.correlation[i])});
  const int norm = norm32(largest);
  const auto normalised = [norm](Zpp32s x) { return roundHigh16(shlSat32(x, norm)); };
  int best = -1;
  Zpp16s bestNumerator = 1, bestEnergy = 32767, bestCorrelation = 0;
  for (int i = kNearLags - 1; i >= 0; --i) {
    const Zpp16s correlation = normalised(lags.correlation[i]), lagEnergy = normalised(lags.energy[i]);
    if (correlation <= 0) continue;
    const Zpp16s numerator = mulRoundQ15(correlation, correlation);
    if (msuDbl(mulDbl(numerator, bestEnergy), lagEnergy, bestNumerator) <= 0) continue;
    best = i, bestNumerator = numerator, bestEnergy = lagEnergy, bestCorrelation = correlation;
  }
  *gain = 0;
  if (best < 0) return openLoopLag;
  // The filter pays from a prediction gain on: correlation^2 above 0.375 of the product of the energies.
  const Zpp32s product = mulDbl(normalised(energy), bestEnergy);
  if (msuDbl(addSat32(product >> 2, product >> 3), bestCorrelation, bestCorrelation) < 0)
    *gain = bestCorrelation >= bestEnergy ? kMaxGain : mulRoundQ15(divQ15(bestCorrelation, bestEnergy), kMaxGain);
  return lastLag - best;
}
