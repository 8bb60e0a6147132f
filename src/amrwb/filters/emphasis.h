// What all variants of the pre-emphasis share.
#pragma once

#include "zppsc.h"

namespace zpp::amrwb {

// x - gamma * prev in Q15: both products are of magnitude 2^30 at the most, and only negative ones reach it together.
constexpr Zpp32s preemphasised(Zpp16s x, Zpp16s prev, Zpp16s gamma) { return x * 32768 - gamma * prev; }

}  // namespace zpp::amrwb
