#include <zppcodecs.h>
#include <zppsc.h>

#include <cstdio>

int main() {
  const Zpp16s pcm[2] = {1000, -1000};
  Zpp8u primitive[2], codec[2];
  ZppcEncoder* const encoder = zppcEncoderCreate(zppcFindCodec("g711-mulaw"), nullptr, nullptr);
  if (zppsLinToMuLaw_16s8u(pcm, primitive, 2) != zppStsOk || zppcEncode(encoder, pcm, 2, codec, 2) != 2) return 1;
  zppcEncoderDestroy(encoder);
  std::printf("%s\n", primitive[0] == codec[0] && primitive[1] == codec[1] ? "agree" : "differ");
}
