// Folding of the target's signs into the correlation matrix: portable kernels.
#include "g729/fixed_codebook/fixed_codebook.h"
#include "g729/fixed_codebook/kernels.h"

using namespace zpp;

void ownFixedCodebookCorrSign_PX(Zpp16s* cross, const TrackPair* tracks, int blocks, const Zpp16s* sign,
                                 const Zpp16s* besidePositive, const Zpp16s* besideNegative) {
  for (int block = 0; block < blocks; ++block)
    for (int i = 0; i < kPositions; ++i, cross += kPositions) {
      const bool positive = sign[kPositions * tracks[block].row + i] > 0;
      const Zpp16s* factor = (positive ? besidePositive : besideNegative) + kPositions * tracks[block].column;
      for (int j = 0; j < kPositions; ++j) {
        const auto product = static_cast<Zpp16s>((cross[j] * factor[j]) >> 15);
        cross[j] = static_cast<Zpp16s>(product ^ -(product == kMin16));  // -32768 times itself wraps
      }
    }
}

void ownFixedCodebookCorrSign_32s16s_PX(Zpp32s* matrix, const TrackPair* tracks, const Zpp16s* sign,
                                        const Zpp16s* besidePositive, const Zpp16s* besideNegative, Zpp16s* folded) {
  for (int n = 0; n < kMatrix; ++n) folded[n] = sat16(matrix[n] >> 15);
  ownFixedCodebookCorrSign_PX(folded + kDiagonals, tracks, kBlocks, sign, besidePositive, besideNegative);
  for (int n = 0; n < kMatrix; ++n) matrix[n] = folded[n];
}
