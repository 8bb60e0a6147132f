// ITU-T G.711 compression and expansion: portable kernels.
#include <array>

#include "core/companding.h"
#include "core/kernels.h"

using namespace zpp;

namespace {

using Expansion = std::array<Zpp16s, 256>;

constexpr Expansion tabulate(Zpp16s (*valueOf)(Zpp8u)) {
  Expansion table = {};
  for (unsigned code = 0; code < 256; ++code) table[code] = valueOf(static_cast<Zpp8u>(code));
  return table;
}

constexpr Expansion muLaw = tabulate(muLawValue), aLaw = tabulate(aLawValue);

}  // namespace

void ownLinToMuLaw_16s8u_PX(const Zpp16s* src, Zpp8u* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = muLawCode(src[n]);
}

void ownLinToALaw_16s8u_PX(const Zpp16s* src, Zpp8u* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = aLawCode(src[n]);
}

void ownMuLawToLin_8u16s_PX(const Zpp8u* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = muLaw[src[n]];
}

void ownALawToLin_8u16s_PX(const Zpp8u* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = aLaw[src[n]];
}
