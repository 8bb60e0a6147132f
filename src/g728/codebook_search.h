// Gain and sign of a shape vector in the codebook search (ITU-T G.728 clause 3.9, block 17).
#pragma once

#include "g728/arithmetic.h"

namespace zpp::g728 {

struct ShapeGain {
  bool negative;
  int gain;
  Zpp32s magnitude;  // of the correlation
};

// The magnitudes of a shape vector add up to 47018 at most: correlations fit 32 bits.
inline ShapeGain gainOfShape(int shape, const Zpp16s* target, const Zpp16s* energy) {
  Zpp32s correlation = 0;
  for (int n = 0; n < kVector; ++n) correlation += shapeCodebook[shape][n] * target[n];
  ShapeGain g{correlation <= 0, 0, correlation <= 0 ? -correlation : correlation};
  while (g.gain < 3 && g.magnitude > gainBoundary[g.gain] * energy[shape]) ++g.gain;
  return g;
}

inline int codeOfShape(int shape, const Zpp16s* target, const Zpp16s* energy) {
  const ShapeGain g = gainOfShape(shape, target, energy);
  return 8 * shape + g.gain + (g.negative ? 4 : 0);
}

}  // namespace zpp::g728
