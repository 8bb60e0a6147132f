#include "codecs/g711/g711.h"

namespace codecs::g711 {

template <Law law>
void Encoder<law>::encode(const Zpp16s* pcm, int samples, Zpp8u* payload) {
  constexpr auto compress = law == Law::mu ? zppsLinToMuLaw_16s8u : zppsLinToALaw_16s8u;
  require(compress(pcm, payload, samples));
}

template <Law law>
void Decoder<law>::decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
  constexpr auto expand = law == Law::mu ? zppsMuLawToLin_8u16s : zppsALawToLin_8u16s;
  require(expand(payload, pcm, octets));
}

template class Encoder<Law::mu>;
template class Encoder<Law::a>;
template class Decoder<Law::mu>;
template class Decoder<Law::a>;

}  // namespace codecs::g711
