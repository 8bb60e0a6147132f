// How the pulses of a track are numbered in the bit stream (3GPP TS 26.190 clause 5.8.2).
#pragma once

#include "zppsc.h"

namespace zpp::amrwb {

inline constexpr int kTracks = 4, kTrackPositions = 16, kMaxTrackPulses = 6;
inline constexpr Zpp8u kNegative = 16;  // a pulse: its position in the track, plus this when it is negative

// The number of 1 to 6 pulses
Zpp32s numberOfPulses(const Zpp8u* pulses, int count);
// and back; any bits are accepted.
void pulsesOfNumber(Zpp32s number, Zpp8u* pulses, int count);

// Pulses in each track
using PulseCounts = Zpp8u[kTracks];
inline constexpr PulseCounts kTrackPulses[9] = {{1, 1, 0, 0}, {1, 1, 1, 1}, {2, 2, 2, 2}, {3, 3, 2, 2}, {3, 3, 3, 3},
                                                {4, 4, 4, 4}, {5, 5, 4, 4}, {6, 6, 6, 6}, {6, 6, 6, 6}};
// Bits of the number of 0 to 6 pulses in a track of 16 positions, and of its part in the second four of eight index words
inline constexpr Zpp8u kNumberBits[kMaxTrackPulses + 1] = {0, 5, 9, 13, 16, 20, 22};
inline constexpr Zpp8u kLowWordBits[kMaxTrackPulses + 1] = {0, 0, 0, 0, 14, 10, 11};

}  // namespace zpp::amrwb
