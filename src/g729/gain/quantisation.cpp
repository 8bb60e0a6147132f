// Conjugate-structure vector quantisation of the gain pair (ITU-T G.729 clause 3.9.2 and Annex D).
//
// Numbers travel as a mantissa and its Q format; every 32-bit step saturates as the standard's does.
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/gain/kernels.h"
#include "g729/gain/prediction.h"
#include "g729/gain/tables.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr Zpp16s kTamedGain = 481;     // 0.94 in Q9: the unquantised pitch gain at most, under taming
constexpr Zpp16s kTamedLimit = 16383;  // quantised pitch gains stay below 1 in Q14

// What the two rates do differently
struct GainCodebook {
  const Zpp16s (*first)[2], (*second)[2];
  const Zpp16s *map1, *map2;
  const Zpp16s (*coef)[2];
  const Zpp32s (*wideCoef)[2];
  const Zpp16s *thr1, *thr2;
  int thresholds1, thresholds2, kept1, kept2, secondRows;
  int threshold1Shift, codeGainShift;
  Zpp16s inverse;          // 1 / (c00 c11 - c01 c10) of the pre-selection
  int correctionHeadroom;  // Q format of the search's correlations with the code gain
};
constexpr GainCodebook kFullRate = {gbk1, gbk2, map1, map2, coef, L_coef, thr1, thr2, 4, 8, 4, 8, 16, 3, 7, -17103, 0};
constexpr GainCodebook k6k = {gbk1_6k, gbk2_6k, map1_6k, map2_6k, coef_6k, L_coef_6k, thr1_6k, thr2_6k, 2,
                              2,       6,       6,       8,       2,       6,         -28940,  1};

struct Scaled {
  Zpp16s mantissa;
  int q;
};

Zpp32s shrSat32(Zpp32s x, int n) { return shlSat32(x, -n); }

// The mantissa is the upper half of the normalised value.
Scaled normalised(Zpp32s value, int q) {
  const int n = norm32(value);
  return {high16(shlSat32(value, n)), q + n - 16};
}

// 1 + 2 <a, b>, normalised and rounded
Scaled correlation(const Zpp16s* a, const Zpp16s* b, int q) {
  const Zpp32s value = sat32(2 * ownDotProd_16s(a, b, kSubframe) + 1);
  const int n = norm32(value);
  return {roundHigh16(shlSat32(value, n)), n + q};
}

// The error of a gain pair is g[0] gp^2 + g[1] gp + g[2] gc^2 + g[3] gc + g[4] gp gc.
struct ErrorTerms {
  Scaled g[5];
};

ErrorTerms errorTerms(const Zpp16s* target, const Zpp16s* adaptive, const Zpp16s* filtered) {
  Zpp16s coeffs[4], scaled[kSubframe];
  ownAdaptiveCodebookGain_16s(target, adaptive, coeffs, 0);
  ownRShiftC_16s(filtered, scaled, kSubframe, 3);
  ErrorTerms terms;
  terms.g[0] = {coeffs[0], -coeffs[1]};
  terms.g[1] = {negSat16(coeffs[2]), coeffs[2] > 0 ? -coeffs[3] - 1 : 14};
  terms.g[2] = correlation(scaled, scaled, 3);
  terms.g[3] = correlation(target, scaled, -7);
  terms.g[3].mantissa = negSat16(terms.g[3].mantissa);
  terms.g[4] = correlation(adaptive, scaled, -7);
  return terms;
}

// a1 a2 - b1 b2 of products whose Q formats differ; halved beforehand where both may be large
Scaled determinant(Zpp32s a, int qa, Zpp32s b, int qb, int halving) {
  const Zpp32s difference = qa > qb ? subSat32(shrSat32(a, qa - qb + halving), shr32(b, halving))
                                    : subSat32(shr32(a, halving), shrSat32(b, qb - qa + halving));
  return normalised(difference, std::min(qa, qb) - halving);
}

struct BestGains {
  Zpp16s pitch;  // Q9
  Zpp16s code;   // Q2
};

// Where the error has its minimum, without quantisation
BestGains bestGains(const ErrorTerms& terms, bool taming) {
  const auto& g = terms.g;
  const auto product = [&](int i, int k) { return mulDbl(g[i].mantissa, g[k].mantissa); };
  const Scaled denominator = determinant(product(0, 2), g[0].q + g[2].q - 1, product(4, 4), 2 * g[4].q + 1, 0);
  const Zpp16s inverse = negSat16(divQ15(16384, denominator.mantissa));
  const int inverseQ = 29 - denominator.q;
  const auto quotient = [&](const Scaled& numerator, int q) {
    return high16(shrSat32(mulDbl(numerator.mantissa, inverse), numerator.q + inverseQ - q));
  };
  const Zpp16s pitch = quotient(determinant(product(2, 1), g[2].q + g[1].q, product(3, 4), g[3].q + g[4].q + 1, 1), 24);
  const Zpp16s code = quotient(determinant(product(0, 3), g[0].q + g[3].q, product(1, 4), g[1].q + g[4].q + 1, 1), 17);
  return {taming ? std::min(pitch, kTamedGain) : pitch, code};
}

// The first row that pre-selection keeps: as many as there are thresholds below the value
int firstKept(Zpp32s value, const Zpp16s* thresholds, int count, int shift, Zpp16s predicted) {
  int row = 0;
  while (row < count) {
    const Zpp32s limit = mulDbl(thresholds[row], predicted) >> shift;
    if (predicted > 0 ? value <= limit : value >= limit) break;
    ++row;
  }
  return row;
}

struct Candidates {
  int first, second;
};

Candidates ownPreSearchCdbk(const GainCodebook& book, BestGains best, Zpp16s predicted) {
  const Zpp32s pitchPart = mulDbl(book.coef[0][0], best.pitch);
  const Zpp16s u2 = high16(addSat32(pitchPart, book.wideCoef[1][1] >> 15));
  const Zpp32s v2 = subSat32(best.code * (1 << book.codeGainShift), mulDbl(u2, predicted));
  const Zpp32s x = mulDbl(high16(shlSat32(v2, 2)), book.inverse);
  const Zpp16s u1 = mulQ15(high16(subSat32(pitchPart, book.wideCoef[0][1] >> 10)), predicted);
  const Zpp32s v1 = subSat32(mulDbl(u1, book.coef[1][0]), mulDbl(book.coef[0][0], best.code) >> 3);
  const Zpp32s y = mulDbl(high16(shlSat32(v1, 2)), book.inverse);
  return {firstKept(y, book.thr1, book.thresholds1, book.threshold1Shift, predicted),
          firstKept(x, book.thr2, book.thresholds2, 5, predicted)};
}

struct GainPair {
  Zpp16s pitch;       // Q14
  Zpp32s correction;  // Q13
};

GainPair gainPair(const GainCodebook& book, Candidates rows) {
  const Zpp16s *first = book.first[rows.first], *second = book.second[rows.second];
  return {addSat16(first[0], second[0]), first[1] + second[1]};
}

// The pair of least error among the kept rows; the first of them when taming excludes all
Candidates leastError(const GainCodebook& book, const ErrorTerms& terms, PredictedGain predicted, Candidates kept,
                      bool taming) {
  const auto& g = terms.g;
  const int q = predicted.q, headroom = book.correctionHeadroom;
  const int exponents[5] = {g[0].q + 13, g[1].q + 14, g[2].q + 2 * q - 21 + 2 * headroom, g[3].q + q - 3 + headroom,
                            g[4].q + q - 4 + headroom};
  const int least = *std::min_element(exponents, exponents + 5);
  const int base = std::min(kept.second, book.secondRows - 8);  // eight rows that hold those kept
  GainSearch search = {book.first + kept.first,
                       book.kept1,
                       book.second + base,
                       kept.second - base,
                       book.kept2,
                       {},
                       predicted.mantissa,
                       taming ? kTamedLimit : static_cast<Zpp16s>(kMax16)};
  for (int i = 0; i < 5; ++i) search.factor[i] = toDpf(shr32(fromHigh16(g[i].mantissa), exponents[i] - least));
  const int best = ownWeightedMSE_G729(search);
  return {kept.first + best / 8, base + best % 8};
}

void quantise(const GainCodebook& book, const Zpp16s* target, const Zpp16s* adaptive, const Zpp16s* code,
              const Zpp16s* filtered, Zpp16s* memory, Zpp16s* index, Zpp16s* gain, bool taming) {
  const ErrorTerms terms = errorTerms(target, adaptive, filtered);
  const PredictedGain predicted = ownGainPredict(sat32(ownDotProd_16s(code, code, kSubframe)), memory);
  // Q4: the pre-selection's scale
  const Zpp16s predictedQ4 =
      predicted.q >= 4 ? shr16(predicted.mantissa, predicted.q - 4) : high16(shlSat32(predicted.mantissa, 20 - predicted.q));
  const Candidates kept = ownPreSearchCdbk(book, bestGains(terms, taming), predictedQ4);
  const Candidates rows = leastError(book, terms, predicted, kept, taming);

  const GainPair pair = gainPair(book, rows);
  const int halved = book.correctionHeadroom;
  const Zpp32s codeGain = mulDbl(static_cast<Zpp16s>(pair.correction >> 1), predicted.mantissa);
  gain[0] = pair.pitch;
  gain[1] = high16(shlSat32(codeGain, 4 - halved - predicted.q));
  index[0] = book.map1[rows.first];
  index[1] = book.map2[rows.second];
  ownGainUpdate(pair.correction >> halved, memory);
}

}  // namespace

ZppStatus zppsGainQuant_G729_16s(const Zpp16s* target, const Zpp16s* adaptive, const Zpp16s* code, const Zpp16s* filtered,
                                 Zpp16s* memory, Zpp16s* index, Zpp16s* gain, Zpp16s taming) {
  if (anyNull(target, adaptive, code, filtered, memory, index, gain)) return zppStsNullPointer;
  if (outside<int>(taming, 0, 1)) return zppStsOutOfRange;
  quantise(kFullRate, target, adaptive, code, filtered, memory, index, gain, taming != 0);
  return zppStsOk;
}

ZppStatus zppsGainQuant_G729D_16s(const Zpp16s* target, const Zpp16s* adaptive, const Zpp16s* code, const Zpp16s* filtered,
                                  Zpp16s* memory, Zpp16s* index, Zpp16s* gain, Zpp16s taming) {
  if (anyNull(target, adaptive, code, filtered, memory, index, gain)) return zppStsNullPointer;
  if (outside<int>(taming, 0, 1)) return zppStsOutOfRange;
  quantise(k6k, target, adaptive, code, filtered, memory, index, gain, taming != 0);
  return zppStsOk;
}
