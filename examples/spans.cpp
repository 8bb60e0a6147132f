// From C++: streams that are values, spans instead of pointers and lengths. Link with zppcodecs.
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

#include "zppcodecs.hpp"

int main() {
  const ZppcCodec& codec = *zpp::findCodec("g729a");
  zpp::Encoder encoder = zpp::Encoder::create(codec).value();
  zpp::Decoder decoder = zpp::Decoder::create(codec).value();

  std::array<std::int16_t, 80> pcm, heard;
  std::array<std::uint8_t, 10> buffer, again;
  for (int frame = 0; frame < 50; ++frame) {
    for (std::size_t n = 0; n < pcm.size(); ++n)
      pcm[n] =
          static_cast<std::int16_t>(8000 * std::sin(2 * std::numbers::pi * 440 * (80 * frame + static_cast<int>(n)) / 8000));

    zpp::Encoder copy = encoder;  // goes on from here by itself
    const auto payload = encoder.encode(pcm, buffer).value();
    copy.encode(pcm, again).value();
    if (buffer != again) return 1;

    if (frame % 10 == 9)
      decoder.conceal(heard).value();  // a packet that did not arrive
    else
      decoder.decode(payload, heard).value();
  }

  // Who does not want exceptions looks before taking the value.
  if (const auto refused = zpp::Encoder::create(codec, {.bitRate = 9600}); !refused)
    std::printf("%s at 9600 bit/s: %s\n", codec.standard, refused.error().what());
  return 0;
}
