#include "codecs/g711/g711.h"

namespace codecs::g711 {
namespace {

using Word = Zpp16u;  // all that the standard's values need, so that loops over them become vectors

// Code word: sign, 3 bits of segment, 4 bits of interval. The value is the middle of the interval, on a 16-bit scale: from
// segment 1 on 2^segment times 16 steps more than those of the interval, in steps of 8.
constexpr Word logarithmic(Word word) {
  Word value = static_cast<Word>(((word & 15) << 3) + (16 << 3) + 4);
  value = static_cast<Word>(word & 0x10 ? value << 1 : value);
  value = static_cast<Word>(word & 0x20 ? value << 2 : value);
  return static_cast<Word>(word & 0x40 ? value << 4 : value);
}

constexpr Zpp16s withSign(Word magnitude, bool negative) {
  const Word mask = static_cast<Word>(negative ? 0xffff : 0);
  return static_cast<Zpp16s>((magnitude ^ mask) - mask);
}

// ITU-T G.711 table 2: all bits are inverted on the line; segments start at 33 * 2^segment - 33 in 14-bit units.
constexpr Zpp16s expandMuLaw(Zpp8u code) {
  const Word word = static_cast<Word>(~code);
  return withSign(static_cast<Word>(logarithmic(word) - (33 << 2)), (word & 0x80) != 0);
}

// ITU-T G.711 table 1: the even bits are inverted on the line; the two lowest segments have the same step, of 16.
constexpr Zpp16s expandALaw(Zpp8u code) {
  const Word word = static_cast<Word>(code ^ 0x55);
  const Word linear = static_cast<Word>(((word & 15) << 4) + 8);
  return withSign(word & 0x70 ? logarithmic(word) : linear, (word & 0x80) == 0);
}

}  // namespace

template <Law law>
void Encoder<law>::encode(const Zpp16s* pcm, int samples, Zpp8u* payload) {
  constexpr auto compress = law == Law::mu ? zppsLinToMuLaw_16s8u : zppsLinToALaw_16s8u;
  require(compress(pcm, payload, samples));
}

template <Law law>
void Decoder<law>::decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
  constexpr auto expand = law == Law::mu ? expandMuLaw : expandALaw;
  for (int n = 0; n < octets; ++n) pcm[n] = expand(payload[n]);
}

template class Encoder<Law::mu>;
template class Encoder<Law::a>;
template class Decoder<Law::mu>;
template class Decoder<Law::a>;

}  // namespace codecs::g711
