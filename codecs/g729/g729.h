// ITU-T G.729 and G.729A, with the discontinuous transmission of Annex B on request. A payload is 10 octets of speech or 2 of a
// silence descriptor, the first bit in the most significant bit of the first octet (RFC 3551).
//
// To read on: frame (the bits of a frame), encoder with main_body and annex_a, decoder with postfilter; what they share is in
// filters. analysis and taming are parts of the encoder. Annex B is dtx with vad for the encoder, comfort_noise for both sides.
#pragma once

#include "codecs/g729/annex_a.h"
#include "codecs/g729/decoder.h"
#include "codecs/g729/main_body.h"

namespace codecs::g729 {

// Coder: MainBodyEncoder or AnnexAEncoder
template <class Coder>
class Encoder {
 public:
  explicit Encoder(const Options& options) : coder_(options.dtx) {}
  int encode(const Zpp16s* pcm, Zpp8u* payload) {
    return pack(coder_.encode(std::span<const Zpp16s, kFrameSize>(pcm, kFrameSize)), payload);
  }

 private:
  Coder coder_;
};

// Postfilter: MainBodyPostfilter or AnnexAPostfilter
template <class Postfilter>
class Decoder {
 public:
  explicit Decoder(const Options&) {}
  bool isPayloadSize(int octets) const { return octets == kSpeechOctets || octets == kSidOctets; }
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
    decoder_.decode(unpack(payload, octets), std::span<Zpp16s, kFrameSize>(pcm, kFrameSize));
    return true;
  }
  void conceal(Zpp16s* pcm) { decoder_.conceal(std::span<Zpp16s, kFrameSize>(pcm, kFrameSize)); }

 private:
  FrameDecoder<Postfilter> decoder_;
};

}  // namespace codecs::g729
