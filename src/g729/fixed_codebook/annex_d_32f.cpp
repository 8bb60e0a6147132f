// Fixed codebook of two signed pulses in 11 bits for 6.4 kbit/s in single precision (ITU-T G.729 Annex D, clause D.5, as in
// Annex C+)
#include "core/checks.h"
#include "g729/fixed_codebook/fixed_codebook_32f.h"

using namespace zpp;

namespace {

// The pairs of tracks in the order of the search, each with its block of the matrix and the track of the codeword's first
// pulse; of 1-1 it is the row.
struct Step {
  int row, column, block, firstTrack;
};
constexpr Step kSteps[] = {{0, 1, 0, 1}, {1, 2, 4, 1}, {1, 4, 6, 1}, {1, 1, 1, 1},
                           {0, 3, 2, 3}, {2, 3, 7, 3}, {3, 4, 3, 3}, {1, 3, 5, 3}};

// pulse: the samples of the first and of the second pulse of the codeword
void searchTwoPulses(const Zpp32f* magnitude, const Zpp32f* matrix, int (&pulse)[2]) {
  Zpp32f diagonal[kDiagonals];
  halve(matrix, diagonal, kDiagonals);
  Best_32f best = {0, 1e38f};
  pulse[0] = 3;
  pulse[1] = 0;
  for (const Step& step : kSteps) {
    const Zpp32f *r = matrix + kDiagonals + kBlock * step.block, *row = magnitude + kPositions * step.row;
    const int columnTrack = kPositions * step.column;
    for (int i = 0; i < kPositions; ++i) {
      const int j = improve<kPositions>(best, row[i], magnitude + columnTrack, diagonal[kPositions * step.row + i],
                                        r + kPositions * i, diagonal + columnTrack);
      if (j < 0) continue;
      const int rowSample = kTracks * i + step.row, columnSample = kTracks * j + step.column;
      const bool rowFirst = step.row == step.firstTrack;
      pulse[0] = rowFirst ? rowSample : columnSample;
      pulse[1] = rowFirst ? columnSample : rowSample;
    }
  }
}

void ownFixedCodebookSearch_G729D_32f(const Zpp32f* target, const Zpp32f* impulse, Zpp32f* code, Zpp32f* filtered, Zpp16s* sign,
                                      Zpp16s* position) {
  Zpp32f matrix[kMatrix];
  ownToeplizMatrix_G729D_32f(impulse, matrix);
  const SignedTarget_32f signedTarget(target);
  foldSigns(signedTarget.sign, kTrackPairsAnnexD, kBlocks, matrix + kDiagonals);
  int pulse[2];
  searchTwoPulses(signedTarget.magnitude, matrix, pulse);

  std::fill_n(code, kSubframe, 0.0f);
  std::fill_n(filtered, kSubframe, 0.0f);
  Zpp32s signs = 0;
  for (int n = 0; n < 2; ++n) {
    const bool positive = signedTarget.positive(pulse[n] % kTracks, pulse[n] / kTracks);
    signs |= positive ? 1 << n : 0;
    // Both pulses may fall on one sample of track 1.
    addPulse(pulse[n], SignedTarget_32f::amplitude(positive), impulse, code, filtered);
  }
  *sign = static_cast<Zpp16s>(signs);
  *position = positionWordAnnexD(pulse[0], pulse[1]);
}

}  // namespace

ZppStatus zppsFixedCodebookSearch_G729D_32f(const Zpp32f* target, const Zpp32f* impulse, Zpp32f* code, Zpp32f* filtered,
                                            Zpp16s* sign, Zpp16s* position) {
  if (anyNull(target, impulse, code, filtered, sign, position)) return zppStsNullPointer;
  ownFixedCodebookSearch_G729D_32f(target, impulse, code, filtered, sign, position);
  return zppStsOk;
}
