// What the fixed codebook searches share (ITU-T G.729 clause 3.8): the tracks of pulse positions, the layout of the correlation
// matrix, and the criterion by which candidates are compared.
#pragma once

#include <algorithm>

#include "core/fixed_point.h"
#include "core/kernels.h"

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

// The best candidate so far: `square` is the squared correlation, at most 32767 in fixed point, `energy` that of the filtered
// code vector. A candidate replaces it when its quotient square / energy is larger, which is decided by cross products.
template <class Number>
struct BestCandidate {
  Number square, energy;

  constexpr bool yieldsTo(Number candidateSquare, Number candidateEnergy) const {
    return candidateSquare * energy > square * candidateEnergy;
  }
  constexpr bool improve(Number candidateSquare, Number candidateEnergy) {
    if (!yieldsTo(candidateSquare, candidateEnergy)) return false;
    *this = {candidateSquare, candidateEnergy};
    return true;
  }
};
using Best = BestCandidate<Zpp32s>;
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
    // The values first, by track: signs and magnitudes then come eight at a time.
    for (int t = 0; t < kTracks; ++t)
      for (int i = 0; i < kPositions; ++i) magnitude[kPositions * t + i] = target[kTracks * i + t];
    for (int n = 0; n < kSubframe; ++n) sign[n] = static_cast<Zpp16s>(magnitude[n] >= 0 ? kMax16 : kMin16);
    ownAbs_16s(magnitude, magnitude, kSubframe);
  }
  bool positive(int track, int position) const { return sign[kPositions * track + position] > 0; }
  // Of a pulse, Q13: the Q15 sign factor shifted right by 2
  static constexpr Zpp16s amplitude(bool positive) { return positive ? 8191 : -8192; }
};

// Main body: how many triples of pulses 0 to 2 there may be beside which pulse 3 is searched: a subframe's share, and an extra
// in subframe 0 or what the subframe before has left
constexpr Zpp16s searchBudget(Zpp16s subframe, Zpp16s left) { return addSat16(subframe == 0 ? Zpp16s{30} : left, 75); }

// The two positions of largest magnitude in a track, the lower one on ties
template <class Sample>
inline void twoLargest(const Sample* d, int (&position)[2]) {
  position[0] = 0;
  for (int i = 1; i < kPositions; ++i)
    if (d[i] > d[position[0]]) position[0] = i;
  position[1] = position[0] == 0 ? 1 : 0;
  for (int i = 0; i < kPositions; ++i)
    if (i != position[0] && d[i] > d[position[1]]) position[1] = i;
}

// Annex A, a depth-first tree in four passes: the first pair from two positions of track A and all of track B, beside it the
// best pair of tracks C and D
struct TreePass {
  Zpp8u a, b, c, d;
};
inline constexpr TreePass kTreePasses[] = {{2, 3, 0, 1}, {3, 0, 1, 2}, {2, 4, 0, 1}, {4, 0, 1, 2}};

// The position index chosen in each track of a pass, as pulses of the codeword
inline void setPulses(TreePass tracks, int a, int b, int c, int d, Zpp8u* pulse) {
  const auto set = [pulse](int track, int position) {
    pulse[track < 3 ? track : 3] = static_cast<Zpp8u>(track < 3 ? position : 2 * position + track - 3);
  };
  set(tracks.a, a), set(tracks.b, b), set(tracks.c, c), set(tracks.d, d);
}

// --- Code vectors and codewords, the same in fixed point and in single precision ---------------------------------------------

// Code vector and codeword of four pulses; pulse[3] counts 16 positions.
template <class Target, class Sample>
inline void writeFourPulses(const Target& target, const Zpp8u* pulse, Sample* code, Zpp16s* codeword) {
  std::fill_n(code, kSubframe, Sample{0});
  Zpp32s signs = 0;
  for (int n = 0; n < 4; ++n) {
    const int position = n < 3 ? pulse[n] : pulse[3] / 2, track = n < 3 ? n : 3 + pulse[3] % 2;
    const bool positive = target.positive(track, position);
    code[kTracks * position + track] = Target::amplitude(positive);
    signs |= positive ? 1 << n : 0;
  }
  codeword[0] = static_cast<Zpp16s>(signs);
  codeword[1] = static_cast<Zpp16s>(pulse[0] + 8 * pulse[1] + 64 * pulse[2] + 512 * pulse[3]);
}

// Annex D: the position word of two pulses at the given samples, Gray codes of their entries in the tables of the first pulse
// (samples of tracks 1 and 3 in ascending order) and of the second (tracks 0, 2 and 4 in ascending order, then track 1).
constexpr Zpp16s positionWordAnnexD(int first, int second) {
  const auto grayCode = [](int n) { return n ^ (n >> 1); };
  const int firstEntry = 2 * (first / kTracks) + first % kTracks / 2;
  const int secondEntry = second % kTracks == 1 ? 24 + second / kTracks : 3 * (second / kTracks) + second % kTracks / 2;
  return static_cast<Zpp16s>(grayCode(firstEntry) + 16 * grayCode(secondEntry));
}

// Annex E: a pulse's track and the 4-bit word that codes it, the position index and 8 for a negative sign
struct CodedPulse {
  int track, word;
};
inline constexpr int kMostPulsesAnnexE = 12, kNegativePulse = 8;
constexpr CodedPulse codedPulse(int sample, bool positive) {
  return {sample % kTracks, sample / kTracks + (positive ? 0 : kNegativePulse)};
}

}  // namespace zpp
