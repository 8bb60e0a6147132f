// Folding of the target's signs into the correlation matrix (ITU-T G.729 clause 3.8.1, equation 54)
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

using namespace zpp;

namespace {

// Factors of the columns beside a positive and a negative sign of the row
struct MainBodyFactors {
  alignas(16) Zpp16s besidePositive[kSubframe], besideNegative[kSubframe];

  explicit MainBodyFactors(const Zpp16s* sign) {
    for (int n = 0; n < kSubframe; ++n) {
      besidePositive[n] = mulQ15(kMax16, sign[n]);
      besideNegative[n] = mulQ15(kMin16, sign[n]);
    }
  }
};
struct AnnexAFactors {
  const Zpp16s* besidePositive;
  alignas(16) Zpp16s besideNegative[kSubframe];

  explicit AnnexAFactors(const Zpp16s* sign) : besidePositive(sign) {
    for (int n = 0; n < kSubframe; ++n) besideNegative[n] = static_cast<Zpp16s>(~sign[n]);
  }
};

}  // namespace

void ownFoldSigns_G729(const Zpp16s* sign, const TrackPair* tracks, Zpp16s* matrix) {
  const MainBodyFactors f(sign);
  ownFixedCodebookCorrSign(matrix + kDiagonals, tracks, kBlocks, sign, f.besidePositive, f.besideNegative);
}

void ownFoldSigns_G729A(const Zpp16s* sign, const TrackPair* tracks, int blocks, Zpp16s* cross) {
  const AnnexAFactors f(sign);
  ownFixedCodebookCorrSign(cross, tracks, blocks, sign, f.besidePositive, f.besideNegative);
}

void ownFoldSigns_G729_32s16s(const Zpp16s* sign, Zpp32s* matrix, Zpp16s* folded) {
  const MainBodyFactors f(sign);
  ownFixedCodebookCorrSign_32s16s(matrix, kTrackPairs, sign, f.besidePositive, f.besideNegative, folded);
}

void ownFoldSigns_G729A_32s16s(const Zpp16s* sign, Zpp32s* matrix, Zpp16s* folded) {
  const AnnexAFactors f(sign);
  ownFixedCodebookCorrSign_32s16s(matrix, kTrackPairs, sign, f.besidePositive, f.besideNegative, folded);
}
