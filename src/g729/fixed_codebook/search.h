// The searches for pulse positions of the main body and of Annex D (ITU-T G.729 clauses 3.8.1 and D.5), written once for all
// processor levels.
//
// All of them compare candidates in rows of eight or 16, in the order of the standard. `Row` does that, on magnitudes:
//
//   improve<shift, length>(best, sum, d, offset, r, energy)
//     tries the candidates of correlation sat16(sum + d[j]) and energy (offset + 2 r[j] + energy[j]) >> shift in turn, keeps
//     the best, and returns the j of the last one that replaced it, or -1
//   addTwice(src, r, dst): dst[j] = src[j] + 2 r[j], j = 0..15
//   above(sum, d, threshold): bit j set where sat16(sum + d[j]) > threshold, j = 0..7
//   interleave(a, b, dst): dst[2 j] = a[j], dst[2 j + 1] = b[j], j = 0..7
//
// An energy is a sum of 16 entries of the matrix divided by 16 at the most, so it fits 16 bits and nothing saturates.
#pragma once

#include <algorithm>
#include <bit>

#include "core/kernels.h"
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

namespace zpp {

// --- Main body: four nested loops ---------------------------------------------------------------------------------------

// The 16 positions of pulse 3 in the order of the codeword: 5 k + 3 before 5 k + 4
inline constexpr int kLastPositions = 2 * kPositions;

// Pulse 3 beside the pulses of one track: rows of 16 entries
template <class Row>
inline void lastPulseRows(const Zpp16s* matrix, int track, Zpp16s* rows) {
  for (int i = 0; i < kPositions; ++i)
    Row::interleave(matrix + crossBlock(track, 3) + kPositions * i, matrix + crossBlock(track, 4) + kPositions * i,
                    rows + kLastPositions * i);
}

// Position indices of the best code vector, pulse[3] counting 16 positions; returns the budget that is left.
template <class Row>
inline int searchFourPulses(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp16s threshold, int budget, Zpp8u* pulse) {
  const Zpp16s *d0 = magnitude, *d1 = d0 + kPositions, *d2 = d1 + kPositions;
  const Zpp16s *r00 = matrix, *r11 = r00 + kPositions, *r22 = r11 + kPositions;
  const Zpp16s *r01 = matrix + crossBlock(0, 1), *r02 = matrix + crossBlock(0, 2), *r12 = matrix + crossBlock(1, 2);
  alignas(16) Zpp16s d3[kLastPositions], r33[kLastPositions], rows0[kLastPositions * kPositions],
      rows1[kLastPositions * kPositions], rows2[kLastPositions * kPositions];
  Row::interleave(magnitude + 3 * kPositions, magnitude + 4 * kPositions, d3);
  Row::interleave(matrix + 3 * kPositions, matrix + 4 * kPositions, r33);
  lastPulseRows<Row>(matrix, 0, rows0);
  lastPulseRows<Row>(matrix, 1, rows1);
  lastPulseRows<Row>(matrix, 2, rows2);
  const Zpp16s most2 = *std::max_element(d2, d2 + kPositions);

  Best best = {0, kMax16};
  pulse[0] = pulse[1] = pulse[2] = pulse[3] = 0;
  // Energy of pulse 3, beside pulse 0, and beside pulses 0 and 1
  alignas(16) Zpp32s alone[kLastPositions], beside0[kLastPositions], beside01[kLastPositions];
  for (int k = 0; k < kLastPositions; ++k) alone[k] = r33[k];
  for (int i0 = 0; i0 < kPositions; ++i0) {
    Row::addTwice(alone, rows0 + kLastPositions * i0, beside0);
    for (int i1 = 0; i1 < kPositions; ++i1) {
      const Zpp16s sum01 = addSat16(d0[i0], d1[i1]);
      if (addSat16(sum01, most2) <= threshold) continue;
      const Zpp32s energy01 = r00[i0] + r11[i1] + 2 * r01[kPositions * i0 + i1];
      Row::addTwice(beside0, rows1 + kLastPositions * i1, beside01);
      for (unsigned promising = Row::above(sum01, d2, threshold); promising != 0; promising &= promising - 1) {
        const int i2 = std::countr_zero(promising);
        const Zpp32s energy = energy01 + r22[i2] + 2 * (r02[kPositions * i0 + i2] + r12[kPositions * i1 + i2]);
        const int k = Row::template improve<4, kLastPositions>(best, addSat16(sum01, d2[i2]), d3, energy,
                                                               rows2 + kLastPositions * i2, beside01);
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

// --- Annex D: two pulses ------------------------------------------------------------------------------------------------

// pulse: the samples of the first and of the second pulse of the codeword
template <class Row>
inline void searchTwoPulses(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse) {
  // The block, and which of the codeword's pulses is on its row track; block 2-4 takes no part.
  static constexpr Zpp8u kRowPulse[kBlocks - 1] = {1, 0, 1, 0, 0, 1, 0, 1};
  alignas(16) Zpp32s diagonal[kDiagonals];
  for (int n = 0; n < kDiagonals; ++n) diagonal[n] = matrix[n];
  Best best = {0, kMax16};
  pulse[0] = 1;
  pulse[1] = 0;
  const Zpp16s* r = matrix + kDiagonals;
  for (int block = 0; block < kBlocks - 1; ++block) {
    const int row = kTrackPairsAnnexD[block].row, column = kTrackPairsAnnexD[block].column;
    for (int i = 0; i < kPositions; ++i, r += kPositions) {
      const int j = Row::template improve<4, kPositions>(best, magnitude[kPositions * row + i], magnitude + kPositions * column,
                                                         diagonal[kPositions * row + i], r, diagonal + kPositions * column);
      if (j < 0) continue;
      pulse[kRowPulse[block]] = static_cast<Zpp8u>(kTracks * i + row);
      pulse[1 - kRowPulse[block]] = static_cast<Zpp8u>(kTracks * j + column);
    }
  }
}

}  // namespace zpp
