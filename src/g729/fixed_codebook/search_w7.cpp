// Searches for pulse positions: SSE2 kernels. Eight candidates are computed at once; the criterion is then applied in their
// order, which matters only to those that beat the best candidate before the row.
#include <bit>
#include <utility>

#include "core/simd_w7.h"
#include "g729/fixed_codebook/search.h"

using namespace zpp;

namespace {

// Doubled 32-bit lanes of eight 16-bit ones
V twiceLow(V r) { return _mm_srai_epi32(_mm_unpacklo_epi16(_mm_setzero_si128(), r), 15); }
V twiceHigh(V r) { return _mm_srai_epi32(_mm_unpackhi_epi16(_mm_setzero_si128(), r), 15); }

// mulQ15 of lanes of 0 or more with themselves
V squareQ15(V x) { return _mm_mulhi_epu16(_mm_add_epi16(x, x), x); }

// (offset + 2 r[j] + energy[j]) >> shift
template <int shift>
V energies(V offset, const Zpp16s* r, const Zpp32s* energy) {
  const V row = load(r);
  const V low = _mm_add_epi32(_mm_add_epi32(twiceLow(row), load(energy)), offset);
  const V high = _mm_add_epi32(_mm_add_epi32(twiceHigh(row), load(energy + 4)), offset);
  return _mm_packs_epi32(_mm_srai_epi32(low, shift), _mm_srai_epi32(high, shift));
}

// Eight candidates. As pairs (square, energy), times pairs (energy, -square) of those they are compared with, they are positive
// where they are better. With squares of 0 or more the sum of the two products fits 32 bits.
struct Candidates {
  V square, energy;

  V better(V lowRivals, V highRivals) const {
    const V low = _mm_madd_epi16(_mm_unpacklo_epi16(square, energy), lowRivals);
    const V high = _mm_madd_epi16(_mm_unpackhi_epi16(square, energy), highRivals);
    return _mm_cmpgt_epi16(_mm_packs_epi32(low, high), _mm_setzero_si128());
  }
  // Lanes of all ones where a candidate beats the best one, or that of the lane
  V beating(const Best& best) const {
    const V rival = pairOf(best.energy, -best.square);
    return better(rival, rival);
  }
  V beating(const Candidates& best) const {
    const V opposite = _mm_sub_epi16(_mm_setzero_si128(), best.square);
    return better(_mm_unpacklo_epi16(best.energy, opposite), _mm_unpackhi_epi16(best.energy, opposite));
  }
};

// Tries groups of eight candidates in turn; the last that replaced the best one, or -1. In the long run few do: the order
// matters to those alone that beat the best one before the first of them.
template <int groups>
int improveInTurn(Best& best, const Candidates (&c)[groups]) {
  const auto mask = [&] {
    return _mm_movemask_epi8(
        _mm_packs_epi16(c[0].beating(best), groups > 1 ? c[groups - 1].beating(best) : _mm_setzero_si128()));
  };
  int candidates = mask();
  if (candidates == 0) [[likely]]
    return -1;
  alignas(16) Zpp16s squares[groups * kPositions], energies[groups * kPositions];
  for (int g = 0; g < groups; ++g) {
    store(squares + kPositions * g, c[g].square);
    store(energies + kPositions * g, c[g].energy);
  }
  int found;
  do {
    found = std::countr_zero(static_cast<unsigned>(candidates));
    best = {squares[found], energies[found]};
    candidates = mask() & -(2 << found);
  } while (candidates != 0);
  return found;
}

// The best one of rows of eight candidates, without a branch: first of each column, then of the columns. Candidates carry a
// number, and the lower one wins on ties. Energies must be positive for the order of trials to be immaterial but for this.
class BestOfColumns {
 public:
  BestOfColumns(const Candidates& c, V numbers) : best_(c), number_(numbers), least_(c.energy) {}

  // Takes the better ones of candidates with higher numbers.
  void add(const BestOfColumns& later) {
    const V mask = later.best_.beating(best_);
    best_ = {select(mask, later.best_.square, best_.square), select(mask, later.best_.energy, best_.energy)};
    number_ = _mm_max_epi16(number_, _mm_and_si128(mask, later.number_));
    requirePositive(later);
  }
  void requirePositive(const BestOfColumns& other) { least_ = _mm_min_epi16(least_, other.least_); }
  bool energiesPositive() const { return _mm_movemask_epi8(_mm_cmpgt_epi16(least_, _mm_setzero_si128())) == 0xffff; }

  struct Winner {
    Zpp32s energy;
    int number;
  };
  Winner winner() const {
    const V zero = _mm_setzero_si128();
    Four best = {_mm_unpacklo_epi16(best_.square, number_), _mm_unpacklo_epi16(best_.energy, zero)};
    best.improve({_mm_unpackhi_epi16(best_.square, number_), _mm_unpackhi_epi16(best_.energy, zero)});
    best.improve(best.shuffled<_MM_SHUFFLE(1, 0, 3, 2)>());
    best.improve(best.shuffled<_MM_SHUFFLE(2, 3, 0, 1)>());
    return {_mm_cvtsi128_si32(best.energy), _mm_cvtsi128_si32(best.square) >> 16};
  }

 private:
  // Four candidates in 32-bit lanes. Number and square share one: pmaddwd multiplies the number by the zero above the energy.
  struct Four {
    V square, energy;

    template <int order>
    Four shuffled() const {
      return {_mm_shuffle_epi32(square, order), _mm_shuffle_epi32(energy, order)};
    }
    void improve(const Four& other) {
      const V mine = _mm_madd_epi16(square, other.energy), theirs = _mm_madd_epi16(other.square, energy);
      const V lowerNumber = _mm_cmpgt_epi32(square, other.square);  // -1: a tie is enough
      const V mask = _mm_cmpgt_epi32(theirs, _mm_add_epi32(mine, lowerNumber));
      square = select(mask, other.square, square);
      energy = select(mask, other.energy, energy);
    }
  };
  Candidates best_;
  V number_, least_;
};

// Numbers of the eight candidates of a row: first, first + 1, ...
V numbersFrom(int first) {
  return _mm_add_epi16(_mm_set1_epi16(static_cast<Zpp16s>(first)), _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7));
}

// The best of rows first, first + 1, ... of candidates numbered by row from `number` on; row(i) makes row i, an integral
// constant. Halves are compared before they meet: in turn, each comparison would wait for the one before.
template <int first, int rows, class Row>
BestOfColumns bestOfRows(int number, const Row& row) {
  if constexpr (rows == 1) {
    return BestOfColumns(row(std::integral_constant<int, first>{}), numbersFrom(number + kPositions * first));
  } else {
    BestOfColumns best = bestOfRows<first, rows / 2>(number, row);
    best.add(bestOfRows<first + rows / 2, rows / 2>(number, row));
    return best;
  }
}

// --- Annex A ------------------------------------------------------------------------------------------------------------

// The entries r(position, 0..7) of positions of two tracks in either order
template <int row, int column>
V entries(const Zpp16s* matrix, int position) {
  if constexpr (row < column) {
    return load(matrix + crossBlock(row, column) + kPositions * position);
  } else {
    const Zpp16s* entry = matrix + crossBlock(column, row) + position;
    V v = _mm_cvtsi32_si128(entry[0]);
    unrolled<kPositions - 1>([&](auto i) { v = _mm_insert_epi16(v, entry[kPositions * (i + 1)], i + 1); });
    return v;
  }
}

// Eight 32-bit lanes
struct Wide {
  V low, high;

  friend Wide operator+(const Wide& a, const Wide& b) { return {_mm_add_epi32(a.low, b.low), _mm_add_epi32(a.high, b.high)}; }
  friend Wide operator+(const Wide& a, V b) { return {_mm_add_epi32(a.low, b), _mm_add_epi32(a.high, b)}; }
  template <int shift>
  V shifted() const {
    return _mm_packs_epi32(_mm_srai_epi32(low, shift), _mm_srai_epi32(high, shift));
  }
};
template <int factorA, int factorB>
Wide weighted(V a, V b) {
  const V factors = pairOf(factorA, factorB);
  return {_mm_madd_epi16(_mm_unpacklo_epi16(a, b), factors), _mm_madd_epi16(_mm_unpackhi_epi16(a, b), factors)};
}
Wide widened(V v) { return {widenLow(v), widenHigh(v)}; }

// The two positions of largest magnitude in a track, the lower one on ties
struct TwoLargest {
  int position[2];

  explicit TwoLargest(const Zpp16s* magnitude) {
    static constexpr Zpp16s kOneLane[2 * kPositions - 1] = {0, 0, 0, 0, 0, 0, 0, -1};
    const V d = load(magnitude);
    position[0] = firstLargest(d);
    position[1] = firstLargest(_mm_or_si128(d, load(kOneLane + kPositions - 1 - position[0])));
  }

 private:
  static int firstLargest(V d) {
    V most = _mm_max_epi16(d, _mm_shuffle_epi32(d, _MM_SHUFFLE(1, 0, 3, 2)));
    most = _mm_max_epi16(most, _mm_shuffle_epi32(most, _MM_SHUFFLE(2, 3, 0, 1)));
    most = _mm_max_epi16(most, _mm_or_si128(_mm_slli_epi32(most, 16), _mm_srli_epi32(most, 16)));
    return std::countr_zero(static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(d, most)))) / 2;
  }
};

// Where a pass finds the magnitudes and the diagonal of a track
V rowOf(const Zpp16s* byTrack, int track) { return load(byTrack + kPositions * track); }

struct FirstPair {
  int a, b;
  Zpp32s energy;  // of the pair, in units of 1/4 of the sum
};

template <TreePass tracks>
BestOfColumns firstPairs(const Zpp16s* magnitude, const Zpp16s* matrix, const TwoLargest& candidate) {
  const V dB = rowOf(magnitude, tracks.b), rBB = rowOf(matrix, tracks.b);
  return bestOfRows<0, 2>(0, [&](auto i) -> Candidates {
    const int p = candidate.position[i];
    const V offset = _mm_set1_epi32(matrix[kPositions * tracks.a + p] + 2);
    return {squareQ15(_mm_adds_epi16(_mm_set1_epi16(magnitude[kPositions * tracks.a + p]), dB)),
            (weighted<2, 1>(entries<tracks.a, tracks.b>(matrix, p), rBB) + offset).template shifted<2>()};
  });
}

FirstPair found(const BestOfColumns& pairs, const TwoLargest& candidate) {
  const auto best = pairs.winner();
  return {candidate.position[best.number / kPositions], best.number % kPositions, best.energy};
}

// The candidates beside a first pair, with energies in units of 1/16 of the sum; what each position of the last track adds is
// rounded to 1/8.
template <int pass>
BestOfColumns secondPairs(const Zpp16s* magnitude, const Zpp16s* matrix, const FirstPair& first) {
  constexpr TreePass tracks = kTreePasses[pass];
  constexpr int A = tracks.a, B = tracks.b, C = tracks.c, D = tracks.d;
  const V firstSum = _mm_set1_epi16(addSat16(magnitude[kPositions * A + first.a], magnitude[kPositions * B + first.b]));
  const V sum = _mm_adds_epi16(firstSum, rowOf(magnitude, C)), dD = rowOf(magnitude, D);
  const V sums[2] = {_mm_unpacklo_epi16(sum, sum), _mm_unpackhi_epi16(sum, sum)};
  const Wide offsets = weighted<2, 2>(entries<A, C>(matrix, first.a), entries<B, C>(matrix, first.b)) +
                       widened(rowOf(matrix, C)) + _mm_set1_epi32(4 * first.energy + 8);
  const Wide lastPulse = weighted<2, 2>(entries<A, D>(matrix, first.a), entries<B, D>(matrix, first.b)) +
                         widened(rowOf(matrix, D)) + _mm_set1_epi32(4);
  const V eighths = lastPulse.shifted<3>();
  return bestOfRows<0, kPositions>(pass * kBlock, [&](auto i) -> Candidates {
    constexpr int half = i / 4, lane = i % 4 * 0x55;  // all four lanes from lane i % 4
    const V r = rowOf(matrix + crossBlock(C, D), i), offset = _mm_shuffle_epi32(half == 0 ? offsets.low : offsets.high, lane);
    return {squareQ15(_mm_adds_epi16(_mm_shuffle_epi32(sums[half], lane), dD)),
            (weighted<2, 8>(r, eighths) + offset).template shifted<4>()};
  });
}

struct Row {
  template <int shift, int length>
  static int improve(Best& best, Zpp16s sum, const Zpp16s* d, Zpp32s offset, const Zpp16s* r, const Zpp32s* energy) {
    const V sums = _mm_set1_epi16(sum), offsets = _mm_set1_epi32(offset);
    Candidates c[length / kPositions];
    for (int j = 0; j < length; j += kPositions)
      c[j / kPositions] = {squareQ15(_mm_adds_epi16(sums, load(d + j))), energies<shift>(offsets, r + j, energy + j)};
    return improveInTurn(best, c);
  }
  static void addTwice(const Zpp32s* src, const Zpp16s* r, Zpp32s* dst) {
    for (int j = 0; j < kLastPositions; j += kPositions) {
      const V row = load(r + j);
      store(dst + j, _mm_add_epi32(load(src + j), twiceLow(row)));
      store(dst + j + 4, _mm_add_epi32(load(src + j + 4), twiceHigh(row)));
    }
  }
  static unsigned above(Zpp16s sum, const Zpp16s* d, Zpp16s threshold) {
    const V larger = _mm_cmpgt_epi16(_mm_adds_epi16(_mm_set1_epi16(sum), load(d)), _mm_set1_epi16(threshold));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(larger, _mm_setzero_si128())));
  }
  static void interleave(const Zpp16s* a, const Zpp16s* b, Zpp16s* dst) {
    store(dst, _mm_unpacklo_epi16(load(a), load(b)));
    store(dst + kPositions, _mm_unpackhi_epi16(load(a), load(b)));
  }
};

}  // namespace

int ownFixedCodebookSearch_G729_W7(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp16s threshold, int budget, Zpp8u* pulse) {
  return searchFourPulses<Row>(magnitude, matrix, threshold, budget, pulse);
}

void ownFixedCodebookSearch_G729A_W7(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse) {
  const TwoLargest inTrack2(magnitude + 2 * kPositions), inTrack3(magnitude + 3 * kPositions),
      inTrack4(magnitude + 4 * kPositions);
  const BestOfColumns beginnings[] = {
      firstPairs<kTreePasses[0]>(magnitude, matrix, inTrack2), firstPairs<kTreePasses[1]>(magnitude, matrix, inTrack3),
      firstPairs<kTreePasses[2]>(magnitude, matrix, inTrack2), firstPairs<kTreePasses[3]>(magnitude, matrix, inTrack4)};
  const FirstPair first[] = {found(beginnings[0], inTrack2), found(beginnings[1], inTrack3), found(beginnings[2], inTrack2),
                             found(beginnings[3], inTrack4)};
  BestOfColumns best = secondPairs<0>(magnitude, matrix, first[0]);
  best.add(secondPairs<1>(magnitude, matrix, first[1]));
  best.add(secondPairs<2>(magnitude, matrix, first[2]));
  best.add(secondPairs<3>(magnitude, matrix, first[3]));
  for (const auto& pairs : beginnings) best.requirePositive(pairs);
  if (!best.energiesPositive()) [[unlikely]]
    return ownFixedCodebookSearch_G729A_PX(magnitude, matrix, pulse);
  const int number = best.winner().number, pass = number / kBlock, second = number % kBlock;
  setPulses(kTreePasses[pass], first[pass].a, first[pass].b, second / kPositions, second % kPositions, pulse);
}

void ownD2i40_11_W7(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse) {
  searchTwoPulses<Row>(magnitude, matrix, pulse);
}

PulsePair ownPulsePair_G729E_16s_W7(Zpp16s sum, Zpp16s energy, const TrackTerms& outer, const TrackTerms& inner,
                                    const Zpp16s* cross) {
  const V innerCorrelation = load(inner.correlation), innerEnergy = load(inner.energy);
  const auto row = [&](int i) -> Candidates {
    const V correlation = _mm_adds_epi16(_mm_set1_epi16(addSat16(sum, outer.correlation[i])), innerCorrelation);
    return {mulQ15(correlation, correlation), _mm_adds_epi16(_mm_set1_epi16(addSat16(energy, outer.energy[i])),
                                                             _mm_adds_epi16(innerEnergy, load(cross + kPositions * i)))};
  };
  const BestOfColumns best = bestOfRows<0, kPositions>(0, row);
  if (!best.energiesPositive()) [[unlikely]]
    return ownPulsePair_G729E_16s_PX(sum, energy, outer, inner, cross);
  const auto found = best.winner();
  return {found.number / kPositions, found.number % kPositions, static_cast<Zpp16s>(found.energy)};
}
