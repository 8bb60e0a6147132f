#include "codecs/amr/frame.h"

#include <algorithm>
#include <cstdint>
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

// Eight octets as one number, the first the lowest
void storeOctets(Zpp8u* octets, std::uint64_t x) {
#pragma GCC unroll 8
  for (int n = 0; n < 8; ++n) octets[n] = static_cast<Zpp8u>(x >> (8 * n));
}
std::uint64_t loadOctets(const Zpp8u* octets) {
  std::uint64_t x = 0;
#pragma GCC unroll 8
  for (int n = 0; n < 8; ++n) x |= std::uint64_t{octets[n]} << (8 * n);
  return x;
}

// An octet times this has its highest bit at the top of the lowest octet, and so on; eight octets of a bit each, times this,
// have the bits in the highest octet, that of the lowest octet first. No two terms meet in a bit.
constexpr std::uint64_t spreadBits = 0x8040201008040201, lowestBits = 0x0101010101010101;

}  // namespace

void FrameBits::put(const Zpp16s* parameters, const FrameLayout& layout) {
  Zpp8u* bit = at;
  const auto putUpper = [&bit](int octet, int count) {  // what follows is overwritten
    storeOctets(bit, (spreadBits * static_cast<unsigned>(octet & 0xff)) >> 7 & lowestBits);
    bit += count;
  };
  for (int i = 0; i < layout.parameters; ++i) {
    int width = layout.widths[i];
    for (; width > 8; width -= 8) putUpper(parameters[i] >> (width - 8), 8);
    putUpper(parameters[i] << (8 - width), width);
  }
}

void FrameBits::get(Zpp16s* parameters, const FrameLayout& layout) const {
  const Zpp8u* bit = at;
  const auto next = [&bit](int count) {
    const auto octet = static_cast<int>(loadOctets(bit) * spreadBits >> 56);
    bit += count;
    return octet >> (8 - count);
  };
  for (int i = 0; i < layout.parameters; ++i) {
    int width = layout.widths[i], value = 0;
    for (; width > 8; width -= 8) value = value << 8 | next(8);
    parameters[i] = static_cast<Zpp16s>(value << width | next(width));
  }
}

int packSpeech(const FrameBits& bits, int mode, Zpp8u* payload) {
  const FrameLayout& layout = frameLayouts[mode];
  *payload = typeOctet(mode);
  const Zpp8u* order = layout.order;
  int rest = layout.bits;
  for (; rest >= 8; rest -= 8, order += 8) {
    unsigned octet = 0;
#pragma GCC unroll 8
    for (int n = 0; n < 8; ++n) octet = 2 * octet + bits.at[order[n]];
    *++payload = static_cast<Zpp8u>(octet);
  }
  unsigned octet = 0;
  for (int n = 0; n < rest; ++n) octet = 2 * octet + bits.at[order[n]];
  if (rest > 0) *++payload = static_cast<Zpp8u>(octet << (8 - rest));
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
  int rest = layout.bits;
  for (; rest >= 8; rest -= 8, order += 8) {
    const unsigned octet = *++payload;
#pragma GCC unroll 8
    for (int n = 0; n < 8; ++n) bits.at[order[n]] = octet >> (7 - n) & 1;
  }
  for (int n = 0; n < rest; ++n) bits.at[order[n]] = payload[1] >> (7 - n) & 1;
}

SidHead unpackSid(const Zpp8u* payload, FrameBits& bits) {
  for (int i = 0; i < sidLayout.bits; ++i) bits.at[i] = static_cast<Zpp8u>(bitAt(payload + 1, i));
  int mode = 0;
  for (int i = 0; i < 3; ++i) mode |= bitAt(payload + 1, kModeBits + i) << i;
  return {bitAt(payload + 1, kUpdateBit) != 0, mode};
}

}  // namespace codecs::amr
