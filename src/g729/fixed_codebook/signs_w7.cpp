// Folding of the target's signs into the correlation matrix: SSE2 kernels.
#include "core/simd_w7.h"
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

using namespace zpp;

namespace {

// fold(row of the cross blocks, factors of its eight entries)
template <class Fold>
void eachRow(int blocks, const TrackPair* tracks, const Zpp16s* sign, const Zpp16s* besidePositive,
             const Zpp16s* besideNegative, Fold fold) {
  for (int block = 0, row = 0; block < blocks; ++block) {
    const Zpp16s* rowSign = sign + kPositions * tracks[block].row;
    const int column = kPositions * tracks[block].column;
    for (int i = 0; i < kPositions; ++i, ++row) fold(row, load((rowSign[i] > 0 ? besidePositive : besideNegative) + column));
  }
}

}  // namespace

void ownFixedCodebookCorrSign_W7(Zpp16s* cross, const TrackPair* tracks, int blocks, const Zpp16s* sign,
                                 const Zpp16s* besidePositive, const Zpp16s* besideNegative) {
  eachRow(blocks, tracks, sign, besidePositive, besideNegative, [cross](int row, V factors) {
    Zpp16s* entries = cross + kPositions * row;
    store(entries, mulQ15(load(entries), factors));
  });
}

void ownFixedCodebookCorrSign_32s16s_W7(Zpp32s* matrix, const TrackPair* tracks, const Zpp16s* sign,
                                        const Zpp16s* besidePositive, const Zpp16s* besideNegative, Zpp16s* folded) {
  const auto shifted = [matrix](int n) {
    return _mm_packs_epi32(_mm_srai_epi32(load(matrix + n), 15), _mm_srai_epi32(load(matrix + n + 4), 15));
  };
  const auto put = [matrix, folded](int n, V entries) {
    store(folded + n, entries);
    const V signs = _mm_cmpgt_epi16(_mm_setzero_si128(), entries);
    store(matrix + n, _mm_unpacklo_epi16(entries, signs));
    store(matrix + n + 4, _mm_unpackhi_epi16(entries, signs));
  };
  for (int n = 0; n < kDiagonals; n += kPositions) put(n, shifted(n));
  eachRow(kBlocks, tracks, sign, besidePositive, besideNegative, [&](int row, V factors) {
    const int n = kDiagonals + kPositions * row;
    put(n, mulQ15(shifted(n), factors));
  });
}
