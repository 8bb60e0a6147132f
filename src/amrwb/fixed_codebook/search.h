// What the kernels of the codebook search share.
#pragma once

#include "core/fixed_point.h"

namespace zpp::amrwb {

inline constexpr Zpp16s kPositive = 32767, kNegativeSign = -32768;  // signs as factors in Q15

// Element of PulseTarget's arrays for a position 0..63
constexpr int placeOf(int position) { return 16 * (position % 4) + position / 4; }

// square / energy > bestSquare / bestEnergy
constexpr bool isBetter(Zpp16s square, Zpp16s energy, Zpp16s bestSquare, Zpp16s bestEnergy) {
  return msuDbl(mulDbl(bestEnergy, square), bestSquare, energy) > 0;
}

}  // namespace zpp::amrwb
