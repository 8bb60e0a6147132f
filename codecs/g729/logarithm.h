// The base-2 logarithm of ITU-T G.729's fixed-point reference.
#pragma once

#include "zppsc.h"

namespace codecs::g729 {

struct Logarithm {
  Zpp16s integer, fraction;  // Q0 and Q15
};

// Of a positive value; 0 and 0 for others
Logarithm log2Of(Zpp32s value);

// The level of the energy of a windowed frame, energy * 2^exponent: Q11, 10 dB as the unit; 4875 stands for the 240 samples.
Zpp16s logEnergy(Zpp32s energy, int exponent);

}  // namespace codecs::g729
