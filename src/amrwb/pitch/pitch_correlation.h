// What all variants of the closed-loop search share.
#pragma once

#include "amrwb/arithmetic.h"

namespace zpp::amrwb {

// Half the headroom of the target's energy, so that correlations with a quiet target keep their bits
inline int targetScaleOf(Zpp64s energyTarget) { return -((32 - norm32(sat32(1 + 2 * energyTarget))) >> 1); }

// correlation: doubled, saturated; energyFiltered: exact
inline Zpp16s normalisedCorrelation(Zpp32s correlation, Zpp64s energyFiltered, int targetScale) {
  const Floating c = normalised(correlation), root = inverseSqrt(normalised(sat32(1 + 2 * energyFiltered)));
  return roundHigh16(shlSat32(mulDbl(high16(c.mantissa), high16(root.mantissa)), c.exponent + root.exponent + targetScale));
}

}  // namespace zpp::amrwb
