// DCT-IV of 320 samples: SSE2 kernels (dct_px.cpp has the algorithm).
//
// Three splitting stages turn eight neighbouring samples into one sample of each of the eight blocks of 40. After them a vector
// holds one position of all eight blocks, a lane each, and everything up to the second rotation runs down the columns of this
// arrangement. The last three rotations join lanes again, and an 8 x 8 transposition restores the order of samples.
//
// Lanes hold the blocks 0, 5, 3, 6 | 1, 4, 2, 7. Bits of a block's number are the splitting stages, the first the highest:
// 1 where the block took differences. Differences reverse the order, so blocks with an odd number of them, the upper four
// lanes, fill from the end.
#include <initializer_list>

#include "core/simd_w7.h"
#include "g7221/dct_factors.h"
#include "g7221/kernels.h"
#include "g7221/tables.h"

using namespace zpp;

namespace {

// Scaling of the splitting stages and rotations, and the range in which the core's sums fit 32 bits: largest row sum of the
// matrix times range, plus rounding, below 2^31.
struct Forward {
  static constexpr bool halves = true;
  static constexpr int rotationShift = 15;
  static constexpr Zpp16s safeRange = 32136;  // row sum 66824
  static constexpr const DctFactors& factors = dctFactorsFwd;
};
struct Inverse {
  static constexpr bool halves = false;
  static constexpr int rotationShift = 14;
  static constexpr Zpp16s safeRange = 11426;  // row sum 187939
  static constexpr const DctFactors& factors = dctFactorsInv;
};

// The same four pairs of signs for all: sums and differences of neighbouring lanes, exact in 32 bits
V pairSigns(int p0, int p1, int p2, int p3) {
  const auto lane = [](int sign) { return sign > 0 ? 0x00010001 : sign == 0 ? 0x0001ffff : -0xffff; };
  return _mm_set_epi32(lane(p3), lane(p2), lane(p1), lane(p0));
}
constexpr int kSum = 1, kDifference = -1, kReversed = 0;  // a + b, a - b, b - a

template <bool halve>
V combined(V pairs, V signs) {
  const V exact = _mm_madd_epi16(pairs, signs);
  return halve ? _mm_srai_epi32(exact, 1) : exact;
}

// Eight neighbouring samples after three splitting stages. sums and differences: the first stage's input, which differs in
// the dither. even: one sample of blocks 0, 5, 3, 6 at position i, odd: of blocks 1, 4, 2, 7 at position 39 - i.
template <class Direction>
void splitGroup(V sums, V differences, V& even, V& odd) {
  constexpr bool halve = Direction::halves;
  const V sum = pairSigns(kSum, kSum, kSum, kSum);
  V x = _mm_packs_epi32(combined<true>(sums, sum),
                        combined<true>(differences, pairSigns(kDifference, kDifference, kDifference, kDifference)));
  x = _mm_packs_epi32(combined<halve>(x, sum), combined<halve>(x, pairSigns(kDifference, kDifference, kReversed, kReversed)));
  even = combined<halve>(x, pairSigns(kSum, kReversed, kReversed, kSum));
  odd = combined<halve>(x, pairSigns(kDifference, kSum, kSum, kDifference));
}

// Splits one block of n positions.
template <class Direction>
void splitColumn(const V* x, V* y, int n) {
  for (int i = 0; i < n / 2; ++i) {
    const V a = x[2 * i], b = x[2 * i + 1];
    if constexpr (Direction::halves) {
      // (a + b) >> 1 and, as it is (a + b - 2b) >> 1, (a - b) >> 1, without leaving 16 bits
      const V mean = _mm_add_epi16(_mm_and_si128(a, b), _mm_srai_epi16(_mm_xor_si128(a, b), 1));
      y[i] = mean;
      y[n - 1 - i] = _mm_sub_epi16(mean, b);
    } else {
      y[i] = _mm_adds_epi16(a, b);
      y[n - 1 - i] = _mm_subs_epi16(a, b);
    }
  }
}

// One row of the core on four lanes: the 32-bit sum of five pairs of products
V rowSum(const V* pairs, const Zpp16s (&row)[5][8], V start) {
  for (int j = 0; j < 5; ++j) start = _mm_add_epi32(start, _mm_madd_epi16(pairs[j], load(row[j])));
  return start;
}

// For samples of any size: x = 4 * high + low keeps both sums within 32 bits, and the rounding shift by 15 of 4 * H + L is a
// shift by 13 of H + ((L + 16384) >> 2).
V wideRow(const V* high, const V* low, const Zpp16s (&row)[5][8]) {
  const V carry = _mm_srai_epi32(rowSum(low, row, _mm_set1_epi32(1 << 14)), 2);
  return _mm_srai_epi32(rowSum(high, row, carry), 13);
}

void interleave(const V* x, V* lower, V* upper) {
  for (int j = 0; j < 5; ++j) {
    lower[j] = _mm_unpacklo_epi16(x[2 * j], x[2 * j + 1]);
    upper[j] = _mm_unpackhi_epi16(x[2 * j], x[2 * j + 1]);
  }
}

[[gnu::noinline]] void transformWideBlock(V* x, const DctFactors& factors) {
  V high[10], low[10], highPairs[2][5], lowPairs[2][5];
  for (int j = 0; j < 10; ++j) {
    high[j] = _mm_srai_epi16(x[j], 2);
    low[j] = _mm_and_si128(x[j], _mm_set1_epi16(3));
  }
  interleave(high, highPairs[0], highPairs[1]);
  interleave(low, lowPairs[0], lowPairs[1]);
  for (int k = 0; k < 10; ++k)
    x[k] = _mm_packs_epi32(wideRow(highPairs[0], lowPairs[0], factors.core[k]),
                           wideRow(highPairs[1], lowPairs[1], factors.core[k]));
}

// The 10-point transforms of eight blocks, in place
template <class Direction>
void transformBlock(V* x) {
  V largest = x[0], smallest = x[0];
  for (int j = 1; j < 10; ++j) {
    largest = _mm_max_epi16(largest, x[j]);
    smallest = _mm_min_epi16(smallest, x[j]);
  }
  const V beyond = _mm_or_si128(_mm_cmpgt_epi16(largest, _mm_set1_epi16(Direction::safeRange)),
                                _mm_cmplt_epi16(smallest, _mm_set1_epi16(-Direction::safeRange)));
  if (_mm_movemask_epi8(beyond) != 0) return transformWideBlock(x, Direction::factors);
  V lower[5], upper[5];
  interleave(x, lower, upper);
  const V half = _mm_set1_epi32(1 << 14);
  for (int k = 0; k < 10; ++k) {
    const auto& row = Direction::factors.core[k];
    x[k] = _mm_packs_epi32(_mm_srai_epi32(rowSum(lower, row, half), 15), _mm_srai_epi32(rowSum(upper, row, half), 15));
  }
}

template <class Direction>
V rotated(V pairs, const Zpp16s (&factors)[8]) {
  constexpr int shift = Direction::rotationShift;
  return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(pairs, load(factors)), _mm_set1_epi32(1 << (shift - 1))), shift);
}

// Joins the two halves of a block of n positions.
template <class Direction>
void rotateColumn(const V* x, V* y, int n, const LaneRotation* factors) {
  for (int i = 0; i < n / 2; ++i) {
    const V lower = _mm_unpacklo_epi16(x[i], x[n / 2 + i]), upper = _mm_unpackhi_epi16(x[i], x[n / 2 + i]);
    const auto& [first, last] = factors[i];
    y[i] = _mm_packs_epi32(rotated<Direction>(lower, first), rotated<Direction>(upper, first));
    y[n - 1 - i] = _mm_packs_epi32(rotated<Direction>(lower, last), rotated<Direction>(upper, last));
  }
}

// The two inner splitting stages, the core and the two inner rotation stages on eight blocks of 40
template <class Direction>
void transformColumns(V* x) {
  const LaneRotation* factors = Direction::factors.column;
  V y[40];
  splitColumn<Direction>(x, y, 40);
  for (V* half : {y, y + 20}) {
    splitColumn<Direction>(half, x, 20);
    transformBlock<Direction>(x);
    transformBlock<Direction>(x + 10);
    rotateColumn<Direction>(x, half, 20, factors);
  }
  rotateColumn<Direction>(y, x, 40, factors + 10);
}

// The three outer rotation stages: one position of eight blocks of 40 becomes the samples
// i, 240 + i, 160 + i, 80 + i | 319 - i, 79 - i, 159 - i, 239 - i of the frame.
template <class Direction>
V joinLanes(V x, const LaneRotation (&factors)[3]) {
  const V swapped = _mm_shuffle_epi32(x, _MM_SHUFFLE(1, 0, 3, 2));
  x = _mm_shuffle_epi32(_mm_unpacklo_epi16(x, swapped), _MM_SHUFFLE(3, 1, 2, 0));
  for (const auto& [low, high] : factors) x = _mm_packs_epi32(rotated<Direction>(x, low), rotated<Direction>(x, high));
  return x;
}

// Rows of four 16-bit lanes each, of which a and b hold the first two and the last two, become rows of eight vectors.
void transposeHalf(V a01, V a23, V a45, V a67, V (&rows)[4]) {
  const V low0123 = _mm_unpacklo_epi32(a01, a23), low4567 = _mm_unpacklo_epi32(a45, a67);
  const V high0123 = _mm_unpackhi_epi32(a01, a23), high4567 = _mm_unpackhi_epi32(a45, a67);
  rows[0] = _mm_unpacklo_epi64(low0123, low4567);
  rows[1] = _mm_unpackhi_epi64(low0123, low4567);
  rows[2] = _mm_unpacklo_epi64(high0123, high4567);
  rows[3] = _mm_unpackhi_epi64(high0123, high4567);
}

// Joins the lanes of all positions; finish(n, v) takes eight samples from n on.
template <class Direction, class Finish>
void joinColumns(const V* x, Finish finish) {
  for (int i = 0; i < 40; i += 8) {
    V y[8], rows[4];
    for (int k = 0; k < 8; ++k) y[k] = joinLanes<Direction>(x[i + k], Direction::factors.across[i + k]);
    transposeHalf(_mm_unpacklo_epi16(y[0], y[1]), _mm_unpacklo_epi16(y[2], y[3]), _mm_unpacklo_epi16(y[4], y[5]),
                  _mm_unpacklo_epi16(y[6], y[7]), rows);
    const int rising[] = {i, 240 + i, 160 + i, 80 + i};
    for (int k = 0; k < 4; ++k) finish(rising[k], rows[k]);
    transposeHalf(_mm_unpackhi_epi16(y[7], y[6]), _mm_unpackhi_epi16(y[5], y[4]), _mm_unpackhi_epi16(y[3], y[2]),
                  _mm_unpackhi_epi16(y[1], y[0]), rows);
    const int falling[] = {312 - i, 72 - i, 152 - i, 232 - i};
    for (int k = 0; k < 4; ++k) finish(falling[k], rows[k]);
  }
}

// Splits all groups of eight samples; group(i, even, odd) splits the i-th.
template <class Group>
void splitFrame(V* columns, Group group) {
  for (int i = 0; i < 20; ++i) {
    V even, odd, evenBack, oddBack;
    group(i, even, odd);
    group(39 - i, evenBack, oddBack);
    columns[i] = _mm_packs_epi32(even, oddBack);
    columns[39 - i] = _mm_packs_epi32(evenBack, odd);
  }
}

}  // namespace

void ownDCTFwd_G722_16s_W7(const Zpp16s* src, Zpp16s* dst) {
  V columns[40];
  splitFrame(columns, [src](int i, V& even, V& odd) {
    const V x = _mm_adds_epi16(load(src + 8 * i), load(cnstAnalBias_G722 + 8 * i));
    splitGroup<Forward>(x, x, even, odd);
  });
  transformColumns<Forward>(columns);
  joinColumns<Forward>(columns, [dst](int n, V x) { store(dst + n, x); });
}

void ownDCTInv_G722_16s_W7(const Zpp16s* src, Zpp16s* dst) {
  V columns[40];
  splitFrame(columns, [src](int i, V& even, V& odd) {
    // The dither is added to the first sample of each pair: one value for the sum, the next for the difference.
    const V x = load(src + 8 * i), dither = load(cnstDither_G722 + 8 * i);
    const V sums = _mm_adds_epi16(x, _mm_srli_epi32(_mm_slli_epi32(dither, 16), 16));
    const V differences = _mm_adds_epi16(x, _mm_srli_epi32(dither, 16));
    splitGroup<Inverse>(sums, differences, even, odd);
  });
  transformColumns<Inverse>(columns);
  joinColumns<Inverse>(columns, [dst](int n, V y) { store(dst + n, _mm_adds_epi16(y, load(cnstSynthesisBias7khz_G722 + n))); });
}
