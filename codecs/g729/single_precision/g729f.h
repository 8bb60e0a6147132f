// ITU-T G.729 Annex C: the main body and Annex A in single precision. Payloads are those of g729: each understands the other,
// but they do not choose the same bits.
#pragma once

#include "codecs/g729/single_precision/decoder.h"
#include "codecs/g729/single_precision/encoder.h"

namespace codecs::g729f {

// Coder: MainBodyEncoder or AnnexAEncoder
template <class Coder>
class Encoder {
 public:
  explicit Encoder(const Options&) {}
  int encode(const Zpp16s* pcm, Zpp8u* payload) {
    return g729::pack({.type = g729::FrameType::speech, .speech = coder_.encode(pcm), .sid = {}}, payload);
  }

 private:
  Coder coder_;
};

// Postfilter: MainBodyPostfilter or AnnexAPostfilter
template <class Postfilter>
class Decoder {
 public:
  explicit Decoder(const Options&) {}
  bool isPayloadSize(int octets) const { return octets == g729::octetsOf(g729::Rate::kbit8); }
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
    if (octets == 0)
      decoder_.conceal(pcm);
    else
      decoder_.decode(g729::unpack(payload, octets)->speech, pcm);
    return true;
  }
  void conceal(Zpp16s* pcm) { decoder_.conceal(pcm); }

 private:
  FrameDecoder<Postfilter> decoder_;
};

}  // namespace codecs::g729f
