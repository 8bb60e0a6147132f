// Fixed codebook of four signed pulses in 17 bits in single precision: the search of the main body with its budget (ITU-T G.729
// clause 3.8.1) and that of Annex A (clause A.3.8.1), as in Annex C.
#include <algorithm>

#include "core/checks.h"
#include "g729/fixed_codebook/fixed_codebook_32f.h"

using namespace zpp;

namespace {

// --- Main body: four nested loops ---------------------------------------------------------------------------------------

// The 16 positions of pulse 3 in the order of the codeword: 5 k + 3 before 5 k + 4
constexpr int kLastPositions = 2 * kPositions;

void interleave(const Zpp32f* a, const Zpp32f* b, Zpp32f* dst) {
  for (int j = 0; j < kPositions; ++j) dst[2 * j] = a[j], dst[2 * j + 1] = b[j];
}

// Pulse 3 beside the pulses of one track: rows of 16 entries
struct LastPulseRows {
  alignas(16) Zpp32f at[kPositions][kLastPositions];

  LastPulseRows(const Zpp32f* matrix, int track) {
    for (int i = 0; i < kPositions; ++i)
      interleave(matrix + crossBlock(track, 3) + kPositions * i, matrix + crossBlock(track, 4) + kPositions * i, at[i]);
  }
};

// How promising three pulses must be: the mean correlation and 0.4 of the way from there to the largest possible one
Zpp64f pruningThreshold(const Zpp32f* magnitude) {
  Zpp64f sum = 0, most = 0;
  for (int track = 0; track < 3; ++track) {
    const Zpp32f* d = magnitude + kPositions * track;
    for (int i = 0; i < kPositions; ++i) sum += Zpp64f{d[i]};
    most += Zpp64f{*std::max_element(d, d + kPositions)};
  }
  const Zpp64f mean = sum / 8;
  return mean + 0.4 * (most - mean);
}

// Position indices of the best code vector, pulse[3] counting 16 positions; returns the budget that is left.
int searchFourPulses(const SignedTarget_32f& target, const Zpp32f* matrix, int budget, Zpp8u* pulse) {
  const Zpp32f *d0 = target.magnitude, *d1 = d0 + kPositions, *d2 = d1 + kPositions;
  const Zpp32f *r01 = matrix + crossBlock(0, 1), *r02 = matrix + crossBlock(0, 2), *r12 = matrix + crossBlock(1, 2);
  const LastPulseRows rows0(matrix, 0), rows1(matrix, 1), rows2(matrix, 2);
  alignas(16) Zpp32f diagonal[kDiagonals], d3[kLastPositions];
  halve(matrix, diagonal, kDiagonals);
  interleave(d0 + 3 * kPositions, d0 + 4 * kPositions, d3);
  const Zpp64f threshold = pruningThreshold(d0);

  Best_32f best = {0, 1000000};
  pulse[0] = pulse[1] = pulse[2] = pulse[3] = 0;
  // Energy of pulse 3, beside pulse 0, and beside pulses 0 and 1
  alignas(16) Zpp32f alone[kLastPositions], beside0[kLastPositions], beside01[kLastPositions];
  interleave(diagonal + 3 * kPositions, diagonal + 4 * kPositions, alone);
  for (int i0 = 0; i0 < kPositions; ++i0) {
    for (int k = 0; k < kLastPositions; ++k) beside0[k] = alone[k] + rows0.at[i0][k];
    for (int i1 = 0; i1 < kPositions; ++i1) {
      const Zpp32f sum01 = d0[i0] + d1[i1];
      const Zpp32f energy01 = diagonal[i0] + diagonal[kPositions + i1] + r01[kPositions * i0 + i1];
      for (int k = 0; k < kLastPositions; ++k) beside01[k] = beside0[k] + rows1.at[i1][k];
      for (int i2 = 0; i2 < kPositions; ++i2) {
        const Zpp32f sum = sum01 + d2[i2];
        if (!(Zpp64f{sum} > threshold)) continue;
        const Zpp32f energy =
            energy01 + diagonal[2 * kPositions + i2] + (r02[kPositions * i0 + i2] + r12[kPositions * i1 + i2]);
        const int k = improve<kLastPositions>(best, sum, d3, energy, rows2.at[i2], beside01);
        if (k >= 0) {
          const int found[] = {i0, i1, i2, k};
          for (int n = 0; n < 4; ++n) pulse[n] = static_cast<Zpp8u>(found[n]);
        }
        if (--budget <= 0) return budget;
      }
    }
  }
  return budget;
}

void ownFixedCodebookSearch_G729_32f(const Zpp32f* target, Zpp32f* matrix, Zpp32f* code, Zpp16s* codeword, Zpp16s* budget,
                                     Zpp16s subframe) {
  const SignedTarget_32f signedTarget(target);
  foldSigns(signedTarget.sign, kTrackPairs, kBlocks, matrix + kDiagonals);
  Zpp8u pulse[4];
  *budget = sat16(searchFourPulses(signedTarget, matrix, searchBudget(subframe, *budget), pulse));
  writeFourPulses(signedTarget, pulse, code, codeword);
}

// --- Annex A: depth-first tree of two pairs ---------------------------------------------------------------------------------

// The entries r(i, j) of position i of a track beside all positions of another, whichever comes first in the matrix
template <int track, int other>
void crossRow(const Zpp32f* matrix, int i, Zpp32f* row) {
  for (int j = 0; j < kPositions; ++j)
    if constexpr (track < other)
      row[j] = matrix[crossBlock(track, other) + kPositions * i + j];
    else
      row[j] = matrix[crossBlock(other, track) + kPositions * j + i];
}

// One pass: sets the pulses of its best candidate when this beats the best one before.
template <TreePass tracks>
void searchTwoPairs(const SignedTarget_32f& target, const Zpp32f* diagonal, const Zpp32f* matrix, Best_32f& best,
                    Zpp8u* pulse) {
  constexpr int A = tracks.a, B = tracks.b, C = tracks.c, D = tracks.d;
  const Zpp32f *dA = target.magnitude + kPositions * A, *dB = target.magnitude + kPositions * B,
               *dC = target.magnitude + kPositions * C, *dD = target.magnitude + kPositions * D;
  Zpp32f besideA[kPositions], besideB[kPositions], energy[kPositions];

  Best_32f first = kNoCandidate_32f;
  int candidate[2];
  twoLargest(dA, candidate);
  int p = candidate[0], q = 0;
  for (const int i : candidate) {
    crossRow<A, B>(matrix, i, besideA);
    const int j = improve<kPositions>(first, dA[i], dB, diagonal[kPositions * A + i], besideA, diagonal + kPositions * B);
    if (j >= 0) p = i, q = j;
  }

  crossRow<A, D>(matrix, p, besideA);
  crossRow<B, D>(matrix, q, besideB);
  for (int j = 0; j < kPositions; ++j) energy[j] = (besideA[j] + besideB[j]) + diagonal[kPositions * D + j];
  crossRow<A, C>(matrix, p, besideA);
  crossRow<B, C>(matrix, q, besideB);
  Best_32f second = kNoCandidate_32f;
  int row = 0, column = 0;
  for (int i = 0; i < kPositions; ++i) {
    const Zpp32f offset = first.energy + ((besideA[i] + besideB[i]) + diagonal[kPositions * C + i]);
    const int j =
        improve<kPositions>(second, dA[p] + dB[q] + dC[i], dD, offset, matrix + crossBlock(C, D) + kPositions * i, energy);
    if (j >= 0) row = i, column = j;
  }
  if (best.improve(second.square, second.energy)) setPulses(tracks, p, q, row, column, pulse);
}

void searchTree(const SignedTarget_32f& target, const Zpp32f* matrix, Zpp8u* pulse) {
  Zpp32f diagonal[kDiagonals];
  halve(matrix, diagonal, kDiagonals);
  Best_32f best = kNoCandidate_32f;
  pulse[0] = pulse[1] = pulse[2] = pulse[3] = 0;
  searchTwoPairs<kTreePasses[0]>(target, diagonal, matrix, best, pulse);
  searchTwoPairs<kTreePasses[1]>(target, diagonal, matrix, best, pulse);
  searchTwoPairs<kTreePasses[2]>(target, diagonal, matrix, best, pulse);
  searchTwoPairs<kTreePasses[3]>(target, diagonal, matrix, best, pulse);
}

void ownFixedCodebookSearch_G729A_32f(const Zpp32f* target, Zpp32f* matrix, Zpp32f* code, Zpp16s* codeword) {
  const SignedTarget_32f signedTarget(target);
  foldSigns(signedTarget.sign, kTrackPairs, kBlocks, matrix + kDiagonals);
  Zpp8u pulse[4];
  searchTree(signedTarget, matrix, pulse);
  writeFourPulses(signedTarget, pulse, code, codeword);
}

}  // namespace

ZppStatus zppsFixedCodebookSearch_G729_32f(const Zpp32f* target, Zpp32f* matrix, Zpp32f* code, Zpp16s* codeword, Zpp16s* budget,
                                           Zpp16s subframe) {
  if (anyNull(target, matrix, code, codeword, budget)) return zppStsNullPointer;
  if (subframe < 0) return zppStsOutOfRange;
  ownFixedCodebookSearch_G729_32f(target, matrix, code, codeword, budget, subframe);
  return zppStsOk;
}

ZppStatus zppsFixedCodebookSearch_G729A_32f(const Zpp32f* target, Zpp32f* matrix, Zpp32f* code, Zpp16s* codeword) {
  if (anyNull(target, matrix, code, codeword)) return zppStsNullPointer;
  ownFixedCodebookSearch_G729A_32f(target, matrix, code, codeword);
  return zppStsOk;
}
