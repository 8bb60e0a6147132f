#include "codecs/amrwb/payload.h"

#include <algorithm>

#include "codecs/amrwb/payload_tables.h"

namespace codecs::amrwb {

const FieldWidths fieldWidths[kModes] = {
    {{8, 8, 7, 7, 6}, 5, 8, 5, 0, {12}, 1, 6, 0},
    {{8, 8, 6, 7, 7, 5, 5}, 7, 8, 5, 0, {5, 5, 5, 5}, 4, 6, 0},
    {{8, 8, 6, 7, 7, 5, 5}, 7, 9, 6, 1, {9, 9, 9, 9}, 4, 7, 0},
    {{8, 8, 6, 7, 7, 5, 5}, 7, 9, 6, 1, {13, 13, 9, 9}, 4, 7, 0},
    {{8, 8, 6, 7, 7, 5, 5}, 7, 9, 6, 1, {13, 13, 13, 13}, 4, 7, 0},
    {{8, 8, 6, 7, 7, 5, 5}, 7, 9, 6, 1, {2, 2, 2, 2, 14, 14, 14, 14}, 8, 7, 0},
    {{8, 8, 6, 7, 7, 5, 5}, 7, 9, 6, 1, {10, 10, 2, 2, 10, 10, 14, 14}, 8, 7, 0},
    {{8, 8, 6, 7, 7, 5, 5}, 7, 9, 6, 1, {11, 11, 11, 11, 11, 11, 11, 11}, 8, 7, 0},
    {{8, 8, 6, 7, 7, 5, 5}, 7, 9, 6, 1, {11, 11, 11, 11, 11, 11, 11, 11}, 8, 7, 4},
};

int pack(const Frame& frame, Zpp8u* payload) {
  const int octets = octetsOf(frame.type);
  std::fill_n(payload, octets, Zpp8u{0});
  payload[0] = static_cast<Zpp8u>(8 * frame.type + (frame.good ? 4 : 0));
  Zpp8u* bits = payload + 1;
  const auto set = [bits](int n, int value) { bits[n / 8] = static_cast<Zpp8u>(bits[n / 8] | value << (7 - n % 8)); };
  for (int n = 0; n < bitsOf(frame.type); ++n) set(n, frame.bits.bit[bitOrder[frame.type][n]]);
  if (frame.type == frameNoise) {
    set(kNoiseBits, frame.update ? 1 : 0);
    for (int n = 0; n < 4; ++n) set(kNoiseBits + 1 + n, frame.mode >> (3 - n) & 1);
  }
  return octets;
}

bool unpack(const Zpp8u* payload, int octets, Frame& frame) {
  if (octets < 1) return false;
  const int type = payload[0] >> 3 & 15;
  if (octets != octetsOf(type)) return false;
  const Zpp8u* bits = payload + 1;
  const auto get = [bits](int n) { return bits[n / 8] >> (7 - n % 8) & 1; };
  frame.type = type;
  frame.good = (payload[0] & 4) != 0;
  frame.bits.count = bitsOf(type);
  for (int n = 0; n < frame.bits.count; ++n) frame.bits.bit[bitOrder[type][n]] = static_cast<Zpp8u>(get(n));
  frame.update = type == frameNoise && get(kNoiseBits) != 0;
  if (type < kModes) frame.mode = type;
  if (type == frameNoise) {
    frame.mode = 0;
    for (int n = 0; n < 4; ++n) frame.mode = 2 * frame.mode + get(kNoiseBits + 1 + n);
  }
  return true;
}

ReceiveType receiveTypeOf(const Frame& frame) {
  if (frame.type < kModes) return frame.good ? speechGood : speechBad;
  if (frame.type == frameNoise) return !frame.good ? noiseBad : frame.update ? noiseUpdate : noiseFirst;
  return frame.type == frameLost ? speechLost : noData;
}

}  // namespace codecs::amrwb
