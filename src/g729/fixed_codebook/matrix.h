// Correlation matrices of the impulse response (ITU-T G.729 clause 3.8.1), written once for all processor levels.
//
// r(p, q), the sum of h[n - p] h[n - q] for n from max(p, q) to 39, grows along a diagonal of the matrix: with g[p] = h[39 -
// p], r(p, q) = r(p + 1, q + 1) + g[p] g[q]. By tracks, eight diagonals grow in step: the row of positions 5 i + a against all
// eight positions of track b follows from that of track a + 1 against track b + 1. From track 0 the way leads back to track 4
// of the position before, for rows (i) as for columns (j).
//
// `Sums` holds the eight sums of a row of 16-bit or single-precision samples: Sums(start), add(x, row): sum j += x * row[j];
// nextColumn(start): sum j = sum j + 1; store(dst), 32-bit sums or their upper 16 bits; transpose(block); and for a lone sum
// accumulate(sum, x), value(sum).
#pragma once

#include <type_traits>
#include <utility>

#include "core/kernels.h"
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

namespace zpp {

// Where the rows of tracks (a, (a + distance) mod 5) go: the start of the block for each a, or nowhere. Blocks whose row track
// is above the column track are those of the matrix transposed.
struct Chain {
  static constexpr int kNowhere = -1;
  int distance;
  int block[kTracks];
};
inline constexpr Chain kNextTrack = {1,
                                     {crossBlock(0, 1), crossBlock(1, 2), crossBlock(2, 3), Chain::kNowhere, crossBlock(0, 4)}};
inline constexpr Chain kTrackAfterNext = {
    2, {crossBlock(0, 2), crossBlock(1, 3), crossBlock(2, 4), crossBlock(0, 3), crossBlock(1, 4)}};
// Annex D: 1-1 in place of 0-2, 3-4 in place of 0-4
inline constexpr Chain kSameTrackAnnexD = {
    0, {Chain::kNowhere, crossBlock(0, 2), Chain::kNowhere, Chain::kNowhere, Chain::kNowhere}};
inline constexpr Chain kNextTrackAnnexD = {
    1, {crossBlock(0, 1), crossBlock(1, 2), crossBlock(2, 3), crossBlock(0, 4), Chain::kNowhere}};
inline constexpr Chain kTrackAfterNextAnnexD = {
    2, {Chain::kNowhere, crossBlock(1, 3), crossBlock(2, 4), crossBlock(0, 3), crossBlock(1, 4)}};

// The impulse response backwards and by track: at[8 t + i] = h[39 - (5 i + t)]
template <class Sample>
struct ReversedTracks {
  alignas(16) Sample at[kSubframe];

  explicit ReversedTracks(const Sample* h) {
    for (int t = 0; t < kTracks; ++t)
      for (int i = 0; i < kPositions; ++i) at[kPositions * t + i] = h[kSubframe - 1 - kTracks * i - t];
  }
};

// put(track a, i, sums) for each row, the track as an integral constant
template <class Sums, int distance, class Sample, class Start, class Put>
inline void correlateTracks(const ReversedTracks<Sample>& g, Start start, Put put) {
  Sums sums(start);
  for (int i = kPositions - 1; i >= 0; --i) {
    const auto extend = [&]<int a>(std::integral_constant<int, a> track) {
      constexpr int b = (a + distance) % kTracks;
      if constexpr (b == kTracks - 1) sums.nextColumn(start);
      sums.add(g.at[kPositions * a + i], &g.at[kPositions * b]);
      put(track, i, sums);
    };
    [&]<int... n>(std::integer_sequence<int, n...>) { (extend(std::integral_constant<int, kTracks - 1 - n>{}), ...); }
    (std::make_integer_sequence<int, kTracks>{});
  }
}

template <class Sums, class Sample, class Start, class Put>
inline void correlateDiagonals(const ReversedTracks<Sample>& g, Start start, Put put) {
  auto sum = Sums::lone(start);
  for (int i = kPositions - 1; i >= 0; --i)
    for (int a = kTracks - 1; a >= 0; --a) {
      sum = Sums::accumulate(sum, g.at[kPositions * a + i]);
      put(kPositions * a + i, Sums::value(sum));
    }
}

constexpr void storeCorrelation(Zpp32s sum, Zpp32s* dst) { *dst = sum; }
constexpr void storeCorrelation(Zpp32f sum, Zpp32f* dst) { *dst = sum; }
constexpr void storeCorrelation(Zpp32s sum, Zpp16s* dst) { *dst = static_cast<Zpp16s>(sum >> 15); }

template <class Sums, Chain chain, class Sample, class T>
inline void correlationBlocks(const ReversedTracks<Sample>& g, T* matrix) {
  correlateTracks<Sums, chain.distance>(g, 0, [matrix]<int a>(std::integral_constant<int, a>, int i, const Sums& row) {
    if constexpr (chain.block[a] != Chain::kNowhere) row.store(matrix + chain.block[a] + kPositions * i);
  });
  for (int a = kTracks - chain.distance; a < kTracks; ++a)
    if (chain.block[a] != Chain::kNowhere) Sums::transpose(matrix + chain.block[a]);
}

template <class Sums, Chain... chains, class Sample, class T>
inline void correlationMatrix(const Sample* scaledImpulse, T* matrix) {
  const ReversedTracks<Sample> g(scaledImpulse);
  correlateDiagonals<Sums>(g, 0, [matrix](int entry, auto sum) { storeCorrelation(sum, matrix + entry); });
  (correlationBlocks<Sums, chains>(g, matrix), ...);
}

template <class T>
inline void transposeBlock(T* block) {
  for (int i = 0; i < kPositions; ++i)
    for (int j = 0; j < i; ++j) std::swap(block[kPositions * i + j], block[kPositions * j + i]);
}

// Annex E: diagonals, rounded twice and halved, then the blocks of each track and the next, rounded.
template <class Sums>
inline void correlationMatrixAnnexE(const Zpp16s* impulse, Zpp16s* matrix) {
  const ReversedTracks<Zpp16s> g(impulse);
  correlateDiagonals<Sums>(g, 32768, [matrix](int entry, Zpp32s sum) { matrix[entry] = static_cast<Zpp16s>(sum >> 16); });
  correlateTracks<Sums, 1>(
      g, 16384, [matrix](int a, int i, const Sums& row) { row.store(matrix + kDiagonals + kBlock * a + kPositions * i); });
}
// No sum of the matrix above saturates.
inline bool plainSumsHoldAnnexE(const Zpp16s* impulse) { return ownDotProd_16s(impulse, impulse, kSubframe) + 32768 < 1 << 30; }

}  // namespace zpp
