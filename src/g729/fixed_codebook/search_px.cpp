// Searches for pulse positions: portable kernels.
#include "g729/fixed_codebook/search.h"

using namespace zpp;

namespace {

struct Row {
  template <int shift, int length>
  static int improve(Best& best, Zpp16s sum, const Zpp16s* d, Zpp32s offset, const Zpp16s* r, const Zpp32s* energy) {
    int found = -1;
    for (int j = 0; j < length; ++j) {
      const Zpp32s correlation = std::min(sum + d[j], kMax16);  // of magnitudes
      if (best.improve(static_cast<Zpp16s>((correlation * correlation) >> 15), (offset + 2 * r[j] + energy[j]) >> shift))
        found = j;
    }
    return found;
  }
  static void addTwice(const Zpp32s* src, const Zpp16s* r, Zpp32s* dst) {
    for (int j = 0; j < kLastPositions; ++j) dst[j] = src[j] + 2 * r[j];
  }
  static unsigned above(Zpp16s sum, const Zpp16s* d, Zpp16s threshold) {
    unsigned mask = 0;
    for (int j = 0; j < kPositions; ++j) mask |= addSat16(sum, d[j]) > threshold ? 1u << j : 0u;
    return mask;
  }
  static void interleave(const Zpp16s* a, const Zpp16s* b, Zpp16s* dst) {
    for (int j = 0; j < kPositions; ++j) dst[2 * j] = a[j], dst[2 * j + 1] = b[j];
  }
};

// The best of a number of rows of eight candidates, the first on ties; {-1, 1} at 0, 0 if none has a positive energy to speak
// of.
struct BestOfRows {
  Best best = kNoCandidate;
  int row = 0, column = 0;
};

// The candidates of rows of eight in turn, each row with its own sum[i], offset[i] and r[8 i + j]
template <int shift>
inline BestOfRows bestOf(int rows, const Zpp16s* sum, const Zpp16s* d, const Zpp32s* offset, const Zpp16s* r,
                         const Zpp32s* energy) {
  BestOfRows found;
  for (int i = 0; i < rows; ++i) {
    const int j = Row::improve<shift, kPositions>(found.best, sum[i], d, offset[i], r + kPositions * i, energy);
    if (j >= 0) found.row = i, found.column = j;
  }
  return found;
}

// The entries r(i, j) of positions of two tracks in either order
template <int row, int column>
struct PairView {
  static constexpr bool kAsStored = row < column;
  const Zpp16s* entries;

  explicit PairView(const Zpp16s* matrix) : entries(matrix + (kAsStored ? crossBlock(row, column) : crossBlock(column, row))) {}
  Zpp16s operator()(int i, int j) const { return entries[kAsStored ? kPositions * i + j : kPositions * j + i]; }
};

// One pass: sets the pulses of its best candidate when this beats the best one before.
template <TreePass tracks>
void searchTwoPairs(const Zpp16s* magnitude, const Zpp16s* matrix, Best& best, Zpp8u* pulse) {
  constexpr int A = tracks.a, B = tracks.b, C = tracks.c, D = tracks.d;
  const Zpp16s *dA = magnitude + kPositions * A, *dB = magnitude + kPositions * B, *dC = magnitude + kPositions * C;
  const Zpp16s *rAA = matrix + kPositions * A, *rBB = matrix + kPositions * B, *rCC = matrix + kPositions * C,
               *rDD = matrix + kPositions * D;
  const PairView<A, B> rAB(matrix);
  const PairView<A, C> rAC(matrix);
  const PairView<A, D> rAD(matrix);
  const PairView<B, C> rBC(matrix);
  const PairView<B, D> rBD(matrix);
  alignas(16) Zpp32s energy[kPositions], offset[kPositions];
  alignas(16) Zpp16s sum[kPositions], rows[2 * kPositions];

  // Energies in units of 1/4 of the sum
  int candidate[2];
  twoLargest(dA, candidate);
  for (int n = 0; n < 2; ++n) {
    sum[n] = dA[candidate[n]];
    offset[n] = rAA[candidate[n]] + 2;
    for (int j = 0; j < kPositions; ++j) rows[kPositions * n + j] = rAB(candidate[n], j);
  }
  for (int j = 0; j < kPositions; ++j) energy[j] = rBB[j];
  const BestOfRows first = bestOf<2>(2, sum, dB, offset, rows, energy);
  const int p = candidate[first.row], q = first.column;

  // Energies in units of 1/16 of the sum; what each position of the last track adds beside the first pair is rounded to 1/8.
  const Zpp16s firstSum = addSat16(dA[p], dB[q]);
  for (int n = 0; n < kPositions; ++n) {
    sum[n] = addSat16(firstSum, dC[n]);
    offset[n] = 4 * first.best.energy + 2 * (rAC(p, n) + rBC(q, n)) + rCC[n] + 8;
    energy[n] = (2 * (rAD(p, n) + rBD(q, n)) + rDD[n] + 4) >> 3 << 3;
  }
  const BestOfRows second = bestOf<4>(kPositions, sum, magnitude + kPositions * D, offset, matrix + crossBlock(C, D), energy);
  if (best.improve(second.best.square, second.best.energy)) setPulses(tracks, p, q, second.row, second.column, pulse);
}

}  // namespace

int ownFixedCodebookSearch_G729_PX(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp16s threshold, int budget, Zpp8u* pulse) {
  return searchFourPulses<Row>(magnitude, matrix, threshold, budget, pulse);
}

void ownFixedCodebookSearch_G729A_PX(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse) {
  Best best = kNoCandidate;
  pulse[0] = pulse[1] = pulse[2] = pulse[3] = 0;
  searchTwoPairs<kTreePasses[0]>(magnitude, matrix, best, pulse);
  searchTwoPairs<kTreePasses[1]>(magnitude, matrix, best, pulse);
  searchTwoPairs<kTreePasses[2]>(magnitude, matrix, best, pulse);
  searchTwoPairs<kTreePasses[3]>(magnitude, matrix, best, pulse);
}

void ownD2i40_11_PX(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse) {
  searchTwoPulses<Row>(magnitude, matrix, pulse);
}

PulsePair ownPulsePair_G729E_16s_PX(Zpp16s sum, Zpp16s energy, const TrackTerms& outer, const TrackTerms& inner,
                                    const Zpp16s* cross) {
  Best best = kNoCandidate;
  PulsePair pair = {0, 0, 1};
  for (int i = 0; i < kPositions; ++i)
    for (int j = 0; j < kPositions; ++j) {
      const Zpp16s correlation = addSat16(addSat16(sum, outer.correlation[i]), inner.correlation[j]);
      const Zpp16s all = addSat16(addSat16(energy, outer.energy[i]), addSat16(inner.energy[j], cross[kPositions * i + j]));
      if (best.improve(mulQ15(correlation, correlation), all)) pair = {i, j, all};
    }
  return pair;
}
