// Categorisation of ITU-T G.722.1 (clause 3.5): which quantiser each region gets, from the region powers and the number of bits
// alone, so that encoder and decoder agree without side information but the choice among sixteen categorisations.
#pragma once

#include <algorithm>
#include <array>

#include "codecs/g7221/tables.h"

namespace codecs::g7221 {

inline constexpr int kRegionSize = 20;         // coefficients
inline constexpr int kCategorisations = 16;    // numbered by the 4-bit categorisation control
inline constexpr int kNoiseCategory = 7;       // no codes are sent, all coefficients are noise
inline constexpr int kLowestPowerIndex = -15;  // of what can be sent; a step is a factor sqrt(2) in amplitude
inline constexpr int kHighestPowerIndex = 24;

using Powers = std::array<int, kRegions>;      // power indices
using Categories = std::array<int, kRegions>;  // 0, the finest quantiser, to 7

// One step towards fewer bits, or more; damaged frames may ask for steps beyond the range.
inline void coarsen(int& category) { category = std::min(category + 1, kNoiseCategory); }
inline void refine(int& category) { category = std::max(category - 1, 0); }

struct Categorisation {
  Categories richest;  // the categorisation that needs most bits
  // The regions whose category goes up by one, in this order, in the next, cheaper categorisations
  std::array<int, kCategorisations - 1> cheapened;
};

// bits: how many are left for the regions' codes
Categorisation categorise(const Powers& powers, int bits);

}  // namespace codecs::g7221
