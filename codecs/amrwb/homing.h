// The frames that send a decoder home, to its initial state (3GPP TS 26.173).
#pragma once

#include "codecs/amrwb/common.h"
#include "codecs/amrwb/payload.h"

namespace codecs::amrwb {

// Whether these bits are the mode's homing frame, or begin like it
bool isHomingFrame(const Zpp8u* bits, int mode, bool wholly);

}  // namespace codecs::amrwb
