// ITU-T G.722.1 at 24 and 32 kbit/s (7 kHz at 16 kHz sampling, frames of 20 ms). A payload is a frame of 60 or 80 octets, the
// first bit in the most significant bit of the first octet (RFC 5577).
#pragma once

#include "codecs/codec.h"
#include "codecs/g7221/decoder.h"
#include "codecs/g7221/encoder.h"

namespace codecs::g7221 {

constexpr int octetsAt(int bitRate) { return bitRate / 50 / 8; }

class Encoder {
 public:
  explicit Encoder(const Options& options) : octets_(octetsAt(options.bitRate)) {}
  int encode(const Zpp16s* pcm, Zpp8u* payload) {
    encoder_.encode(std::span<const Zpp16s, kFrameSize>(pcm, kFrameSize), {payload, static_cast<std::size_t>(octets_)});
    return octets_;
  }

 private:
  int octets_;
  FrameEncoder encoder_;
};

class Decoder {
 public:
  explicit Decoder(const Options& options) : octets_(octetsAt(options.bitRate)) {}
  bool isPayloadSize(int octets) const { return octets == octets_; }
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
    if (octets == 0) {
      conceal(pcm);
    } else {
      decoder_.decode({payload, static_cast<std::size_t>(octets)}, std::span<Zpp16s, kFrameSize>(pcm, kFrameSize));
    }
    return true;
  }
  void conceal(Zpp16s* pcm) { decoder_.conceal(std::span<Zpp16s, kFrameSize>(pcm, kFrameSize)); }

 private:
  int octets_;
  FrameDecoder decoder_;
};

}  // namespace codecs::g7221
