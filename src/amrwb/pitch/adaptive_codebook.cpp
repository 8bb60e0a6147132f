// Closed-loop pitch search and the adaptive codebook's contribution (3GPP TS 26.190 clause 5.7).
#include <algorithm>

#include "amrwb/pitch/kernels.h"
#include "amrwb/pitch/lag_coding.h"
#include "amrwb/pitch/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsAdaptiveCodebookSearch_AMRWB_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* excitation, Zpp16s* minLag,
                                               Zpp16s* lag, Zpp16s* fraction, Zpp16s* index, Zpp16s openLoopLag, int subframe,
                                               ZppSpeechRate rate) {
  if (anyNull(target, impulse, excitation, minLag, lag, fraction, index)) return zppStsNullPointer;
  if (outside(subframe, 0, 3)) return zppStsOutOfRange;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownAdaptiveCodebookSearch_AMRWB_16s(target, impulse, excitation, minLag, lag, fraction, index, openLoopLag, subframe,
                                      modeOf(rate));
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookContribution_AMRWB_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* excitation,
                                                     Zpp16s* residualTarget, Zpp16s* target2, Zpp16s* filteredVector,
                                                     Zpp16s* gain, Zpp16s* coef, Zpp16s* select, int clip, ZppSpeechRate rate) {
  if (anyNull(target, impulse, excitation, residualTarget, target2, filteredVector, gain, coef, select))
    return zppStsNullPointer;
  if (outside(clip, 0, 1)) return zppStsOutOfRange;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownAdaptiveCodebookContribution_AMRWB_16s(target, impulse, excitation, residualTarget, target2, filteredVector, gain, coef,
                                            select, clip != 0, modeOf(rate));
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookLowPass_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int len) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownAdaptiveCodebookLowPass_AMRWB_16s(src, dst, len);
  return zppStsOk;
}

namespace {

// Normalised correlation `quarters` after corr[0]
Zpp16s interpolated(const Zpp16s* corr, int quarters) {
  if (quarters < 0) {
    quarters += 4;
    --corr;
  }
  return roundHigh16(shlSat32(dotProductStepwise(corr - 3, correlationTaps[quarters], 8, 0), 1));
}

// The fraction of largest correlation, the first of equals, from `first` up to 3 quarters
int bestFraction(const Zpp16s* corr, int first, int step) {
  int best = first;
  Zpp16s largest = interpolated(corr, first);
  for (int fraction = first + step; fraction <= 3; fraction += step) {
    const Zpp16s value = interpolated(corr, fraction);
    if (value <= largest) continue;
    largest = value;
    best = fraction;
  }
  return best;
}

// Gain of the filtered vector against the target, Q14, and the mantissas and exponents of its two sums
Zpp16s codebookGain(const Zpp16s* target, const Zpp16s* filtered, bool clip, Zpp16s* coef) {
  const Floating energyFiltered = energy12(filtered, kSubframe), correlation = dotProduct12(target, filtered, kSubframe);
  coef[0] = high16(energyFiltered.mantissa);
  coef[1] = static_cast<Zpp16s>(energyFiltered.exponent);
  coef[2] = high16(correlation.mantissa);
  coef[3] = static_cast<Zpp16s>(correlation.exponent);
  if (coef[2] < 0) return 0;
  const Zpp16s gain = shlSat16(quotientQ15(shr16(coef[2], 1), coef[0]), coef[3] - coef[1]);
  return std::min<Zpp16s>(gain, clip ? 15565 : 19661);  // 0.95, 1.2
}

}  // namespace

void ownAdaptiveCodebookSearch_AMRWB_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* excitation, Zpp16s* minLag,
                                         Zpp16s* lag, Zpp16s* fraction, Zpp16s* index, int openLoopLag, int subframe,
                                         Mode mode) {
  constexpr int taps = 4;
  const bool absolute = codesAbsolute(subframe, mode);
  const int first = absolute ? rangeAround(openLoopLag) : std::clamp<int>(*minLag, kMinLag, kMaxLag - (kLagsOfRange - 1));
  const int last = first + kLagsOfRange - 1;
  Zpp16s correlations[kLagsOfRange + 2 * taps];
  ownNormCorr_AMRWB_16s(excitation, target, impulse, first - taps, last + taps, correlations);

  const Zpp16s* const corr = correlations + taps - first;
  int best = first;
  for (int t = first; t <= last; ++t)
    if (corr[t] >= corr[best]) best = t;

  PitchLag found{best, 0};
  const Resolution resolution = resolutionOf(mode);
  if (!absolute || best < resolution.firstWhole) {
    const int step = hasLowRate(mode) || (absolute && best >= resolution.firstHalf) ? 2 : 1;
    found.quarters = bestFraction(corr + best, best == first ? 0 : step == 2 ? -2 : -3, step);
    if (found.quarters < 0) found = {best - 1, found.quarters + 4};
  }

  *index = static_cast<Zpp16s>(encodedLag(found, absolute, first, mode));
  if (absolute) *minLag = static_cast<Zpp16s>(rangeAround(found.samples));
  *lag = static_cast<Zpp16s>(found.samples);
  *fraction = static_cast<Zpp16s>(found.quarters);
  ownPredLt_AMRWB_16s_I(excitation, found.samples, found.quarters);
}

void ownAdaptiveCodebookContribution_AMRWB_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* excitation,
                                               Zpp16s* residualTarget, Zpp16s* target2, Zpp16s* filteredVector, Zpp16s* gain,
                                               Zpp16s* coef, Zpp16s* select, bool clip, Mode mode) {
  Zpp16s smooth[kSubframe];
  ownAdaptiveCodebookLowPass_AMRWB_16s(excitation, smooth, kSubframe);
  ownConvolution_AMRWB_16s(smooth, impulse, filteredVector);
  *gain = codebookGain(target, filteredVector, clip, coef);
  ownRemove_AMRWB_16s(target, filteredVector, *gain, target2);
  *select = 0;

  if (!hasLowRate(mode)) {
    Zpp16s filtered[kSubframe], remaining[kSubframe], sums[4];
    ownConvolution_AMRWB_16s(excitation, impulse, filtered);
    const Zpp16s plainGain = codebookGain(target, filtered, clip, sums);
    ownRemove_AMRWB_16s(target, filtered, plainGain, remaining);
    if (energy(remaining, kSubframe) <= 2 * ownDotProd_16s(target2, target2, kSubframe)) {
      *select = 1;
      *gain = plainGain;
      std::copy_n(filtered, kSubframe, filteredVector);
      std::copy_n(remaining, kSubframe, target2);
      std::copy_n(sums, 4, coef);
    }
  }
  if (*select == 0) std::copy_n(smooth, kSubframe, excitation);
  ownRemove_AMRWB_16s(residualTarget, excitation, *gain, residualTarget);
}
