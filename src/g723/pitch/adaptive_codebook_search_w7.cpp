// Closed-loop pitch analysis: SSE2 kernels.
#include <iterator>

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"
#include "g723/arithmetic.h"
#include "g723/pitch/kernels.h"
#include "g723/tables.h"
#include "lpc/kernels.h"
#include "lpc/simd_correlation_w7.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kTaps = 5, kPadded = 64;  // subframes with zeros behind them

// The products of one vector with four others
V fourProducts(const Zpp16s* x, const Zpp16s* y0, const Zpp16s* y1, const Zpp16s* y2, const Zpp16s* y3) {
  V sum0 = _mm_setzero_si128(), sum1 = sum0, sum2 = sum0, sum3 = sum0;
  for (int n = 0; n < kPadded; n += 8) {
    const V a = load(x + n);
    sum0 = _mm_add_epi32(sum0, _mm_madd_epi16(a, load(y0 + n)));
    sum1 = _mm_add_epi32(sum1, _mm_madd_epi16(a, load(y1 + n)));
    sum2 = _mm_add_epi32(sum2, _mm_madd_epi16(a, load(y2 + n)));
    sum3 = _mm_add_epi32(sum3, _mm_madd_epi16(a, load(y3 + n)));
  }
  return sumsOfLanes32(sum0, sum1, sum2, sum3);
}

Zpp32s product(const Zpp16s* x, const Zpp16s* y) {
  V sum = _mm_setzero_si128();
  for (int n = 0; n < kPadded; n += 8) sum = _mm_add_epi32(sum, _mm_madd_epi16(load(x + n), load(y + n)));
  return sumLanes32(sum);
}

// mulRoundQ15 of eight lanes, one factor above -32768
V mulRoundQ15(V a, V b) {
  const V low = _mm_mullo_epi16(a, b);
  const V truncated = _mm_or_si128(_mm_slli_epi16(_mm_mulhi_epi16(a, b), 1), _mm_srli_epi16(low, 15));
  return _mm_add_epi16(truncated, _mm_and_si128(_mm_srli_epi16(low, 14), _mm_set1_epi16(1)));
}

}  // namespace

void ownPitchCorrelations_G723_16s32s_W7(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* work, Zpp32s* values) {
  const auto portable = [=] { ownPitchCorrelations_G723_16s32s_PX(target, impulse, work, values); };
  // With sums below 2^30 none of the doubled ones saturates.
  if (!correlationsFit(30, work + kTaps - 1, kSubframe, impulse, kSubframe)) return portable();

  // Each vector begins behind a zero: what it begins with before its first sample
  alignas(16) Zpp16s vectors[kTaps][8 + kPadded], signal[kPadded], response[kPadded];
  alignas(16) Zpp32s sums[kPadded];
  const auto copyPadded = [](const Zpp16s* src, Zpp16s* dst) {
    for (int n = 0; n < kSubframe - 4; n += 8) store(dst + n, load(src + n));
    store(dst + kSubframe - 4, load4(src + kSubframe - 4));
  };
  copyPadded(target, signal);
  copyPadded(impulse, response);
  ownConvPartial_16s32s_W7(work + kTaps - 1, impulse, sums, kSubframe);
  store(sums + kSubframe, _mm_setzero_si128());
  const V half = _mm_set1_epi32(1 << 14);
  Zpp16s* last = vectors[kTaps - 1] + 8;
  for (int n = 0; n < kPadded; n += 8) {
    const V low = _mm_srai_epi32(_mm_add_epi32(load(sums + n), half), 15),
            high = _mm_srai_epi32(_mm_add_epi32(load(sums + n + 4), half), 15);
    store(last + n, _mm_packs_epi32(low, high));
  }
  const V subframeOnly = _mm_set_epi32(0, 0, -1, -1);
  for (int i = kTaps - 2; i >= 0; --i) {
    const Zpp16s* after = vectors[i + 1] + 8;
    Zpp16s* filtered = vectors[i] + 8;
    if (work[i] == kMin16) return portable();
    const V factor = _mm_set1_epi16(work[i]);
    vectors[i + 1][7] = 0;
    // The upper half plus a multiple of 2^-16, rounded: the product may be rounded first.
    for (int n = 0; n < kPadded; n += 8)
      store(filtered + n, _mm_adds_epi16(load(after + n - 1), mulRoundQ15(load(response + n), factor)));
    store(filtered + kPadded - 8, _mm_and_si128(load(filtered + kPadded - 8), subframeOnly));
    filtered[0] = zpp::mulRoundQ15(work[i], 8192);
  }
  const Zpp16s *f0 = vectors[0] + 8, *f1 = vectors[1] + 8, *f2 = vectors[2] + 8, *f3 = vectors[3] + 8, *f4 = last;

  // Energies below 2^30 bound all sums of two of the vectors; with the target the product of the energies counts.
  Zpp64s largest = 0;
  for (const Zpp16s* f : {f0, f1, f2, f3, f4}) {
    const Zpp64s bound = energyBound(f, kPadded);
    if (bound > largest) largest = bound;
  }
  const Zpp64s targetBound = energyBound(signal, kPadded);
  if (largest >= 1 << 22 || targetBound >> 31 != 0 || largest * targetBound > Zpp64s{1} << (2 * 31 - 16)) return portable();

  store(values, fourProducts(signal, f0, f1, f2, f3));
  values[4] = product(signal, f4);
  values[5] = product(f0, f0);
  store(values + 6, _mm_set_epi32(product(f4, f4), product(f3, f3), product(f2, f2), product(f1, f1)));
  values[10] = product(f1, f0);
  const V with2 = fourProducts(f2, f0, f1, f3, f4);  // f2 f0, f2 f1, f3 f2, f4 f2
  const V others = fourProducts(f3, f0, f1, f4, f4);
  alignas(16) Zpp32s p2[4], p3[4];
  store(p2, with2);
  store(p3, others);
  values[11] = p2[0], values[12] = p2[1];
  values[13] = p3[0], values[14] = p3[1], values[15] = p2[2];
  values[16] = product(f4, f0), values[17] = product(f4, f1), values[18] = p2[3], values[19] = p3[2];
  for (int k = 0; k < 10; ++k) values[k] = shlSat32(values[k], 1);
  for (int k = 10; k < 20; ++k) values[k] = shlSat32(values[k], 2);
}

namespace {

// The rows of which the magnitudes add up to more than 65535, the largest to 86551: only their sums of products can leave 32
// bits, and only with values above kQuiet.
constexpr int kLoudHighRate[] = {70, 71}, kLoudLowRate[] = {136, 139, 154, 157, 158, 162, 169};
constexpr Zpp16s kQuiet = 24811;

Zpp32s scoreSaturating(const Zpp16s* values, const Zpp16s* row) {
  Zpp32s score = 0;
  for (int j = 0; j < 20; ++j) score = addSat32(score, Zpp32s{values[j]} * row[j]);
  return score;
}

// Scores of four rows, modulo 2^32
class RowScores {
 public:
  explicit RowScores(const Zpp16s* values)
      : first_(load(values)), second_(load(values + 8)), third_(twice(load4(values + 16), load4(values + 16))) {}
  V operator()(const Zpp16s (*rows)[20]) const {
    const V rest01 = rest(rows), rest23 = rest(rows + 2);
    const V even = _mm_unpacklo_epi32(rest01, rest23), odd = _mm_unpackhi_epi32(rest01, rest23);  // 0 2 0 2, 1 3 1 3
    const V rests = _mm_add_epi32(_mm_unpacklo_epi32(even, odd), _mm_unpackhi_epi32(even, odd));
    return _mm_add_epi32(rests, sumsOfLanes32(most(rows[0]), most(rows[1]), most(rows[2]), most(rows[3])));
  }

 private:
  static V twice(V low, V high) { return _mm_unpacklo_epi64(low, high); }
  V most(const Zpp16s* row) const {
    return _mm_add_epi32(_mm_madd_epi16(first_, load(row)), _mm_madd_epi16(second_, load(row + 8)));
  }
  V rest(const Zpp16s (*rows)[20]) const { return _mm_madd_epi16(third_, twice(load4(rows[0] + 16), load4(rows[1] + 16))); }

  V first_, second_, third_;
};

}  // namespace

int ownPitchGainSearch_G723_16s_W7(const Zpp16s* values, const Zpp16s (*table)[20], int rows, Zpp32s* best) {
  const bool quiet = ownMaxAbs_16s(values, 20) <= kQuiet, highRate = table == AdCdbkGainTblHighRate;
  const int* const loud = highRate ? kLoudHighRate : kLoudLowRate;
  const int* const loudEnd = quiet ? loud : highRate ? std::end(kLoudHighRate) : std::end(kLoudLowRate);
  const int* next = loud;
  const RowScores scoresOf(values);
  Zpp32s largest = *best;
  int bestRow = -1;
  for (int row = 0; row < rows; row += 4) {
    // The last four may include rows that have been seen, which do not win again.
    if (row > rows - 4) row = rows - 4, next = loud;
    alignas(16) Zpp32s four[4];
    const V scores = scoresOf(table + row);
    while (next != loudEnd && *next < row) ++next;
    if (next == loudEnd || *next >= row + 4) {
      if (_mm_movemask_epi8(_mm_cmpgt_epi32(scores, _mm_set1_epi32(largest))) == 0) continue;
      store(four, scores);
    } else {
      store(four, scores);
      for (; next != loudEnd && *next < row + 4; ++next) four[*next - row] = scoreSaturating(values, table[*next]);
    }
    for (int k = 0; k < 4; ++k)
      if (four[k] > largest) largest = four[k], bestRow = row + k;
  }
  *best = largest;
  return bestRow;
}
