// Frames as parameters, as bits in the codec's order, and as payloads: a frame of the storage format of RFC 4867, a type octet
// and the octet-aligned bits.
#pragma once

#include "codecs/amr/tables.h"

namespace codecs::amr {

inline constexpr int kMaxPayload = 32;
inline constexpr int kSidType = 8, kNoDataType = 15;  // frame types of a payload; below: the modes

// A frame's parameters one after the other, the most significant bit of each first, an octet a bit
struct FrameBits {
  Zpp8u at[kMaxBits + 8] = {};  // those behind the bits of a frame are anything

  void put(const Zpp16s* parameters, const FrameLayout& layout);
  void get(Zpp16s* parameters, const FrameLayout& layout) const;
};

// Write a payload and return its octets.
int packSpeech(const FrameBits& bits, int mode, Zpp8u* payload);
// update: whether the descriptor is to be used, or only announces silence
int packSid(const Zpp16s* sid, bool update, int mode, Zpp8u* payload);

// What the type octet says
struct PayloadHead {
  int type;
  bool good;  // the quality bit

  explicit PayloadHead(Zpp8u octet) : type(octet >> 3 & 15), good((octet >> 2 & 1) != 0) {}
  int octets() const;  // of the whole payload; 0: no frame has this type
};
// Whether any type has payloads of so many octets
bool isPayloadSize(int octets);

// Puts the bits of a payload, which is one of PayloadHead::octets octets, at the front of `bits`; the others stay.
void unpackSpeech(const Zpp8u* payload, int mode, FrameBits& bits);
struct SidHead {
  bool update;
  int mode;
};
SidHead unpackSid(const Zpp8u* payload, FrameBits& bits);

}  // namespace codecs::amr
