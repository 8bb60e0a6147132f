// GSM full rate of libgsm.
#include <gsm.h>

#include "contender.h"

namespace {

constexpr std::size_t kFrame = 160, kOctets = 33;

struct GsmFullRate {
  Samples input{};  // which the library may change
  Octets stream{};

  void encode(const Samples& speech) {
    input = speech;
    stream.resize(speech.size() / kFrame * kOctets);
    const gsm coder = gsm_create();
    for (std::size_t frame = 0; frame < speech.size() / kFrame; ++frame)
      gsm_encode(coder, &input[kFrame * frame], &stream[kOctets * frame]);
    gsm_destroy(coder);
  }
  void decode(Samples& speech) {
    const gsm coder = gsm_create();
    for (std::size_t frame = 0; frame < stream.size() / kOctets; ++frame)
      gsm_decode(coder, &stream[kOctets * frame], &speech[kFrame * frame]);
    gsm_destroy(coder);
  }
};

}  // namespace

void enterLibgsm() { enter("gsm-fr", "libgsm", 8000, GsmFullRate{}); }
