// Searches for pulse positions: SSE2 kernels. Eight candidates are computed at once; the criterion is then applied in their
// order, which matters only to those that beat the best candidate before the row.
#include <bit>

#include "core/simd_w7.h"
#include "g729/fixed_codebook_search.h"

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

// Eight candidates, and what they are multiplied with when they are the best ones: pairs (square, energy) times pairs
// (energy, -square) are positive where the former are better. With squares of 0 or more the sum of the two products fits 32
// bits.
struct Candidates {
  V square, energy;

  V pairsLow() const { return _mm_unpacklo_epi16(square, energy); }
  V pairsHigh() const { return _mm_unpackhi_epi16(square, energy); }
  V crossLow() const { return _mm_unpacklo_epi16(energy, _mm_sub_epi16(_mm_setzero_si128(), square)); }
  V crossHigh() const { return _mm_unpackhi_epi16(energy, _mm_sub_epi16(_mm_setzero_si128(), square)); }
};
V better(V pairs, V cross) { return _mm_cmpgt_epi32(_mm_madd_epi16(pairs, cross), _mm_setzero_si128()); }

// Lanes of all ones where a candidate beats the best one
V beating(const Candidates& c, const Best& best) {
  const V cross = _mm_set1_epi32(
      static_cast<Zpp32s>(static_cast<Zpp32u>(-best.square) << 16 | (static_cast<Zpp32u>(best.energy) & 0xffff)));
  return _mm_packs_epi32(better(c.pairsLow(), cross), better(c.pairsHigh(), cross));
}

// Tries groups of eight candidates in turn; the last that replaced the best one, or -1. In the long run few do: the order
// matters to those alone that beat the best one before the first of them.
template <int groups>
int improveInTurn(Best& best, const Candidates (&c)[groups]) {
  const auto mask = [&] {
    return _mm_movemask_epi8(
        _mm_packs_epi16(beating(c[0], best), groups > 1 ? beating(c[groups - 1], best) : _mm_setzero_si128()));
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

// The best candidate of each of eight columns, without a branch; energies must be positive to make the order of trials
// immaterial but for ties.
class BestOfColumns {
 public:
  explicit BestOfColumns(const Candidates& c)
      : low_(c.crossLow()), high_(c.crossHigh()), rowLow_(_mm_setzero_si128()), rowHigh_(rowLow_), least_(c.energy) {}
  void add(int row, const Candidates& c) {
    const V rows = _mm_set1_epi32(row);
    replace(better(c.pairsLow(), low_), c.crossLow(), rows, low_, rowLow_);
    replace(better(c.pairsHigh(), high_), c.crossHigh(), rows, high_, rowHigh_);
    least_ = _mm_min_epi16(least_, c.energy);
  }
  bool energiesPositive() const { return _mm_movemask_epi8(_mm_cmpgt_epi16(least_, _mm_setzero_si128())) == 0xffff; }
  BestOfRows best() const {
    alignas(16) Zpp16s cross[2 * kPositions];
    alignas(16) Zpp32s row[kPositions];
    store(cross, low_);
    store(cross + kPositions, high_);
    store(row, rowLow_);
    store(row + 4, rowHigh_);
    BestOfRows found = {{-cross[1], cross[0]}, row[0], 0};
    for (int j = 1; j < kPositions; ++j) {
      const Best candidate = {-cross[2 * j + 1], cross[2 * j]};
      const Zpp32s difference = candidate.square * found.best.energy - found.best.square * candidate.energy;
      if (difference > 0 || (difference == 0 && row[j] < found.row)) found = {candidate, row[j], j};
    }
    return found;
  }

 private:
  static void replace(V mask, V cross, V row, V& bestCross, V& bestRow) {
    bestCross = select(mask, cross, bestCross);
    bestRow = _mm_max_epi16(bestRow, _mm_and_si128(mask, row));  // rows come in ascending order
  }
  V low_, high_, rowLow_, rowHigh_, least_;
};

// The best of rows of candidates; make(i) gives row i.
template <class Make>
BestOfRows bestOfRows(int rows, const Make& make) {
  BestOfColumns columns(make(0));
  for (int i = 1; i < rows; ++i) columns.add(i, make(i));
  if (columns.energiesPositive()) [[likely]]
    return columns.best();
  BestOfRows found;
  for (int i = 0; i < rows; ++i) {
    const int j = improveInTurn(found.best, {make(i)});
    if (j >= 0) found.row = i, found.column = j;
  }
  return found;
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
  template <int shift>
  static BestOfRows bestOf(int rows, const Zpp16s* sum, const Zpp16s* d, const Zpp32s* offset, const Zpp16s* r,
                           const Zpp32s* energy) {
    return bestOfRows(rows, [&](int i) -> Candidates {
      return {squareQ15(_mm_adds_epi16(_mm_set1_epi16(sum[i]), load(d))),
              energies<shift>(_mm_set1_epi32(offset[i]), r + kPositions * i, energy)};
    });
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
  searchTree<Row>(magnitude, matrix, pulse);
}

void ownD2i40_11_W7(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse) {
  searchTwoPulses<Row>(magnitude, matrix, pulse);
}

PulsePair ownPulsePair_G729E_16s_W7(Zpp16s sum, Zpp16s energy, const TrackTerms& outer, const TrackTerms& inner,
                                    const Zpp16s* cross) {
  const V innerCorrelation = load(inner.correlation), innerEnergy = load(inner.energy);
  const BestOfRows found = bestOfRows(kPositions, [&](int i) -> Candidates {
    const V correlation = _mm_adds_epi16(_mm_set1_epi16(addSat16(sum, outer.correlation[i])), innerCorrelation);
    return {mulQ15(correlation, correlation), _mm_adds_epi16(_mm_set1_epi16(addSat16(energy, outer.energy[i])),
                                                             _mm_adds_epi16(innerEnergy, load(cross + kPositions * i)))};
  });
  return {found.row, found.column, static_cast<Zpp16s>(found.best.energy)};
}
