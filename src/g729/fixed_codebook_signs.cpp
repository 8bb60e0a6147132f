// Folding of the target's signs into the correlation matrix (ITU-T G.729 clause 3.8.1, equation 54)
#include "g729/fcb_kernels.h"
#include "g729/fixed_codebook.h"

using namespace zpp;

void ownFoldSigns_G729(const Zpp16s* sign, const TrackPair* tracks, Zpp16s* matrix) {
  alignas(16) Zpp16s besidePositive[kSubframe], besideNegative[kSubframe];
  for (int n = 0; n < kSubframe; ++n) {
    besidePositive[n] = mulQ15(kMax16, sign[n]);
    besideNegative[n] = mulQ15(kMin16, sign[n]);
  }
  ownFixedCodebookCorrSign(matrix + kDiagonals, tracks, kBlocks, sign, besidePositive, besideNegative);
}

void ownFoldSigns_G729A(const Zpp16s* sign, const TrackPair* tracks, int blocks, Zpp16s* cross) {
  alignas(16) Zpp16s opposite[kSubframe];
  for (int n = 0; n < kSubframe; ++n) opposite[n] = static_cast<Zpp16s>(~sign[n]);
  ownFixedCodebookCorrSign(cross, tracks, blocks, sign, sign, opposite);
}
