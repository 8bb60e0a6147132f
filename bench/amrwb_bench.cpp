// AMR-WB: the encoder of libvo-amrwbenc, the decoder of libopencore-amrwb.
#include <opencore-amrwb/dec_if.h>
#include <vo-amrwbenc/enc_if.h>

#include "contender.h"

namespace {

constexpr std::size_t kFrame = 320;

struct AmrWb {
  int mode;
  std::size_t octets;  // of a frame
  Octets stream{};

  void encode(const Samples& speech) {
    stream.resize(speech.size() / kFrame * octets);
    void* const coder = E_IF_init();
    for (std::size_t frame = 0; frame < speech.size() / kFrame; ++frame)
      E_IF_encode(coder, mode, &speech[kFrame * frame], &stream[octets * frame], 0);
    E_IF_exit(coder);
  }
  void decode(Samples& speech) {
    void* const coder = D_IF_init();
    for (std::size_t frame = 0; frame < stream.size() / octets; ++frame)
      D_IF_decode(coder, &stream[octets * frame], &speech[kFrame * frame], _good_frame);
    D_IF_exit(coder);
  }
};

}  // namespace

void enterAmrwb() {
  constexpr std::size_t octets[] = {18, 24, 33, 37, 41, 47, 51, 59, 61};
  const char* const names[] = {"6.60", "8.85", "12.65", "14.25", "15.85", "18.25", "19.85", "23.05", "23.85"};
  for (int mode = 0; mode < 9; ++mode)
    enter(std::string("amr-wb-") + names[mode], "libvo-amrwbenc+libopencore-amrwb", 16000, AmrWb{mode, octets[mode]});
}
