// Primitives from C++: G.726 with its state block as a value, and an LP analysis step whose shapes the compiler checks. Link
// with zppsc.
#include <array>
#include <cstdio>
#include <vector>

#include "zppsc.hpp"

using Encoder = zpp::State<zppsEncodeGetStateSize_G726_16s8u, zppsEncodeInit_G726_16s8u>;
using Decoder = zpp::State<zppsDecodeGetStateSize_G726_8u16s, zppsDecodeInit_G726_8u16s>;

int main() {
  constexpr int kLinear = 2;
  Encoder encoder = Encoder::create(ZPP_RATE_32000).value();
  Decoder decoder = Decoder::create(ZPP_RATE_32000, kLinear).value();

  std::vector<Zpp16s> pcm(160), heard(160);
  std::vector<Zpp8u> codes(160);
  for (std::size_t n = 0; n < pcm.size(); ++n) pcm[n] = static_cast<Zpp16s>(n % 40 < 20 ? 1000 : -1000);
  zpp::call<zppsEncode_G726_16s8u>(encoder, pcm, codes, codes.size()).orThrow();
  zpp::call<zppsDecode_G726_8u16s>(decoder, codes, heard, codes.size()).orThrow();

  // zppsLSPToLSF_G729_16s has buffers of ten: nine of them would not compile.
  const std::array<Zpp16s, 10> lsp = {30000, 26000, 21000, 15000, 8000, 0, -8000, -15000, -21000, -26000};
  std::array<Zpp16s, 10> lsf;
  if (const zpp::Status status = zpp::call<zppsLSPToLSF_G729_16s>(lsp, lsf); status.failed()) {
    std::fprintf(stderr, "%s\n", status.what());
    return 1;
  }
  std::printf("a state of %zu bytes, the sixth LSF at %d\n", encoder.size(), lsf[5]);
  return 0;
}
