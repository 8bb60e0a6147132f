#include "codec.h"
#include "g711.h"
#include "g7221.h"
#include "g726.h"
#include "g729.h"

namespace codecs {
namespace {

// A Coder is constructed from the framing and the arguments that tell its variants apart.
template <class Coder, auto... variant>
std::unique_ptr<Encoder> encoder(std::string_view framing) {
  return std::make_unique<Coder>(framing, variant...);
}

template <class Coder, auto... variant>
std::unique_ptr<Decoder> decoder(std::string_view framing) {
  return std::make_unique<Coder>(framing, variant...);
}

}  // namespace

const std::vector<Codec>& registry() {
  static const std::vector<std::string_view> octets = {"octets"};
  static const std::vector<std::string_view> adpcm = {"rfc3551", "aal2", "codes"};
  static const std::vector<std::string_view> transform = {"packed", "rfc5577", "itu"};
  static const std::vector<std::string_view> celp = {"rfc3551", "itu"};
  using enum g729::Variant;
  static const std::vector<Codec> rows = {
      // name, bit rate, Hz, samples a frame, delay, framings, factories
      {"g711-mulaw", "64 kbit/s", 8000, 1, 0, octets, encoder<G711Encoder, Law::mu>, decoder<G711Decoder, Law::mu>},
      {"g711-alaw", "64 kbit/s", 8000, 1, 0, octets, encoder<G711Encoder, Law::a>, decoder<G711Decoder, Law::a>},
      {"g726-16", "16 kbit/s", 8000, g726Group(2), 0, adpcm, encoder<G726Encoder, 2>, decoder<G726Decoder, 2>},
      {"g726-24", "24 kbit/s", 8000, g726Group(3), 0, adpcm, encoder<G726Encoder, 3>, decoder<G726Decoder, 3>},
      {"g726-32", "32 kbit/s", 8000, g726Group(4), 0, adpcm, encoder<G726Encoder, 4>, decoder<G726Decoder, 4>},
      {"g726-40", "40 kbit/s", 8000, g726Group(5), 0, adpcm, encoder<G726Encoder, 5>, decoder<G726Decoder, 5>},
      {"g722.1-24", "24 kbit/s", 16000, 320, 320, transform, encoder<G7221Encoder, 24000>, decoder<G7221Decoder, 24000>},
      {"g722.1-32", "32 kbit/s", 16000, 320, 320, transform, encoder<G7221Encoder, 32000>, decoder<G7221Decoder, 32000>},
      {"g729", "8 kbit/s", 8000, 80, 40, celp, encoder<G729Encoder, mainBody, false>, decoder<G729Decoder, mainBody, false>},
      {"g729a", "8 kbit/s", 8000, 80, 40, celp, encoder<G729Encoder, annexA, false>, decoder<G729Decoder, annexA, false>},
      {"g729b", "0-8 kbit/s", 8000, 80, 40, celp, encoder<G729Encoder, mainBody, true>, decoder<G729Decoder, mainBody, true>},
      {"g729ab", "0-8 kbit/s", 8000, 80, 40, celp, encoder<G729Encoder, annexA, true>, decoder<G729Decoder, annexA, true>},
  };
  return rows;
}

}  // namespace codecs
