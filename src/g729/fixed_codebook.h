// What the fixed codebook searches share (ITU-T G.729 clause 3.8): the tracks of pulse positions, the layout of the correlation
// matrix, and the criterion by which candidates are compared.
#pragma once

#include "core/fixed_point.h"

namespace zpp {

inline constexpr int kSubframe = 40, kTracks = 5, kPositions = 8;  // position i of track t is sample 5 i + t

// Matrix of correlations r(p, q): the diagonals of the five tracks, 8 entries each; then blocks of 64, one a pair of tracks
// (a, b): entry 8 i + j is r(5 i + a, 5 j + b).
inline constexpr int kDiagonals = kTracks * kPositions, kBlock = kPositions * kPositions, kBlocks = 9;
inline constexpr int kMatrix = kDiagonals + kBlocks * kBlock;

struct TrackPair {
  Zpp8u row, column;
};
inline constexpr TrackPair kTrackPairs[kBlocks] = {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}};
// Annex D puts pairs of its second pulse's tracks in place of 0-2 and 0-4.
inline constexpr TrackPair kTrackPairsAnnexD[kBlocks] = {{0, 1}, {1, 1}, {0, 3}, {3, 4}, {1, 2},
                                                         {1, 3}, {1, 4}, {2, 3}, {2, 4}};
// Annex E pairs each track with the next.
inline constexpr TrackPair kTrackPairsAnnexE[kTracks] = {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 0}};

// Start of the cross block of tracks row < column in a matrix of the main body
constexpr int crossBlock(int row, int column) {
  int block = 0;
  while (kTrackPairs[block].row != row || kTrackPairs[block].column != column) ++block;
  return kDiagonals + block * kBlock;
}

// The best candidate so far: `square` is the squared correlation, at most 32767, `energy` that of the filtered code vector. A
// candidate replaces it when its quotient square / energy is larger, which is decided by cross products.
struct Best {
  Zpp32s square, energy;

  constexpr bool yieldsTo(Zpp32s candidateSquare, Zpp32s candidateEnergy) const {
    return candidateSquare * energy > square * candidateEnergy;
  }
  constexpr bool improve(Zpp32s candidateSquare, Zpp32s candidateEnergy) {
    if (!yieldsTo(candidateSquare, candidateEnergy)) return false;
    *this = {candidateSquare, candidateEnergy};
    return true;
  }
};
// Any candidate with energy above its square's negative replaces this one.
inline constexpr Best kNoCandidate = {-1, 1};

// Annex E, one track with eight candidate positions: the backward-filtered target with its sign folded in, and the energy that
// a pulse adds beside the pulses fixed so far.
struct TrackTerms {
  const Zpp16s *correlation, *energy;
};
struct PulsePair {
  int outer, inner;  // position indices
  Zpp16s energy;     // of all pulses including this pair
  friend constexpr bool operator==(const PulsePair&, const PulsePair&) = default;
};

// Signs of the backward-filtered target by track, as Q15 factors 32767 and -32768, and its magnitudes
struct SignedTarget {
  alignas(16) Zpp16s magnitude[kSubframe];
  alignas(16) Zpp16s sign[kSubframe];

  explicit SignedTarget(const Zpp16s* target) {
    for (int t = 0; t < kTracks; ++t)
      for (int i = 0; i < kPositions; ++i) {
        const Zpp16s d = target[kTracks * i + t];
        magnitude[kPositions * t + i] = absSat16(d);
        sign[kPositions * t + i] = static_cast<Zpp16s>(d >= 0 ? kMax16 : kMin16);
      }
  }
  bool positive(int track, int position) const { return sign[kPositions * track + position] > 0; }
};

// Amplitude of a pulse, Q13: the Q15 sign factor shifted right by 2
constexpr Zpp16s pulseAmplitude(bool positive) { return positive ? 8191 : -8192; }

}  // namespace zpp
