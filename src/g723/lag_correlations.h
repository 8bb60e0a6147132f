// Correlations of a stretch of signal with itself at neighbouring lags, which pitch analysis, postfilter and concealment
// compare.
#pragma once

#include "zppsc.h"

namespace g723 {

inline constexpr int kNearLags = 7;  // three on either side of a lag

struct LagCorrelations {
  Zpp32s correlation[kNearLags], energy[kNearLags];
};

// Chains (arithmetic.h) of `count` lags: of src with moved + i, and of moved + i with itself. ownEnergy: that of src.
LagCorrelations correlateLags(const Zpp16s* src, Zpp32s ownEnergy, int len, const Zpp16s* moved, int count);

}  // namespace g723
