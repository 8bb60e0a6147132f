// ITU-T G.711 companding. Framing: one octet a sample, as RTP payload types 0 and 8 carry it.
#ifndef ZPPSC_EXAMPLES_G711_H
#define ZPPSC_EXAMPLES_G711_H

#include "codec.h"

namespace codecs {

enum class Law { mu, a };

class G711Encoder : public Encoder {
 public:
  G711Encoder(std::string_view framing, Law law);
  void encode(std::span<const std::int16_t> samples, Bytes& stream) override;

 private:
  Law law_;
};

class G711Decoder : public Decoder {
 public:
  G711Decoder(std::string_view framing, Law law);
  std::size_t decode(std::span<const std::uint8_t> stream, Samples& samples) override;

 private:
  Law law_;
};

}  // namespace codecs

#endif
