// Conjugate-structure vector quantisation of the gain pair in single precision: ITU-T G.729 clause 3.9.2 and Annex D, as in
// Annexes C and C+. Between its arguments and results all is double precision.
#include <algorithm>

#include "core/checks.h"
#include "core/logarithm.h"
#include "g729/dot_product_32f.h"
#include "g729/gain/tables.h"
#include "g729/gain/tables_32f.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr Zpp64f kMeanEnergy = 36;      // of the fixed-codebook excitation, dB
constexpr Zpp64f kFloor = 0.01;         // keeps energies and their quotients away from zero
constexpr Zpp64f kTamedGain = 0.94;     // the unquantised pitch gain at most, under taming
constexpr Zpp64f kTamedLimit = 0.9999;  // quantised pitch gains stay below this one

// What the two rates do differently
struct GainCodebook {
  const Zpp32f (*first)[2], (*second)[2];
  const Zpp16s *map1, *map2;
  const Zpp32f (*coef)[2];
  const Zpp32f *thr1, *thr2;
  int thresholds1, thresholds2, kept1, kept2;
  Zpp64f inverse;          // 1 / (c00 c11 - c01 c10) of the pre-selection
  Zpp64f leastCorrection;  // in the memory
};
constexpr GainCodebook kFullRate = {gbk1_32f, gbk2_32f, map1, map2, coef_32f, thr1_32f, thr2_32f, 4, 8, 4, 8, -0.032623, 0};
constexpr GainCodebook k6k = {gbk1_6k_32f, gbk2_6k_32f, map1_6k, map2_6k, coef_6k_32f, thr1_6k_32f, thr2_6k_32f,
                              2,           2,           6,       6,       -0.027599,   0.2};

// The error of a gain pair is c[0] gp^2 + c[1] gp + c[2] gc^2 + c[3] gc + c[4] gp gc.
struct ErrorTerms {
  Zpp64f c[5];

  ErrorTerms(const Zpp32f* target, const Zpp32f* adaptive, const Zpp32f* filtered)
      : c{kFloor + dotProduct40(adaptive, adaptive), kFloor - 2 * dotProduct40(target, adaptive),
          kFloor + dotProduct40(filtered, filtered), -2 * (kFloor + dotProduct40(target, filtered)),
          2 * (kFloor + dotProduct40(adaptive, filtered))} {}
  Zpp64f error(Zpp64f pitch, Zpp64f code) const {
    return pitch * pitch * c[0] + pitch * c[1] + code * code * c[2] + code * c[3] + pitch * code * c[4];
  }
};

struct Gains {
  Zpp64f pitch, code;
};

// Where the error has its minimum, without quantisation
Gains bestGains(const ErrorTerms& terms, bool taming) {
  const auto& c = terms.c;
  const Zpp64f inverse = -1 / (4 * c[0] * c[2] - c[4] * c[4]);
  const Zpp64f pitch = (2 * c[2] * c[1] - c[3] * c[4]) * inverse, code = (2 * c[0] * c[3] - c[1] * c[4]) * inverse;
  return {taming ? std::min(pitch, kTamedGain) : pitch, code};
}

Zpp64f predictedGain(const Zpp32f* code, const Zpp32f* memory) {
  Zpp64f level = kMeanEnergy - 10 * decimalLogarithm((kFloor + dotProduct40(code, code)) / kSubframe);
  for (int i = 0; i < 4; ++i) level += Zpp64f{pred_32f[i]} * Zpp64f{memory[i]};
  return powerOfTen(level / 20);
}

// The first row that pre-selection keeps: as many as there are thresholds below the value
int firstKept(Zpp64f value, const Zpp32f* thresholds, int count, Zpp64f predicted) {
  int row = 0;
  while (row < count && value > Zpp64f{thresholds[row]} * predicted) ++row;
  return row;
}

struct Candidates {
  int first, second;
};

Candidates preselect(const GainCodebook& book, Gains best, Zpp64f predicted) {
  const auto coefficient = [&](int i, int k) { return Zpp64f{book.coef[i][k]}; };
  const Zpp64f pitchPart = coefficient(0, 0) * best.pitch;
  const Zpp64f x = book.inverse * (best.code - (pitchPart + coefficient(1, 1)) * predicted);
  const Zpp64f y =
      book.inverse * (coefficient(1, 0) * (pitchPart - coefficient(0, 1)) * predicted - coefficient(0, 0) * best.code);
  return {firstKept(y, book.thr1, book.thresholds1, predicted), firstKept(x, book.thr2, book.thresholds2, predicted)};
}

// Pitch gain, and the correction of the predicted code gain
Gains gainPair(const GainCodebook& book, Candidates rows) {
  const Zpp32f *first = book.first[rows.first], *second = book.second[rows.second];
  return {Zpp64f{first[0]} + Zpp64f{second[0]}, Zpp64f{first[1]} + Zpp64f{second[1]}};
}

// The pair of least error among the kept rows; the first of them when none has an error to speak of
Candidates search(const GainCodebook& book, const ErrorTerms& terms, Zpp64f predicted, Candidates kept, bool taming) {
  Candidates best = kept;
  Zpp64f leastError = 1e38;
  for (int i = kept.first; i < kept.first + book.kept1; ++i)
    for (int k = kept.second; k < kept.second + book.kept2; ++k) {
      const Gains pair = gainPair(book, {i, k});
      if (taming && pair.pitch >= kTamedLimit) continue;
      const Zpp64f error = terms.error(pair.pitch, pair.code * predicted);
      if (!(error < leastError)) continue;
      leastError = error;
      best = {i, k};
    }
  return best;
}

void quantise(const GainCodebook& book, const Zpp32f* target, const Zpp32f* adaptive, const Zpp32f* code,
              const Zpp32f* filtered, Zpp32f* memory, Zpp16s* index, Zpp32f* gain, bool taming) {
  const ErrorTerms terms(target, adaptive, filtered);
  const Zpp64f predicted = predictedGain(code, memory);
  const Candidates kept = preselect(book, bestGains(terms, taming), predicted);
  const Candidates rows = search(book, terms, predicted, kept, taming);

  const Gains pair = gainPair(book, rows);
  gain[0] = static_cast<Zpp32f>(pair.pitch);
  gain[1] = static_cast<Zpp32f>(pair.code * predicted);
  index[0] = book.map1[rows.first];
  index[1] = book.map2[rows.second];
  std::copy_backward(memory, memory + 3, memory + 4);
  memory[0] = static_cast<Zpp32f>(20 * decimalLogarithm(std::max(pair.code, book.leastCorrection)));
}

}  // namespace

ZppStatus zppsGainCodebookSearch_G729_32f(const Zpp32f* target, const Zpp32f* adaptive, const Zpp32f* code,
                                          const Zpp32f* filtered, Zpp32f* memory, Zpp16s* index, Zpp32f* gain, Zpp16s taming) {
  if (anyNull(target, adaptive, code, filtered, memory, index, gain)) return zppStsNullPointer;
  if (outside<int>(taming, 0, 1)) return zppStsOutOfRange;
  quantise(kFullRate, target, adaptive, code, filtered, memory, index, gain, taming != 0);
  return zppStsOk;
}

ZppStatus zppsGainCodebookSearch_G729D_32f(const Zpp32f* target, const Zpp32f* adaptive, const Zpp32f* code,
                                           const Zpp32f* filtered, Zpp32f* memory, Zpp16s* index, Zpp32f* gain, Zpp16s taming) {
  if (anyNull(target, adaptive, code, filtered, memory, index, gain)) return zppStsNullPointer;
  if (outside<int>(taming, 0, 1)) return zppStsOutOfRange;
  quantise(k6k, target, adaptive, code, filtered, memory, index, gain, taming != 0);
  return zppStsOk;
}
