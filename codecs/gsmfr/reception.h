// What a decoder decodes: the received frame, or comfort noise or a substitute in its place (3GPP TS 46.011, 46.012, 46.031).
//
// The standards leave the random numbers of comfort noise and the substitution of lost frames open; they give examples, which
// are followed here.
#pragma once

#include "codecs/gsmfr/frame.h"

namespace codecs::gsmfr {

class Reception {
 public:
  // Without discontinuous transmission no frame counts as a silence descriptor.
  explicit Reception(bool dtx) : dtx_(dtx) {}

  Frame received(const Frame& frame);
  // Nothing was sent, or it was lost.
  Frame missing();

 private:
  enum class Mode : Zpp8u { none, speech, muting, noise, noiseMuting };
  enum class Descriptor { no, damaged, valid };

  static Descriptor descriptorIn(const Frame& frame);
  Frame beginNoise();
  Frame muted();
  Frame mutedNoise();
  Frame comfortNoise();
  Zpp16s draw(int bits);

  bool dtx_;
  Mode mode_ = Mode::none;
  bool descriptorLost_ = false;
  int sinceDescriptor_ = 0;  // frames since the last accepted descriptor
  Frame last_ = {};          // speech
  Frame descriptor_ = {};
  Zpp32u generator_ = 0x70816958;  // 31 bits
};

}  // namespace codecs::gsmfr
