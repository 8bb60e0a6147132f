// Streams in the application's own memory, from C++: an array for each call, no allocation, and a copy that goes on from where
// the stream stood. Link with zppcodecs.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <numbers>
#include <span>
#include <stdexcept>
#include <vector>

#include <cmath>

#include "zppcodecs.h"

namespace {

int checked(int result) {
  if (result < 0) throw std::runtime_error(zppcErrorText(result));
  return result;
}

std::span<const std::uint8_t> encode(ZppcEncoder* encoder, std::span<const std::int16_t> pcm, std::span<std::uint8_t> payload) {
  const int octets =
      zppcEncode(encoder, pcm.data(), static_cast<int>(pcm.size()), payload.data(), static_cast<int>(payload.size()));
  return payload.first(static_cast<std::size_t>(checked(octets)));
}

}  // namespace

int main() {
  const ZppcCodec* const codec = zppcFindCodec("g729a");
  std::vector<std::byte> block(static_cast<std::size_t>(zppcEncoderSize(codec))), snapshot = block;
  int error = 0;
  ZppcEncoder* const encoder = zppcEncoderInit(block.data(), block.size(), codec, nullptr, &error);
  checked(error);

  std::array<std::int16_t, 80> pcm;
  std::array<std::uint8_t, 10> first, again;
  for (int frame = 0; frame < 50; ++frame) {
    for (std::size_t n = 0; n < pcm.size(); ++n)
      pcm[n] =
          static_cast<std::int16_t>(8000 * std::sin(2 * std::numbers::pi * 440 * (80 * frame + static_cast<int>(n)) / 8000));
    std::memcpy(snapshot.data(), block.data(), block.size());
    encode(encoder, pcm, first);
  }
  // The copy stands before the last frame: it codes that frame as the stream did.
  encode(reinterpret_cast<ZppcEncoder*>(snapshot.data()), pcm, again);
  std::printf("%s: %zu bytes a stream, the copy %s\n", codec->standard, block.size(), first == again ? "agrees" : "differs");
  return first == again ? 0 : 1;
}
