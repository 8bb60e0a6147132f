// Algebraic codebook search: SSE2 kernel. The eight places of the third track, then those of the fourth, go side by side.
#include <bit>

#include "core/fixed_point.h"
#include "core/simd_w7.h"
#include "g723/fixed_codebook/kernels.h"

using namespace zpp;

namespace {

constexpr int kThird = 2 * kTrackPlaces, kFourth = 3 * kTrackPlaces;

class Search {
 public:
  Search(const Zpp16s* correlations, const Zpp16s (*matrix)[kPlaces], AlgebraicChoice* best)
      : correlations_(correlations), matrix_(matrix), best_(best) {
    alignas(16) Zpp16s own[kTrackPlaces];
    for (int i = 0; i < kTrackPlaces; ++i) own[i] = matrix[kFourth + i][kFourth + i];
    own_ = _mm_load_si128(reinterpret_cast<const V*>(own));
  }

  // All places of the fourth track behind three others that reach `sum`
  void complete(int p0, int p1, int p2, int grid, Zpp16s sum) {
    const Zpp16s *row0 = matrix_[p0], *row1 = matrix_[p1], *row2 = matrix_[p2];
    const Zpp32s three = row0[p0] + row1[p1] + row2[p2] + 2 * (row0[p1] + row0[p2] + row1[p2]);
    const V cross0 = load(row0 + kFourth), cross1 = load(row1 + kFourth), cross2 = load(row2 + kFourth);
    const V twos = _mm_set1_epi16(2), oneAndTwo = pairOf(1, 2);
    const auto total = [&](V ownAndFirst, V others) {
      const V sums = _mm_add_epi32(_mm_madd_epi16(ownAndFirst, oneAndTwo), _mm_madd_epi16(others, twos));
      return _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(three)), 4);
    };
    const V energies = _mm_packs_epi32(total(_mm_unpacklo_epi16(own_, cross0), _mm_unpacklo_epi16(cross1, cross2)),
                                       total(_mm_unpackhi_epi16(own_, cross0), _mm_unpackhi_epi16(cross1, cross2)));
    const V all = _mm_adds_epi16(_mm_set1_epi16(sum), load(correlations_ + kPlaces * grid + kFourth));
    const V scores = mulQ15(all, all);
    // score * best energy - best score * energy: scores are 0 or more.
    const V factors = pairOf(best_->energy, -best_->score), zero = _mm_setzero_si128();
    const V better = _mm_packs_epi32(_mm_cmpgt_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(scores, energies), factors), zero),
                                     _mm_cmpgt_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(scores, energies), factors), zero));
    const auto found = static_cast<unsigned>(_mm_movemask_epi8(better));
    if (found == 0) return;
    alignas(16) Zpp16s score[kTrackPlaces], energy[kTrackPlaces];
    store(score, scores);
    store(energy, energies);
    for (int i = std::countr_zero(found) / 2; i < kTrackPlaces; ++i)
      if (score[i] * best_->energy > best_->score * energy[i]) *best_ = {{p0, p1, p2, kFourth + i}, grid, score[i], energy[i]};
  }

 private:
  const Zpp16s* correlations_;
  const Zpp16s (*matrix_)[kPlaces];
  AlgebraicChoice* best_;
  V own_;
};

}  // namespace

int ownAlgebraicSearch_G723_16s_W7(const Zpp16s* correlations, const Zpp16s (*matrix)[kPlaces], Zpp16s threshold, int budget,
                                   AlgebraicChoice* best) {
  const Zpp16s *even = correlations, *odd = correlations + kPlaces;
  const V evenThird = load(even + kThird), oddThird = load(odd + kThird), limit = _mm_set1_epi16(threshold);
  Search search(correlations, matrix, best);
  for (int p0 = 0; p0 < kTrackPlaces; ++p0)
    for (int p1 = kTrackPlaces; p1 < kThird; ++p1) {
      const V onEven = _mm_adds_epi16(_mm_set1_epi16(addSat16(even[p0], even[p1])), evenThird);
      const V onOdd = _mm_adds_epi16(_mm_set1_epi16(addSat16(odd[p0], odd[p1])), oddThird);
      const V most = _mm_max_epi16(onEven, onOdd);
      auto visited = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpgt_epi16(most, limit)));
      if (visited == 0) continue;
      const auto isOdd = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpgt_epi16(onOdd, onEven)));
      alignas(16) Zpp16s sums[kTrackPlaces];
      store(sums, most);
      while (visited != 0) {
        const int bit = std::countr_zero(visited);
        visited &= ~(3u << bit);
        search.complete(p0, p1, kThird + bit / 2, static_cast<int>(isOdd >> bit & 1), sums[bit / 2]);
        if (--budget <= 0) return budget;
      }
    }
  return budget;
}
