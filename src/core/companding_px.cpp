// ITU-T G.711 compression: portable kernels.
#include "core/companding.h"
#include "core/kernels.h"

using namespace zpp;

void ownLinToMuLaw_16s8u_PX(const Zpp16s* src, Zpp8u* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = muLawCode(src[n]);
}

void ownLinToALaw_16s8u_PX(const Zpp16s* src, Zpp8u* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = aLawCode(src[n]);
}
