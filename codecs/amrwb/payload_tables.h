// Bit order of the payloads of AMR-WB.
#pragma once

#include "zppsc.h"

namespace codecs::amrwb {

// For frame types 0..9, the position in the codec's order of the n-th bit of the payload (3GPP TS 26.201 annex B, sort_*)
extern const Zpp16s* const bitOrder[10];

}  // namespace codecs::amrwb
