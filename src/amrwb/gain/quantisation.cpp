// Joint quantisation of the pitch and code gains (3GPP TS 26.190 clause 5.9).
#include <algorithm>

#include "amrwb/gain/kernels.h"
#include "amrwb/gain/prediction.h"
#include "amrwb/gain/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kTerms = 5;

// value * 2^exponent
struct Coefficient {
  Zpp16s value;
  int exponent;
};

// The level in dB that the predictor adds to: 30 less the energy of the code vector, Q24
Zpp32s expectedLevel(const Zpp16s* code) {
  const Floating energy = energy12(code, kSubframe);
  Zpp16s exponent = 0, fraction = 0;
  ownLog2(energy.mantissa, &exponent, &fraction);
  const auto octaves = low16(exponent + energy.exponent - 55);                  // 2^18 for Q9, 2^6 samples
  Zpp32s level = macDbl(mulDbl(octaves, -24660), mulQ15(fraction, -24660), 1);  // -10 log10(2), Q13
  level = macDbl(level, 30, 8192);
  return shlSat32(level, 10);
}

// The codebook entries to be searched: 64 around the open-loop gain in the larger codebook. Clipping keeps pitch gains below 1.
struct Range {
  const Zpp16s (*pairs)[2];
  int first, count;
};
Range searchRange(Zpp16s gainPitch, bool clip, Mode mode) {
  if (hasSmallGainCodebook(mode)) return {gainCodebook6, 0, clip ? 48 : 64};
  const int candidates = clip ? 37 : 64;
  int first = 0;
  for (int i = 0; i < candidates; ++i) first += gainPitch > gainCodebook7[i + 32][0] ? 1 : 0;
  return {gainCodebook7, first, 64};
}

}  // namespace

ZppStatus zppsGainQuant_AMRWB_16s(const Zpp16s* target, const Zpp16s* filteredVector, const Zpp16s* filteredCode,
                                  const Zpp16s* code, const Zpp16s* coef, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* index,
                                  Zpp16s* mem, int scale, int clip, ZppSpeechRate rate) {
  if (anyNull(target, filteredVector, filteredCode, code, coef, gainPitch, gainCode, index, mem)) return zppStsNullPointer;
  if (outside(clip, 0, 1) || !isSpeechRate(rate)) return zppStsOutOfRange;
  ownGainQuant_AMRWB_16s(target, filteredVector, filteredCode, code, coef, gainPitch, gainCode, index, mem, scale, clip == 1,
                         modeOf(rate));
  return zppStsOk;
}

void ownGainQuant_AMRWB_16s(const Zpp16s* target, const Zpp16s* filteredVector, const Zpp16s* filteredCode, const Zpp16s* code,
                            const Zpp16s* coef, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* index, Zpp16s* mem, int scale,
                            bool clip, Mode mode) {
  scale = sat16(scale);
  const Range range = searchRange(*gainPitch, clip, mode);
  const PredictedGain predicted = predictedGain(expectedLevel(code), mem);
  const int s = predicted.exponent;

  // The error of a pair (gp, gc): y1.y1 gp^2 - 2 x.y1 gp + y2.y2 gc^2 - 2 x.y2 gc + 2 y1.y2 gp gc
  const Floating codeEnergy = energy12(filteredCode, kSubframe);
  const Floating targetCode = dotProduct12(target, filteredCode, kSubframe);
  const Floating vectorCode = dotProduct12(filteredVector, filteredCode, kSubframe);
  const Coefficient terms[kTerms] = {
      {coef[0], coef[1] - 13},
      {negSat16(coef[2]), coef[3] + 1 - 14},
      {high16(codeEnergy.mantissa), codeEnergy.exponent - 18 + 2 * scale + 15 + 2 * (s + 4)},
      {high16(negSat32(targetCode.mantissa)), targetCode.exponent - 8 + scale + s + 4},
      {high16(vectorCode.mantissa), vectorCode.exponent - 8 + scale + 1 + s + 4},
  };
  const int largest = std::max_element(terms, terms + kTerms, [](const Coefficient& a, const Coefficient& b) {
                        return a.exponent < b.exponent;
                      })->exponent;
  GainError error;
  for (int i = 0; i < kTerms; ++i) {
    const Dpf c = toDpf(shr32(fromHigh16(terms[i].value), largest - terms[i].exponent + 2));
    error.coarse[i] = c.hi;
    error.fine[i] = static_cast<Zpp16s>(c.lo >> 3);
  }
  const int best = ownSearchGains_AMRWB_16s(range.pairs + range.first, range.count, predicted.mantissa, &error);
  const Zpp16s* pair = range.pairs[range.first + best];
  *index = static_cast<Zpp16s>(range.first + best);
  *gainPitch = pair[0];
  *gainCode = shlSat32(mulDbl(pair[1], predicted.mantissa), s + 4);
  remember(pair[1], mem);
}
