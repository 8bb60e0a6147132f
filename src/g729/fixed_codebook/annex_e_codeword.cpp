// Codewords of the 35-bit and the 44-bit codebook (ITU-T G.729 Annex E, clause E.3.8)
#include <utility>

#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

using namespace zpp;

namespace {

constexpr int kPositionBits = 7;

// Two pulses of a track, the one found first in front: the order of the two tells the sign of the other.
struct TwoPulses {
  int high, low;
  constexpr Zpp16s codeword() const { return static_cast<Zpp16s>((high * 16 + low) & 127); }
};
constexpr TwoPulses orderTwo(int first, int second) {
  const bool sameSign = ((first ^ second) & kNegativePulse) == 0;
  const bool firstHigh = sameSign ? first <= second : (first & kPositionBits) > (second & kPositionBits);
  return firstHigh ? TwoPulses{first, second} : TwoPulses{second, first};
}

// Three pulses of a track in 10 bits: the positions of two of them and the whole word of the third, which one by the signs
Zpp16s threePulses(TwoPulses two, int third) {
  int word[3] = {two.high, two.low, third};
  const auto exchange = [&word](int a, int b) {
    if ((word[a] & kPositionBits) > (word[b] & kPositionBits)) std::swap(word[a], word[b]);
  };
  exchange(0, 1);
  exchange(0, 2);
  exchange(1, 2);
  // By the signs of the three, 1 for negative, and up to a change of all: + + +, + + -, + - +, + - -
  static constexpr Zpp8u kOrder[4][3] = {{0, 1, 2}, {2, 0, 1}, {1, 0, 2}, {1, 2, 0}};
  const int signs = (word[0] & kNegativePulse) / 2 + (word[1] & kNegativePulse) / 4 + (word[2] & kNegativePulse) / 8;
  const Zpp8u* order = kOrder[signs < 4 ? signs : 7 - signs];
  return static_cast<Zpp16s>((word[order[0]] & kPositionBits) * 128 + (word[order[1]] & kPositionBits) * 16 + word[order[2]]);
}

// Two pulses a track, of which the search finds all first ones before the second ones
struct PairsByTrack {
  TwoPulses of[kTracks];

  explicit PairsByTrack(const CodedPulse* pulse) {
    int first[kTracks];
    for (int n = 0; n < kTracks; ++n) first[pulse[n].track] = pulse[n].word;
    for (int n = kTracks; n < 2 * kTracks; ++n) of[pulse[n].track] = orderTwo(first[pulse[n].track], pulse[n].word);
  }
};

}  // namespace

void ownCodeword35_G729E(const CodedPulse* pulse, Zpp16s* index) {
  const PairsByTrack pairs(pulse);
  for (int t = 0; t < kTracks; ++t) index[t] = pairs.of[t].codeword();
}

void ownCodeword44_G729E(const CodedPulse* pulse, Zpp16s* index) {
  const PairsByTrack pairs(pulse + 2);
  const int start = pulse[0].track;
  for (int n = 0; n < kTracks; ++n) {
    const TwoPulses& pair = pairs.of[(start + n) % kTracks];
    index[n] = n < 2 ? threePulses(pair, pulse[n].word) : pair.codeword();
  }
  index[0] = static_cast<Zpp16s>(index[0] + 1024 * start);
}
