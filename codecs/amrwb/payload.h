// One frame of AMR-WB as bits and as octets: the storage format of RFC 4867 (3GPP TS 26.201).
#pragma once

#include "zppsc.h"

namespace codecs::amrwb {

inline constexpr int kModes = 9, kMaxBits = 477, kNoiseBits = 35, kMaxPayload = 61;

// Frame types above the nine modes
enum FrameType { frameNoise = 9, frameLost = 14, frameNoData = 15 };

// Bits of a frame type; 0 for the types without any
constexpr int bitsOf(int frameType) {
  constexpr int bits[kModes + 1] = {132, 177, 253, 285, 317, 365, 397, 461, 477, kNoiseBits};
  return frameType <= frameNoise ? bits[frameType] : 0;
}
// Octets of its payload, with the octet that tells the type. Comfort noise carries five bits more: whether it is an update, and
// the mode.
constexpr int octetsOf(int frameType) {
  const int bits = bitsOf(frameType) + (frameType == frameNoise ? 5 : 0);
  return 1 + (bits + 7) / 8;
}

// The bits of a frame in the codec's order, each 0 or 1
struct FrameBits {
  Zpp8u bit[kMaxBits];
  int count = 0;

  // A field, its most significant bit first
  void put(int value, int width) {
    while (width-- > 0) bit[count++] = static_cast<Zpp8u>(value >> width & 1);
  }
};

class FieldReader {
 public:
  explicit FieldReader(const Zpp8u* bits) : next_(bits) {}
  Zpp16s take(int width) {
    int value = 0;
    while (width-- > 0) value = 2 * value + *next_++;
    return static_cast<Zpp16s>(value);
  }

 private:
  const Zpp8u* next_;
};

// A frame as received
struct Frame {
  int type = frameNoData;
  bool good = true;     // the quality bit
  bool update = false;  // comfort noise: an update, not the first frame after speech
  int mode = 0;         // of a speech frame; of comfort noise the mode that the encoder was asked for
  FrameBits bits;
};

// Writes the payload and returns its octets. bits: bitsOf(type), unused where there are none.
int pack(const Frame& frame, Zpp8u* payload);
// False where the octets are no payload: their number is not the type's.
bool unpack(const Zpp8u* payload, int octets, Frame& frame);

// The standard's receive types
enum ReceiveType { speechGood, speechDegraded, speechLost, speechBad, noiseFirst, noiseUpdate, noiseBad, noData };
ReceiveType receiveTypeOf(const Frame& frame);
// A receive type and the mode of the frame in one number, for files that tell both
constexpr int withMode(ReceiveType type, int mode) { return type + 8 * (mode + 1); }

// Widths of the fields of a speech frame
struct FieldWidths {
  Zpp8u isf[7], isfCount;
  Zpp8u absoluteLag, relativeLag;
  Zpp8u filterSelect;
  Zpp8u code[8], codeCount;
  Zpp8u gains;
  Zpp8u highBand;
};
extern const FieldWidths fieldWidths[kModes];
inline constexpr Zpp8u kNoiseIsfWidths[5] = {6, 6, 6, 5, 5};
inline constexpr int kNoiseLevelWidth = 6;

// Subframes whose lag is coded by itself, not relative to the one before
constexpr bool hasAbsoluteLag(int mode, int subframe) { return subframe == 0 || (subframe == 2 && mode != 0); }

}  // namespace codecs::amrwb
