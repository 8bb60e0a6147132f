// ITU-T G.722.1 at 24 and 32 kbit/s (7 kHz at 16 kHz sampling, frames of 20 ms), and the ways in which its frames are carried:
//
//   packed   16-bit words, low octet first, the first bit in the most significant bit of the first word (the standard's files)
//   rfc5577  octets, the first bit in the most significant bit of the first octet (the RTP payload)
//   itu      the serial format of ITU-T G.192, which marks lost frames
#ifndef ZPPSC_EXAMPLES_G7221_H
#define ZPPSC_EXAMPLES_G7221_H

#include "codec.h"
#include "g7221_decoder.h"
#include "g7221_encoder.h"

namespace codecs {

enum class G7221Framing { packed, rfc5577, itu };

class G7221Encoder : public Encoder {
 public:
  G7221Encoder(std::string_view framing, int bitRate);
  void encode(std::span<const std::int16_t> frames, Bytes& stream) override;

 private:
  G7221Framing framing_;
  Bytes frame_;
  g7221::FrameEncoder encoder_;
};

class G7221Decoder : public FrameByFrameDecoder {
 public:
  G7221Decoder(std::string_view framing, int bitRate);

 private:
  std::size_t decodeFrame(std::span<const std::uint8_t> stream, Samples& samples) override;

  G7221Framing framing_;
  std::size_t frameSize_;  // octets
  g7221::FrameDecoder decoder_;
};

}  // namespace codecs

#endif
