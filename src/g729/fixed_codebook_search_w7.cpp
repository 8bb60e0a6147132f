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

// Two bits a lane: set where the candidate beats the best one. The pairs (square, energy) are multiplied crosswise; with
// squares of 0 or more the difference of the two products fits 32 bits.
int beating(const Best& best, V low, V high) {
  const V crosswise =
      _mm_unpacklo_epi16(_mm_set1_epi16(static_cast<Zpp16s>(best.energy)), _mm_set1_epi16(static_cast<Zpp16s>(-best.square)));
  const V zero = _mm_setzero_si128();
  return _mm_movemask_epi8(_mm_packs_epi32(_mm_cmpgt_epi32(_mm_madd_epi16(low, crosswise), zero),
                                           _mm_cmpgt_epi32(_mm_madd_epi16(high, crosswise), zero)));
}

// Tries eight candidates in turn; the lane of the last that replaced the best one, or -1.
int improveEight(Best& best, V correlation, V energy) {
  const V square = mulQ15(correlation, correlation);
  const V low = _mm_unpacklo_epi16(square, energy), high = _mm_unpackhi_epi16(square, energy);
  int mask = beating(best, low, high);
  if (mask == 0) [[likely]]
    return -1;
  alignas(16) Zpp16s squares[kPositions], energies[kPositions];
  store(squares, square);
  store(energies, energy);
  int lane;
  do {
    lane = std::countr_zero(static_cast<unsigned>(mask)) / 2;
    best = {squares[lane], energies[lane]};
    mask = beating(best, low, high) & -(4 << 2 * lane);
  } while (mask != 0);
  return lane;
}

struct Row {
  template <int shift>
  static int improve(Best& best, Zpp16s sum, const Zpp16s* d, Zpp32s offset, const Zpp16s* r, const Zpp32s* energy) {
    const V row = load(r), common = _mm_set1_epi32(offset);
    const V low = _mm_add_epi32(_mm_add_epi32(twiceLow(row), load(energy)), common);
    const V high = _mm_add_epi32(_mm_add_epi32(twiceHigh(row), load(energy + 4)), common);
    return improveEight(best, _mm_adds_epi16(_mm_set1_epi16(sum), load(d)),
                        _mm_packs_epi32(_mm_srai_epi32(low, shift), _mm_srai_epi32(high, shift)));
  }
  static void addTwice(const Zpp32s* src, const Zpp16s* r, Zpp32s* dst) {
    const V row = load(r);
    store(dst, _mm_add_epi32(load(src), twiceLow(row)));
    store(dst + 4, _mm_add_epi32(load(src + 4), twiceHigh(row)));
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
  Best best = kNoCandidate;
  PulsePair pair = {0, 0, 1};
  const V innerCorrelation = load(inner.correlation), innerEnergy = load(inner.energy);
  for (int i = 0; i < kPositions; ++i) {
    const V all = _mm_adds_epi16(_mm_set1_epi16(addSat16(energy, outer.energy[i])),
                                 _mm_adds_epi16(innerEnergy, load(cross + kPositions * i)));
    const int j =
        improveEight(best, _mm_adds_epi16(_mm_set1_epi16(addSat16(sum, outer.correlation[i])), innerCorrelation), all);
    if (j >= 0) pair = {i, j, static_cast<Zpp16s>(best.energy)};
  }
  return pair;
}
