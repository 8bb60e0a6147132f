// ITU-T G.729 and G.729A as codecs over bytes, with or without discontinuous transmission (Annex B).
#ifndef ZPPSC_EXAMPLES_G729_H
#define ZPPSC_EXAMPLES_G729_H

#include "codec.h"
#include "g729_decoder.h"
#include "g729_encoder.h"

namespace codecs {

// rfc3551: 10 octets of speech as in an RTP payload; with discontinuous transmission an octet with the frame's length before
// each: 10,
//          2 for a silence descriptor, 0 where nothing is sent
// itu: the words of ITU-T G.192; frames have 80, 16 or 0 bits
enum class G729Framing { octets, lengthAndOctets, itu };

class G729Encoder : public Encoder {
 public:
  G729Encoder(std::string_view framing, g729::Variant variant, bool discontinuous);
  void encode(std::span<const std::int16_t> frames, Bytes& stream) override;

 private:
  G729Framing framing_;
  std::unique_ptr<g729::FrameEncoder> encoder_;
};

class G729Decoder : public Decoder {
 public:
  G729Decoder(std::string_view framing, g729::Variant variant, bool discontinuous);
  std::size_t decode(std::span<const std::uint8_t> stream, Samples& samples) override;

 private:
  std::size_t decodeFrame(std::span<const std::uint8_t> stream, Samples& samples);

  G729Framing framing_;
  g729::FrameDecoder decoder_;
};

}  // namespace codecs

#endif
