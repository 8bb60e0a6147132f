// Folding of the target's signs into the correlation matrix: SSE2 kernel.
#include "core/simd_w7.h"
#include "g729/fcb_kernels.h"
#include "g729/fixed_codebook.h"

using namespace zpp;

void ownFixedCodebookCorrSign_W7(Zpp16s* cross, const TrackPair* tracks, int blocks, const Zpp16s* sign,
                                 const Zpp16s* besidePositive, const Zpp16s* besideNegative) {
  for (int block = 0; block < blocks; ++block) {
    const V factors[2] = {load(besidePositive + kPositions * tracks[block].column),
                          load(besideNegative + kPositions * tracks[block].column)};
    const Zpp16s* rowSign = sign + kPositions * tracks[block].row;
    for (int i = 0; i < kPositions; ++i, cross += kPositions)
      store(cross, mulQ15(load(cross), factors[rowSign[i] > 0 ? 0 : 1]));
  }
}
