// Geometry of the algebraic codebooks (3GPP TS 26.090 clause 5.7): the 40 positions of a subframe on interleaved tracks.
#pragma once

#include "amr/frame.h"
#include "zppsc.h"

// Position n lies on track n % tracks. The search keeps its vectors and the correlation matrix in track order, where the
// positions of one track are neighbours: slot = track * perTrack + number of the position on its track.
struct Grid {
  constexpr explicit Grid(int trackCount) : tracks(trackCount), perTrack(kSubframe / trackCount) {
    for (int n = 0; n < kSubframe; ++n) {
      const int slot = n % tracks * perTrack + n / tracks;
      slotOf[n] = static_cast<Zpp8u>(slot);
      positionOf[slot] = static_cast<Zpp8u>(n);
    }
  }
  constexpr int trackOf(int slot) const { return slot / perTrack; }
  constexpr int numberOf(int slot) const { return slot % perTrack; }

  int tracks, perTrack;
  Zpp8u slotOf[kSubframe] = {}, positionOf[kSubframe] = {};
};

inline constexpr Grid kFiveTracks(5), kFourTracks(4);
constexpr const Grid& gridOf(int tracks) { return tracks == 5 ? kFiveTracks : kFourTracks; }

// A set of pairs of tracks, one bit a pair and order: the blocks of the correlation matrix that a search reads
using TrackPairs = Zpp32u;
constexpr TrackPairs pairOf(int track1, int track2) {
  return TrackPairs{1} << (track1 * 5 + track2) | TrackPairs{1} << (track2 * 5 + track1);
}
inline constexpr TrackPairs kAllPairs = (TrackPairs{1} << 25) - 1;
