// ITU-T G.726 ADPCM with 2, 3, 4 or 5 bits a sample, and the three ways in which its codes are carried:
//
//   rfc3551  packed without gaps, the first code in the least significant bits of the first octet (RTP's G726-16 ... -40)
//   aal2     packed without gaps, the first code in the most significant bits (ITU-T I.366.2 Annex E, RTP's AAL2-G726-...)
//   codes    one code in the low bits of each byte
//
// A packed stream consists of groups, the smallest numbers of codes that fill whole octets; the encoder completes the last
// group with silence.
#ifndef ZPPSC_EXAMPLES_G726_H
#define ZPPSC_EXAMPLES_G726_H

#include <optional>

#include "bit_order.h"
#include "codec.h"

namespace codecs {

constexpr int g726GroupOctets(int width) { return width % 2 == 0 ? 1 : width; }
constexpr int g726Group(int width) { return 8 * g726GroupOctets(width) / width; }  // codes

class G726Encoder : public Encoder {
 public:
  G726Encoder(std::string_view framing, int width);
  void encode(std::span<const std::int16_t> samples, Bytes& stream) override;
  void finish(std::span<const std::int16_t> rest, Bytes& stream) override;

 private:
  std::optional<BitOrder> order_;  // none: one code a byte
  int width_;                      // bits a code
  Bytes state_;
};

class G726Decoder : public Decoder {
 public:
  G726Decoder(std::string_view framing, int width);
  std::size_t decode(std::span<const std::uint8_t> stream, Samples& samples) override;

 private:
  std::optional<BitOrder> order_;
  int width_;
  Bytes state_;
};

}  // namespace codecs

#endif
