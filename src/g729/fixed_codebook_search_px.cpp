// Searches for pulse positions: portable kernels.
#include "g729/fixed_codebook_search.h"

using namespace zpp;

namespace {

struct Row {
  template <int shift, int length>
  static int improve(Best& best, Zpp16s sum, const Zpp16s* d, Zpp32s offset, const Zpp16s* r, const Zpp32s* energy) {
    int found = -1;
    for (int j = 0; j < length; ++j) {
      const Zpp16s correlation = addSat16(sum, d[j]);
      if (best.improve(mulQ15(correlation, correlation), (offset + 2 * r[j] + energy[j]) >> shift)) found = j;
    }
    return found;
  }
  template <int shift>
  static BestOfRows bestOf(int rows, const Zpp16s* sum, const Zpp16s* d, const Zpp32s* offset, const Zpp16s* r,
                           const Zpp32s* energy) {
    BestOfRows found;
    for (int i = 0; i < rows; ++i) {
      const int j = improve<shift, kPositions>(found.best, sum[i], d, offset[i], r + kPositions * i, energy);
      if (j >= 0) found.row = i, found.column = j;
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

}  // namespace

int ownFixedCodebookSearch_G729_PX(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp16s threshold, int budget, Zpp8u* pulse) {
  return searchFourPulses<Row>(magnitude, matrix, threshold, budget, pulse);
}

void ownFixedCodebookSearch_G729A_PX(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse) {
  searchTree<Row>(magnitude, matrix, pulse);
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
