// ITU-T G.711 companding: one octet a sample, as RTP payload types 0 and 8 carry it.
#pragma once

#include "codecs/codec.h"

namespace codecs::g711 {

enum class Law { mu, a };

template <Law law>
class Encoder {
 public:
  explicit Encoder(const Options&) {}
  int octetsOf(int samples) const { return samples; }
  void encode(const Zpp16s* pcm, int samples, Zpp8u* payload);
};

template <Law law>
class Decoder {
 public:
  explicit Decoder(const Options&) {}
  int samplesOf(int octets) const { return octets; }
  void decode(const Zpp8u* payload, int octets, Zpp16s* pcm);
};

extern template class Encoder<Law::mu>;
extern template class Encoder<Law::a>;
extern template class Decoder<Law::mu>;
extern template class Decoder<Law::a>;

}  // namespace codecs::g711
