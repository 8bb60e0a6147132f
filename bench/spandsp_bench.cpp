// G.711 and G.726 of libspandsp, the codes of G.726 packed as our payloads are.
#include <spandsp.h>

#include "contender.h"

namespace {

struct G711 {
  int law;
  Octets codes{};

  void encode(const Samples& speech) {
    codes.resize(speech.size());
    g711_state_t* const coder = g711_init(nullptr, law);
    g711_encode(coder, codes.data(), speech.data(), static_cast<int>(speech.size()));
    g711_free(coder);
  }
  void decode(Samples& speech) {
    g711_state_t* const coder = g711_init(nullptr, law);
    g711_decode(coder, speech.data(), codes.data(), static_cast<int>(codes.size()));
    g711_free(coder);
  }
};

struct G726 {
  int bitRate;
  Octets codes{};

  g726_state_t* start() const { return g726_init(nullptr, bitRate, G726_ENCODING_LINEAR, G726_PACKING_RIGHT); }
  void encode(const Samples& speech) {
    codes.resize(speech.size());
    g726_state_t* const coder = start();
    codes.resize(static_cast<std::size_t>(g726_encode(coder, codes.data(), speech.data(), static_cast<int>(speech.size()))));
    g726_free(coder);
  }
  void decode(Samples& speech) {
    g726_state_t* const coder = start();
    g726_decode(coder, speech.data(), codes.data(), static_cast<int>(codes.size()));
    g726_free(coder);
  }
};

}  // namespace

void enterSpandsp() {
  enter("g711-alaw", "libspandsp", 8000, G711{G711_ALAW});
  enter("g711-mulaw", "libspandsp", 8000, G711{G711_ULAW});
  for (const int rate : {16, 24, 32, 40}) enter("g726-" + std::to_string(rate), "libspandsp", 8000, G726{1000 * rate});
}
