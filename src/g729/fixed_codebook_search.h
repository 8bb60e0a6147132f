// The searches for pulse positions (ITU-T G.729 clauses 3.8.1, A.3.8.1 and D.5), written once for all processor levels.
//
// All of them compare candidates a row of eight at a time, in the order of the standard. `Row` does that:
//
//   improve<shift>(best, sum, d, offset, r, energy)
//     tries the candidates of correlation sat16(sum + d[j]) and energy (offset + 2 r[j] + energy[j]) >> shift in turn, j =
//     0..7, keeps the best, and returns the j of the last one that replaced it, or -1
//   addTwice(src, r, dst): dst[j] = src[j] + 2 r[j]
//   above(sum, d, threshold): bit j set where sat16(sum + d[j]) > threshold
//   interleave(a, b, dst): dst[2 j] = a[j], dst[2 j + 1] = b[j]
//
// An energy is a sum of 16 entries of the matrix divided by 16 at the most, so it fits 16 bits and nothing saturates.
#pragma once

#include <bit>

#include "core/kernels.h"
#include "g729/fcb_kernels.h"

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

  Best best = {0, kMax16};
  pulse[0] = pulse[1] = pulse[2] = pulse[3] = 0;
  // Energy of pulse 3 beside pulse 0, and beside pulses 0 and 1
  alignas(16) Zpp32s own[kLastPositions], beside0[kLastPositions], beside01[kLastPositions];
  for (int k = 0; k < kLastPositions; ++k) own[k] = r33[k];
  for (int i0 = 0; i0 < kPositions; ++i0) {
    for (int k = 0; k < kLastPositions; k += kPositions) Row::addTwice(own + k, rows0 + kLastPositions * i0 + k, beside0 + k);
    for (int i1 = 0; i1 < kPositions; ++i1) {
      const Zpp16s sum01 = addSat16(d0[i0], d1[i1]);
      unsigned promising = Row::above(sum01, d2, threshold);
      if (promising == 0) continue;
      const int entry01 = kPositions * i0 + i1;
      const Zpp32s energy01 = r00[i0] + r11[i1] + 2 * r01[entry01];
      for (int k = 0; k < kLastPositions; k += kPositions)
        Row::addTwice(beside0 + k, rows1 + kLastPositions * i1 + k, beside01 + k);
      for (; promising != 0; promising &= promising - 1) {
        const int i2 = std::countr_zero(promising);
        const Zpp32s energy = energy01 + r22[i2] + 2 * (r02[kPositions * i0 + i2] + r12[kPositions * i1 + i2]);
        for (int k = 0; k < kLastPositions; k += kPositions) {
          const int j = Row::template improve<4>(best, addSat16(sum01, d2[i2]), d3 + k, energy, rows2 + kLastPositions * i2 + k,
                                                 beside01 + k);
          if (j < 0) continue;
          pulse[0] = static_cast<Zpp8u>(i0);
          pulse[1] = static_cast<Zpp8u>(i1);
          pulse[2] = static_cast<Zpp8u>(i2);
          pulse[3] = static_cast<Zpp8u>(k + j);
        }
        if (--budget <= 0) return budget;
      }
    }
  }
  return budget;
}

// --- Annex A: depth-first tree of two pairs ---------------------------------------------------------------------------------

// The entries r of two tracks in either order
struct PairView {
  const Zpp16s* entries;
  int rowStep, columnStep;

  PairView(const Zpp16s* matrix, int row, int column)
      : entries(matrix + (row < column ? crossBlock(row, column) : crossBlock(column, row))),
        rowStep(row < column ? kPositions : 1),
        columnStep(row < column ? 1 : kPositions) {}
  Zpp32s operator()(int i, int j) const { return entries[rowStep * i + columnStep * j]; }
};

// The two positions of largest magnitude in a track, the lower one on ties
inline void twoLargest(const Zpp16s* d, int (&position)[2]) {
  position[0] = 0;
  for (int i = 1; i < kPositions; ++i)
    if (d[i] > d[position[0]]) position[0] = i;
  position[1] = position[0] == 0 ? 1 : 0;
  for (int i = 0; i < kPositions; ++i)
    if (i != position[0] && d[i] > d[position[1]]) position[1] = i;
}

// One pass: the first pair from two positions of track[0] and all of track[1], beside it the best pair of track[2] and
// track[3]. Leaves the index of the chosen position in pulse[track].
template <class Row>
inline Best searchTwoPairs(const Zpp16s* magnitude, const Zpp16s* matrix, const Zpp8u (&track)[4], Zpp8u (&pulse)[kTracks]) {
  const auto d = [&](int n) { return magnitude + kPositions * track[n]; };
  const auto diagonal = [&](int n) { return matrix + kPositions * track[n]; };
  const auto cross = [&](int n, int m) { return PairView(matrix, track[n], track[m]); };
  alignas(16) Zpp32s energy[kPositions];
  alignas(16) Zpp16s row[kPositions];

  // Energies in units of 1/4 of the sum
  Best firstPair = kNoCandidate;
  int p = 0, q = 0, candidates[2];
  twoLargest(d(0), candidates);
  const PairView r01 = cross(0, 1), r02 = cross(0, 2), r03 = cross(0, 3), r12 = cross(1, 2), r13 = cross(1, 3);
  for (int j = 0; j < kPositions; ++j) energy[j] = diagonal(1)[j];
  for (const int candidate : candidates) {
    for (int j = 0; j < kPositions; ++j) row[j] = static_cast<Zpp16s>(r01(candidate, j));
    const int j = Row::template improve<2>(firstPair, d(0)[candidate], d(1), diagonal(0)[candidate] + 2, row, energy);
    if (j >= 0) p = candidate, q = j;
  }
  const Zpp16s sum = addSat16(d(0)[p], d(1)[q]);

  // Energies in units of 1/16 of the sum; what each position of the last track adds beside the first pair is rounded to 1/8.
  for (int j = 0; j < kPositions; ++j) energy[j] = (2 * (r03(p, j) + r13(q, j)) + diagonal(3)[j] + 4) >> 3 << 3;
  const Zpp16s* r23 = cross(2, 3).entries;
  Best secondPair = kNoCandidate;
  int i = 0, j = 0;
  for (int n = 0; n < kPositions; ++n) {
    const Zpp32s offset = 4 * firstPair.energy + 2 * (r02(p, n) + r12(q, n)) + diagonal(2)[n] + 8;
    const int found = Row::template improve<4>(secondPair, addSat16(sum, d(2)[n]), d(3), offset, r23 + kPositions * n, energy);
    if (found >= 0) i = n, j = found;
  }
  const int chosen[] = {p, q, i, j};
  for (int n = 0; n < 4; ++n) pulse[track[n]] = static_cast<Zpp8u>(chosen[n]);
  return secondPair;
}

template <class Row>
inline void searchTree(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse) {
  static constexpr Zpp8u kPasses[4][4] = {{2, 3, 0, 1}, {3, 0, 1, 2}, {2, 4, 0, 1}, {4, 0, 1, 2}};
  Best best = kNoCandidate;
  pulse[0] = pulse[1] = pulse[2] = pulse[3] = 0;
  for (int pass = 0; pass < 4; ++pass) {
    Zpp8u found[kTracks];
    const Best candidate = searchTwoPairs<Row>(magnitude, matrix, kPasses[pass], found);
    if (!best.improve(candidate.square, candidate.energy)) continue;
    const int last = pass < 2 ? 3 : 4;
    for (int n = 0; n < 3; ++n) pulse[n] = found[n];
    pulse[3] = static_cast<Zpp8u>(2 * found[last] + last - 3);
  }
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
      const int j = Row::template improve<4>(best, magnitude[kPositions * row + i], magnitude + kPositions * column,
                                             diagonal[kPositions * row + i], r, diagonal + kPositions * column);
      if (j < 0) continue;
      pulse[kRowPulse[block]] = static_cast<Zpp8u>(kTracks * i + row);
      pulse[1 - kRowPulse[block]] = static_cast<Zpp8u>(kTracks * j + column);
    }
  }
}

}  // namespace zpp
