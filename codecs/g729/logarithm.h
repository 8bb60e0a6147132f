// The base-2 logarithm of ITU-T G.729's fixed-point reference.
#pragma once

#include "zppsc.h"

namespace codecs::g729 {

struct Logarithm {
  Zpp16s integer, fraction;  // Q0 and Q15
};

// Of a positive value; 0 and 0 for others
Logarithm log2Of(Zpp32s value);

}  // namespace codecs::g729
