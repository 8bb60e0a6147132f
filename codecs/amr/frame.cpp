#include "codecs/amr/frame.h"

#include <algorithm>
#include <cstring>

namespace codecs::amr {
namespace {

constexpr Zpp8u kGood = 4;
constexpr int kUpdateBit = 35, kModeBits = 36;  // behind the bits of a descriptor

Zpp8u typeOctet(int type) { return static_cast<Zpp8u>(8 * type + kGood); }

void setBit(Zpp8u* octets, int bit, int value) {
  octets[bit / 8] = static_cast<Zpp8u>(octets[bit / 8] | (value & 1) << (7 - bit % 8));
}
int bitAt(const Zpp8u* octets, int bit) { return octets[bit / 8] >> (7 - bit % 8) & 1; }

}  // namespace

void FrameBits::put(const Zpp16s* parameters, const FrameLayout& layout) {
  Zpp8u* bit = at;
  for (int i = 0; i < layout.parameters; ++i)
    for (int shift = layout.widths[i] - 1; shift >= 0; --shift) *bit++ = parameters[i] >> shift & 1;
}

void FrameBits::get(Zpp16s* parameters, const FrameLayout& layout) const {
  const Zpp8u* bit = at;
  for (int i = 0; i < layout.parameters; ++i) {
    int value = 0;
    for (int n = 0; n < layout.widths[i]; ++n) value = 2 * value + *bit++;
    parameters[i] = static_cast<Zpp16s>(value);
  }
}

int packSpeech(const FrameBits& bits, int mode, Zpp8u* payload) {
  const FrameLayout& layout = frameLayouts[mode];
  *payload = typeOctet(mode);
  const Zpp8u* order = layout.order;
  for (int rest = layout.bits; rest > 0; rest -= 8) {
    unsigned octet = 0;
    const int count = std::min(rest, 8);
    for (int n = 0; n < count; ++n) octet = 2 * octet + bits.at[*order++];
    *++payload = static_cast<Zpp8u>(octet << (8 - count));
  }
  return 1 + layout.octets;
}

int packSid(const Zpp16s* sid, bool update, int mode, Zpp8u* payload) {
  FrameBits bits;
  bits.put(sid, sidLayout);
  payload[0] = typeOctet(kSidType);
  std::memset(payload + 1, 0, static_cast<std::size_t>(sidLayout.octets));
  for (int i = 0; i < sidLayout.bits; ++i) setBit(payload + 1, i, bits.at[i]);
  setBit(payload + 1, kUpdateBit, update ? 1 : 0);
  for (int i = 0; i < 3; ++i) setBit(payload + 1, kModeBits + i, mode >> i);
  return 1 + sidLayout.octets;
}

int PayloadHead::octets() const {
  if (type < kModes) return 1 + frameLayouts[type].octets;
  return type == kSidType ? 1 + sidLayout.octets : type == kNoDataType ? 1 : 0;
}

bool isPayloadSize(int octets) {
  for (const FrameLayout& layout : frameLayouts)
    if (octets == 1 + layout.octets) return true;
  return octets == 1 + sidLayout.octets || octets == 1;
}

void unpackSpeech(const Zpp8u* payload, int mode, FrameBits& bits) {
  const FrameLayout& layout = frameLayouts[mode];
  const Zpp8u* order = layout.order;
  for (int rest = layout.bits; rest > 0; rest -= 8) {
    unsigned octet = *++payload;
    for (int n = std::min(rest, 8); n > 0; --n, octet <<= 1) bits.at[*order++] = octet >> 7 & 1;
  }
}

SidHead unpackSid(const Zpp8u* payload, FrameBits& bits) {
  for (int i = 0; i < sidLayout.bits; ++i) bits.at[i] = static_cast<Zpp8u>(bitAt(payload + 1, i));
  int mode = 0;
  for (int i = 0; i < 3; ++i) mode |= bitAt(payload + 1, kModeBits + i) << i;
  return {bitAt(payload + 1, kUpdateBit) != 0, mode};
}

}  // namespace codecs::amr
