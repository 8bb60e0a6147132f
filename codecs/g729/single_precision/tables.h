// Tables of ITU-T G.729 Annex C beside those inside the library, in natural units.
#pragma once

#include <array>

#include "codecs/g729/filters.h"

namespace codecs::g729f {

using g729::kOrder;

// Window of the LP analysis: half a Hamming window and a quarter of a cosine (clause 3.2.1)
extern const std::array<Zpp32f, 240> lpWindow;
// Lag window, lags 1..10, white-noise correction included
extern const std::array<Zpp32f, kOrder> lagWindow;
// Interpolation of the normalised correlation in thirds of a sample: one side of the response (clause 3.7)
extern const std::array<Zpp32f, 13> correlationFilter;
// Delays of 1/8 to 7/8 sample in the long-term postfilter: four and sixteen taps (clause 4.2.1)
extern const std::array<std::array<Zpp32f, 4>, 7> shortDelayFilters;
extern const std::array<std::array<Zpp32f, 16>, 7> longDelayFilters;
// Gain codebooks in the order of the transmitted indices (clause 3.9.2)
struct GainPair {
  Zpp32f pitch, correction;
};
extern const std::array<GainPair, 8> firstGains;
extern const std::array<GainPair, 16> secondGains;

}  // namespace codecs::g729f
