// Closed-loop pitch search, decoding of the lag, and the adaptive-codebook gain (3GPP TS 26.090 clauses 5.6 and 6.1).
#include "amr/pitch/kernels.h"
#include "amr/pitch/lag_coding.h"
#include "amr/rate.h"
#include "amr/tables.h"
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

constexpr int kPast = 154;  // samples of past excitation in the callers' buffers

}  // namespace

ZppStatus zppsAdaptiveCodebookSearch_GSMAMR_16s(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* openLoopLags,
                                                Zpp16s* lag, Zpp16s* excitation, Zpp16s* fraction, Zpp16s* lagIndex,
                                                Zpp16s* vector, Zpp16s subframe, ZppSpeechRate rate) {
  if (anyNull(target, impulse, openLoopLags, lag, excitation, fraction, lagIndex, vector)) return zppStsNullPointer;
  if (outside<int>(subframe, 0, 3)) return zppStsBadSize;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownAdaptiveCodebookSearch_GSMAMR_16s(target, impulse, openLoopLags[subframe / 2], lag, excitation, fraction, lagIndex, vector,
                                       subframe, rate);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookDecode_GSMAMR_16s(Zpp16s lagIndex, Zpp16s* lastGoodLag, Zpp16s* decodedLag, Zpp16s* excitation,
                                                Zpp16s* lag, Zpp16s* vector, Zpp16s subframe, Zpp16s badFrame,
                                                Zpp16s backgroundNoise, Zpp16s voicedHangover, ZppSpeechRate rate) {
  if (anyNull(lastGoodLag, decodedLag, excitation, lag, vector)) return zppStsNullPointer;
  if (outside<int>(subframe, 0, 3)) return zppStsBadSize;
  if (!isSpeechRate(rate) && rate != ZPP_RATE_DTX) return zppStsOutOfRange;
  if (rate != ZPP_RATE_12200 && outside<int>(lagIndex, 0, 511)) return zppStsOutOfRange;
  ownAdaptiveCodebookDecode_GSMAMR_16s(lagIndex, lastGoodLag, decodedLag, excitation, lag, vector, subframe, badFrame != 0,
                                       backgroundNoise != 0, voicedHangover, rate);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookGain_GSMAMR_16s(const Zpp16s* target, const Zpp16s* filteredVector, Zpp16s* gain) {
  if (anyNull(target, filteredVector, gain)) return zppStsNullPointer;
  *gain = ownAdaptiveCodebookGain_16s(target, filteredVector, nullptr, 1);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookGainCoeffs_GSMAMR_16s(const Zpp16s* target, const Zpp16s* filteredVector, Zpp16s* gain,
                                                    Zpp16s* coefficients) {
  if (anyNull(target, filteredVector, gain, coefficients)) return zppStsNullPointer;
  *gain = ownAdaptiveCodebookGain_16s(target, filteredVector, coefficients, 1);
  return zppStsOk;
}

namespace {

const PitchSearch& searchOf(ZppSpeechRate rate) {
  switch (rate) {
    case ZPP_RATE_4750:
      return searchPrm[0];
    case ZPP_RATE_5150:
      return searchPrm[1];
    case ZPP_RATE_5900:
      return searchPrm[2];
    case ZPP_RATE_6700:
      return searchPrm[3];
    case ZPP_RATE_7400:
      return searchPrm[4];
    case ZPP_RATE_7950:
      return searchPrm[5];
    case ZPP_RATE_12200:
      return searchPrm[7];
    default:
      return searchPrm[6];  // 10.2 kbit/s; silence-descriptor frames decode their lags likewise
  }
}

LagCoding codingOf(ZppSpeechRate rate, int subframe) {
  const bool delta = subframe % 2 == 1 || (subframe == 2 && (rate == ZPP_RATE_4750 || rate == ZPP_RATE_5150));
  const bool fourBits = rate == ZPP_RATE_4750 || rate == ZPP_RATE_5150 || rate == ZPP_RATE_5900 || rate == ZPP_RATE_6700;
  return !delta ? LagCoding::absolute : fourBits ? LagCoding::delta4 : LagCoding::delta;
}

// Normalised correlation `fraction` after corr[0], in sixths of a sample or thirds
Zpp16s ownInterpol3or6(const Zpp16s* corr, int fraction, bool thirds) {
  if (thirds) fraction *= 2;
  if (fraction < 0) {
    fraction += 6;
    --corr;
  }
  Zpp32s sum = 0;
  for (int i = 0; i < 4; ++i) {
    sum = macDbl(sum, corr[-i], inter6Correlation[6 * i + fraction]);
    sum = macDbl(sum, corr[1 + i], inter6Correlation[6 * i + 6 - fraction]);
  }
  return roundHigh16(sum);
}

// The fraction first..last of largest correlation, the first of equals; the outermost ones belong to the neighbouring lag.
PitchLag ownSearchFrac(const Zpp16s* corr, int lag, int first, int last, bool thirds) {
  int best = first;
  Zpp16s largest = ownInterpol3or6(corr, first, thirds);
  for (int fraction = first + 1; fraction <= last; ++fraction) {
    const Zpp16s value = ownInterpol3or6(corr, fraction, thirds);
    if (value <= largest) continue;
    largest = value;
    best = fraction;
  }
  if (thirds) return best == -2 ? PitchLag{lag - 1, 1} : best == 2 ? PitchLag{lag + 1, -1} : PitchLag{lag, best};
  return best == -3 ? PitchLag{lag - 1, 3} : PitchLag{lag, best};
}

// The lag that the vector is built with: as coded, unless the index or the previous lag lies outside what an encoder sends. A
// range relative to the previous lag reaches one sample further than an index by itself, and such a lag may be `repeated`; a
// fraction may precede the smallest lag.
PitchLag limited(PitchLag lag, LagCoding coding, bool repeated, int minLag) {
  const int maxLag = coding == LagCoding::absolute && !repeated ? kMaxLag : kMaxLag + 1;
  if (lag.samples > maxLag) lag.samples = kMaxLag;
  if (lag.samples < minLag && !(lag.samples == minLag - 1 && lag.fraction > 0)) lag.samples = minLag;
  if (outside(lag.fraction, -3, 3)) lag.fraction = 0;
  return lag;
}

// Builds the vector in the current subframe of the excitation and copies it.
void adaptiveVector(Zpp16s* excitation, PitchLag lag, bool thirds, Zpp16s* vector) {
  ownPredLt_GSMAMR_16s_I(excitation + kPast, lag.samples, thirds ? 2 * lag.fraction : lag.fraction);
  for (int n = 0; n < kSubframe; ++n) vector[n] = excitation[kPast + n];
}

}  // namespace

void ownAdaptiveCodebookSearch_GSMAMR_16s(const Zpp16s* target, const Zpp16s* impulse, int openLoopLag, Zpp16s* lag,
                                          Zpp16s* excitation, Zpp16s* fraction, Zpp16s* lagIndex, Zpp16s* vector, int subframe,
                                          ZppSpeechRate rate) {
  constexpr int kTaps = 4, kMostLags = 20 + 2 * kTaps;
  const PitchSearch& search = searchOf(rate);
  const LagCoding coding = codingOf(rate, subframe);
  const LagRange range = coding == LagCoding::absolute ? getRange(openLoopLag, search.below, search.length, search.minLag)
                                                       : getRange(*lag, search.deltaBelow, search.deltaLength, search.minLag);
  Zpp16s correlations[kMostLags];
  Zpp16s* const corr = correlations + kTaps;
  ownNormCorr_GSMAMR_16s(excitation + kPast, target, impulse, range.min - kTaps, range.max + kTaps, correlations);

  int best = range.min;
  for (int t = range.min; t <= range.max; ++t)
    if (corr[t - range.min] >= corr[best - range.min]) best = t;

  int first = search.firstFraction, last = search.lastFraction;
  if (coding == LagCoding::absolute) {
    if (best > search.maxFractionalLag) first = last = 0;
  } else if (coding == LagCoding::delta4) {
    const int fromCentre = best - centreOf(range);
    if (fromCentre < -2 || fromCentre > 1) first = last = 0;
    if (fromCentre == -2) first = 0;
    if (fromCentre == 1) last = 0;
  }
  PitchLag found{best, 0};
  if (first != last) found = ownSearchFrac(&corr[best - range.min], best, first, last, search.thirds);

  *lagIndex = static_cast<Zpp16s>(search.thirds ? ownEncLag3(found, coding, range) : ownEncLag6(found, coding, range));
  *lag = static_cast<Zpp16s>(found.samples);
  *fraction = static_cast<Zpp16s>(found.fraction);
  adaptiveVector(excitation, found, search.thirds, vector);
}

void ownAdaptiveCodebookDecode_GSMAMR_16s(int lagIndex, Zpp16s* lastGoodLag, Zpp16s* decodedLag, Zpp16s* excitation,
                                          Zpp16s* lag, Zpp16s* vector, int subframe, bool badFrame, bool backgroundNoise,
                                          int voicedHangover, ZppSpeechRate rate) {
  const PitchSearch& search = searchOf(rate);
  const LagCoding coding = codingOf(rate, subframe);
  const int previous = search.thirds ? *lastGoodLag : *lag;
  const LagRange range = getRange(previous, search.deltaBelow, search.deltaLength, search.minLag);
  PitchLag decoded = search.thirds ? ownDecLag3(lagIndex, coding, range) : ownDecLag6(lagIndex, coding, range);
  const auto coded = static_cast<Zpp16s>(decoded.samples);
  bool repeated = badFrame;
  if (!search.thirds) {
    // 61 to 63 are no indices of a delta subframe.
    if (badFrame || (coding != LagCoding::absolute && lagIndex >= 61)) {
      *decodedLag = coded;
      decoded = {*lastGoodLag, 0};
      repeated = true;
    }
  } else {
    *decodedLag = coded;
    if (badFrame) {
      if (*lastGoodLag < kMaxLag) ++*lastGoodLag;
      const bool lowRate = rate == ZPP_RATE_4750 || rate == ZPP_RATE_5150 || rate == ZPP_RATE_5900;
      const bool keepsDecoded = backgroundNoise && voicedHangover > 4 && lowRate;
      decoded = {keepsDecoded ? coded : *lastGoodLag, 0};
      repeated = !keepsDecoded;
    }
  }
  decoded = limited(decoded, coding, repeated, search.minLag);
  *lag = static_cast<Zpp16s>(decoded.samples);
  adaptiveVector(excitation, decoded, search.thirds, vector);
}
