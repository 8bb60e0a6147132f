// What all variants of the pre-emphasis share.
#pragma once

#include <algorithm>

#include "core/fixed_point.h"

namespace zpp::amrwb {

// x - gamma * prev in Q15: both products are of magnitude 2^30 at the most, and only negative ones reach it together.
constexpr Zpp32s preemphasised(Zpp16s x, Zpp16s prev, Zpp16s gamma) { return x * 32768 - gamma * prev; }

// The bits that the signal may be shifted left by, from the magnitudes of all differences together
constexpr int preemphasisShift(Zpp32s magnitudes) {
  const Zpp16s upper = high16(magnitudes);
  return upper == 0 ? 8 : std::clamp(norm16(upper) - 1, 0, 8);
}

}  // namespace zpp::amrwb
