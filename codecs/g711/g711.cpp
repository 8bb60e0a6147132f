#include "codecs/g711/g711.h"

#include <algorithm>
#include <array>

namespace codecs::g711 {
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

using Expansion = std::array<Zpp16s, 256>;

constexpr Expansion tabulate(int (*expand)(int)) {
  Expansion table = {};
  for (int code = 0; code < 256; ++code) table[static_cast<std::size_t>(code)] = static_cast<Zpp16s>(expand(code));
  return table;
}

constexpr Expansion muLaw = tabulate(expandMuLaw);
constexpr Expansion aLaw = tabulate(expandALaw);

}  // namespace

template <Law law>
void Encoder<law>::encode(const Zpp16s* pcm, int samples, Zpp8u* payload) {
  constexpr auto compress = law == Law::mu ? zppsLinToMuLaw_16s8u : zppsLinToALaw_16s8u;
  require(compress(pcm, payload, samples));
}

template <Law law>
void Decoder<law>::decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
  constexpr const Expansion& table = law == Law::mu ? muLaw : aLaw;
  std::transform(payload, payload + octets, pcm, [](Zpp8u code) { return table[code]; });
}

template class Encoder<Law::mu>;
template class Encoder<Law::a>;
template class Decoder<Law::mu>;
template class Decoder<Law::a>;

}  // namespace codecs::g711
