// G.729A of libbcg729.
extern "C" {  // its headers are C
#include <bcg729/decoder.h>
#include <bcg729/encoder.h>
}

#include "contender.h"

namespace {

constexpr std::size_t kFrame = 80, kOctets = 10;

struct G729A {
  Octets stream{};

  void encode(const Samples& speech) {
    stream.resize(speech.size() / kFrame * kOctets);
    bcg729EncoderChannelContextStruct* const coder = initBcg729EncoderChannel(0);
    for (std::size_t frame = 0; frame < speech.size() / kFrame; ++frame) {
      std::uint8_t length = 0;
      bcg729Encoder(coder, &speech[kFrame * frame], &stream[kOctets * frame], &length);
    }
    closeBcg729EncoderChannel(coder);
  }
  void decode(Samples& speech) {
    bcg729DecoderChannelContextStruct* const coder = initBcg729DecoderChannel();
    for (std::size_t frame = 0; frame < stream.size() / kOctets; ++frame)
      bcg729Decoder(coder, &stream[kOctets * frame], kOctets, 0, 0, 0, &speech[kFrame * frame]);
    closeBcg729DecoderChannel(coder);
  }
};

}  // namespace

void enterBcg729() { enter("g729a", "libbcg729", 8000, G729A{}); }
