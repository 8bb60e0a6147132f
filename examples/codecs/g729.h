// ITU-T G.729 and G.729A as codecs over bytes, with or without discontinuous transmission (Annex B).
//
// To read on: g729_frame (the bits of a frame), g729_encoder with g729_main_body and g729_annex_a, g729_decoder with
// g729_postfilter; what they share is in g729_filters. g729_analysis and g729_taming are parts of the encoder. Annex B is
// g729_dtx with g729_vad for the encoder, g729_comfort_noise for both sides.
#ifndef ZPPSC_EXAMPLES_G729_H
#define ZPPSC_EXAMPLES_G729_H

#include "codec.h"
#include "g729_decoder.h"
#include "g729_encoder.h"

namespace codecs {

// octets:           10 octets of speech a frame ("rfc3551")
// lengthAndOctets:  before each frame an octet with its length ("rfc3551" of the codecs that pause): 10; 2 for a silence
//                   descriptor; 0 where nothing is sent; 255, without octets, for a lost frame
// itu:              the words of ITU-T G.192 ("itu"), frames of 80, 16 or 0 bits
enum class G729Framing { octets, lengthAndOctets, itu };

class G729Encoder : public Encoder {
 public:
  G729Encoder(std::string_view framing, g729::Variant variant, bool discontinuous);
  void encode(std::span<const std::int16_t> frames, Bytes& stream) override;

 private:
  G729Framing framing_;
  std::unique_ptr<g729::FrameEncoder> encoder_;
};

class G729Decoder : public FrameByFrameDecoder {
 public:
  G729Decoder(std::string_view framing, g729::Variant variant, bool discontinuous);

 private:
  std::size_t decodeFrame(std::span<const std::uint8_t> stream, Samples& samples) override;

  G729Framing framing_;
  g729::FrameDecoder decoder_;
};

}  // namespace codecs

#endif
