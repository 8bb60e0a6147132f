#include "g711.h"

#include <algorithm>
#include <array>

namespace codecs {
namespace {

// Code word: sign, 3 bits of segment, 4 bits of interval. The value is the middle of the interval, on a 16-bit scale.

// ITU-T G.711 table 2: all bits are inverted on the line; segments start at 33 * 2^segment - 33 in 14-bit units.
constexpr int expandMuLaw(int code) {
  constexpr int bias = 33 << 2;
  const int word = ~code;
  const int magnitude = ((((word & 15) << 3) + bias) << (word >> 4 & 7)) - bias;
  return word & 128 ? -magnitude : magnitude;
}

// ITU-T G.711 table 1: the even bits are inverted on the line; the two lowest segments have the same step.
constexpr int expandALaw(int code) {
  const int word = code ^ 0x55;
  const int segment = word >> 4 & 7;
  const int middle = ((word & 15) << 4) + 8;
  const int magnitude = segment == 0 ? middle : (middle + 256) << (segment - 1);
  return word & 128 ? magnitude : -magnitude;
}

using Expansion = std::array<std::int16_t, 256>;

constexpr Expansion tabulate(int (*expand)(int)) {
  Expansion table = {};
  for (int code = 0; code < 256; ++code) table[static_cast<std::size_t>(code)] = static_cast<std::int16_t>(expand(code));
  return table;
}

constexpr Expansion muLaw = tabulate(expandMuLaw);
constexpr Expansion aLaw = tabulate(expandALaw);

}  // namespace

G711Encoder::G711Encoder(std::string_view, Law law) : law_(law) {}

void G711Encoder::encode(std::span<const std::int16_t> samples, Bytes& stream) {
  if (samples.empty()) return;
  const std::size_t start = stream.size();
  stream.resize(start + samples.size());
  const auto compress = law_ == Law::mu ? zppsLinToMuLaw_16s8u : zppsLinToALaw_16s8u;
  require(compress(samples.data(), stream.data() + start, static_cast<int>(samples.size())));
}

G711Decoder::G711Decoder(std::string_view, Law law) : law_(law) {}

std::size_t G711Decoder::decode(std::span<const std::uint8_t> stream, Samples& samples) {
  const Expansion& table = law_ == Law::mu ? muLaw : aLaw;
  const std::size_t start = samples.size();
  samples.resize(start + stream.size());
  std::ranges::transform(stream, samples.begin() + static_cast<std::ptrdiff_t>(start),
                         [&](int code) { return table[static_cast<std::size_t>(code)]; });
  return stream.size();
}

}  // namespace codecs
