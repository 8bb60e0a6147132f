#include "codecs/gsmfr/frame.h"

#include <bit>
#include <cstring>

namespace codecs::gsmfr {

namespace {

constexpr const int* kLarBits = kParameterBits;
constexpr int kLagBits = kParameterBits[kOrder], kGainBits = kParameterBits[kOrder + 1], kGridBits = kParameterBits[kOrder + 2],
              kAmplitudeBits = kParameterBits[kOrder + 3], kPulseBits = kParameterBits[kOrder + 4];

// Signature and LAR codes fill five octets, every subframe seven.
constexpr int kHeadOctets = 5, kSubframeOctets = 7;

using Bits = unsigned long long;

class Writer {
 public:
  void put(int value, int width) { bits_ = bits_ << width | static_cast<unsigned>(value); }
  void store(Zpp8u* octets, int count) const {
    for (int n = 0; n < count; ++n) octets[n] = static_cast<Zpp8u>(bits_ >> (8 * (count - 1 - n)));
  }

 private:
  Bits bits_ = 0;
};

// The bits of eight octets, without the first ones
class Reader {
 public:
  Reader(const Zpp8u* octets, int skipped) {
    std::memcpy(&bits_, octets, sizeof bits_);
    if constexpr (std::endian::native == std::endian::little) bits_ = __builtin_bswap64(bits_);
    bits_ <<= skipped;
  }
  Zpp16s take(int width) {
    const auto field = static_cast<Zpp16s>(bits_ >> (64 - width));
    bits_ <<= width;
    return field;
  }

 private:
  Bits bits_ = 0;
};

}  // namespace

void pack(const Frame& frame, Zpp8u* payload) {
  Writer head;
  head.put(kSignature, kSignatureBits);
#pragma GCC unroll 8
  for (int i = 0; i < kOrder; ++i) head.put(frame.larCode[i], kLarBits[i]);
  head.store(payload, kHeadOctets);
  payload += kHeadOctets;
  for (const Subframe& s : frame.subframe) {
    Writer writer;
    writer.put(s.lag, kLagBits);
    writer.put(s.gain, kGainBits);
    writer.put(s.grid, kGridBits);
    writer.put(s.amplitude, kAmplitudeBits);
#pragma GCC unroll 13
    for (const Zpp16s pulse : s.pulses) writer.put(pulse, kPulseBits);
    writer.store(payload, kSubframeOctets);
    payload += kSubframeOctets;
  }
}

bool unpack(const Zpp8u* payload, Frame& frame) {
  Reader head(payload, 0);
  if (head.take(kSignatureBits) != kSignature) return false;
#pragma GCC unroll 8
  for (int i = 0; i < kOrder; ++i) frame.larCode[i] = head.take(kLarBits[i]);
  payload += kHeadOctets;
  for (Subframe& s : frame.subframe) {
    Reader reader(payload + kSubframeOctets - 8, 8);
    s.lag = reader.take(kLagBits);
    s.gain = reader.take(kGainBits);
    s.grid = reader.take(kGridBits);
    s.amplitude = reader.take(kAmplitudeBits);
#pragma GCC unroll 13
    for (Zpp16s& pulse : s.pulses) pulse = reader.take(kPulseBits);
    payload += kSubframeOctets;
  }
  return true;
}

constexpr Frame kHomingFrame = {{9, 23, 15, 8, 7, 3, 3, 2},
                                {{40, 0, 0, 0, {4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4}},
                                 {40, 0, 0, 0, {4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4}},
                                 {40, 0, 0, 0, {4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4}},
                                 {40, 0, 0, 0, {4, 4, 4, 4, 3, 4, 4, 4, 4, 4, 4, 4, 4}}}};

constexpr Frame kSilenceFrame = {{42, 39, 21, 10, 9, 4, 3, 2},
                                 {{40, 0, 1, 0, {3, 4, 3, 4, 4, 3, 3, 3, 3, 4, 4, 3, 3}},
                                  {40, 0, 1, 0, {3, 4, 3, 4, 4, 3, 3, 3, 3, 4, 4, 3, 3}},
                                  {40, 0, 1, 0, {3, 4, 3, 4, 4, 3, 3, 3, 3, 4, 4, 3, 3}},
                                  {40, 0, 1, 0, {3, 4, 3, 4, 4, 3, 3, 3, 3, 4, 4, 3, 3}}}};

}  // namespace codecs::gsmfr
