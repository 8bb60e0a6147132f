// What the portable and the vector kernels of the pulse searches share (3GPP TS 26.090 clause 5.7).
#pragma once

#include "amr/grid.h"
#include "core/fixed_point.h"

// The criterion correlation^2 / energy of a set of pulses, kept as a fraction
struct Criterion {
  Zpp16s square = -1, energy = 1;

  // The difference of two products of 16 bits, of which `square` is never -32768, fits 32 bits.
  constexpr bool beats(const Criterion& best) const { return Zpp32s{best.energy} * square - Zpp32s{best.square} * energy > 0; }
};

// Step k - 1 adds pulse k to the earlier ones. The energy is a weighted mean of earlier energy and matrix entries, weights Q15:
// no sum of a step can leave 31 bits, and none but the last exceeds full scale. Energies keep the scale 1/4 for two pulses and
// 1/16 for three and four.
struct PulseStep {
  Zpp32s before;  // the energy so far; at first the outer pulse's diagonal entry
  Zpp32s own;     // the new pulse's diagonal entry
  Zpp32s cross;   // its entry with each earlier pulse
};
inline constexpr PulseStep kPulseSteps[3] = {{8192, 8192, 16384}, {8192, 2048, 4096}, {32768, 2048, 4096}};

// The search of 8 and 10 pulses adds pairs: weights Q15 of the steps from pulses 2, 3 to pulses 8, 9. The inner pulse's terms
// are summed and rounded before the loops.
struct PairStep {
  struct Weights {
    Zpp16s own, each;  // the diagonal entry, the entry with each pulse placed before
  };
  Weights inner, outer;
  Zpp16s ofInner;  // the inner pulse's sum
  Zpp16s cross;    // the entry of the two
};
inline constexpr PairStep kPairSteps[4] = {{{4096, 8192}, {2048, 4096}, 16384, 4096},
                                           {{4096, 8192}, {1024, 2048}, 8192, 2048},
                                           {{2048, 4096}, {512, 1024}, 8192, 1024},
                                           {{2048, 4096}, {256, 512}, 4096, 512}};
