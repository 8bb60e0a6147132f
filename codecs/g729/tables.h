// Tables of ITU-T G.729 beside those inside the library.
#pragma once

#include <array>
#include <cstdint>

#include "zppsc.h"

namespace codecs::g729 {

// Window of the LP analysis, Q15: half a Hamming window and a quarter of a cosine (clause 3.2.1)
extern const std::array<Zpp16s, 240> lpWindow;

// Annex B, voice activity detection: autocorrelation of the low-pass filter, Q15 and lags 0..12, and the factor that makes a
// mean of a sum of 32 - n terms, value * 2^shift in Q15 by n
extern const std::array<Zpp16s, 13> lowBandCorrelation;
extern const std::array<Zpp16s, 33> vadMeanFactors;
extern const std::array<std::uint8_t, 33> vadMeanShifts;

// Annex B, gains of silence descriptors by index
extern const std::array<Zpp16s, 32> sidGains;

}  // namespace codecs::g729
