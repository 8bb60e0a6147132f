// The delays of a frame's subframes as they are sent (ITU-T G.729 clauses 3.7.2, 4.1.3 and D.4): the second one beside the
// first.
#pragma once

#include "codecs/g729/filters.h"
#include "codecs/g729/frame.h"

namespace codecs::g729 {

// firstDelay: the integer delay of the first subframe
Zpp16s delayCode(Rate rate, int subframe, const PitchDelay& delay, int firstDelay);
// Of the first subframe, and of the second
PitchDelay decodeDelay(Zpp16s code);
PitchDelay decodeDelay(Zpp16s code, Rate rate, int firstDelay);

}  // namespace codecs::g729
