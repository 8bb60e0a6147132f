// The bits of a payload (ITU-T G.723.1 clause 4): 24 octets at 6.3 kbit/s, 20 at 5.3 kbit/s, 4 of a silence descriptor, and 1
// that says that nothing else is transmitted.
#pragma once

#include "codecs/g723/frame.h"

namespace codecs::g723 {

// Octets of a kind of frame
inline constexpr int payloadSize(Kind kind) {
  constexpr int kSizes[] = {kMaxPayload, 20, 4, 1};
  return kSizes[static_cast<int>(kind)];
}
inline constexpr Kind kindOf(Zpp8u firstOctet) { return static_cast<Kind>(firstOctet & 3); }

// The payload of speech or a descriptor
void pack(const Frame& frame, Zpp8u* payload);
// Reads a payload of which the size goes with its kind. False where a lag or gain index has a value that no encoder sends.
bool unpack(const Zpp8u* payload, Frame& frame);

}  // namespace codecs::g723
