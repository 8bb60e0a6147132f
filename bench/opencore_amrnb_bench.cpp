// GSM-AMR of libopencore-amrnb.
#include <opencore-amrnb/interf_dec.h>
#include <opencore-amrnb/interf_enc.h>

#include "contender.h"

namespace {

constexpr std::size_t kFrame = 160;

struct Amr {
  Mode mode;
  std::size_t octets;  // of a frame
  Octets stream{};

  void encode(const Samples& speech) {
    stream.resize(speech.size() / kFrame * octets);
    void* const coder = Encoder_Interface_init(0);
    for (std::size_t frame = 0; frame < speech.size() / kFrame; ++frame)
      Encoder_Interface_Encode(coder, mode, &speech[kFrame * frame], &stream[octets * frame], 0);
    Encoder_Interface_exit(coder);
  }
  void decode(Samples& speech) {
    void* const coder = Decoder_Interface_init();
    for (std::size_t frame = 0; frame < stream.size() / octets; ++frame)
      Decoder_Interface_Decode(coder, &stream[octets * frame], &speech[kFrame * frame], 0);
    Decoder_Interface_exit(coder);
  }
};

}  // namespace

void enterOpencoreAmrnb() {
  constexpr struct {
    const char* name;
    Mode mode;
    std::size_t octets;
  } rates[] = {{"amr-4.75", MR475, 13}, {"amr-5.15", MR515, 14}, {"amr-5.90", MR59, 16},  {"amr-6.70", MR67, 18},
               {"amr-7.40", MR74, 20},  {"amr-7.95", MR795, 21}, {"amr-10.2", MR102, 27}, {"amr-12.2", MR122, 32}};
  for (const auto& rate : rates) enter(rate.name, "libopencore-amrnb", 8000, Amr{rate.mode, rate.octets});
}
