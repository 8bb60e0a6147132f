// ITU-T G.711 compression: portable kernels. Compilers make vectors of a loop whose length they know.
#include "core/companding.h"
#include "core/kernels.h"

using namespace zpp;

namespace {

template <Zpp8u code(Zpp16s)>
void compress(const Zpp16s* src, Zpp8u* dst, int len) {
  constexpr int kBlock = 16;
  int n = 0;
  for (; n + kBlock <= len; n += kBlock) {
    Zpp8u codes[kBlock];  // which no source overlaps
    for (int i = 0; i < kBlock; ++i) codes[i] = code(src[n + i]);
    std::copy_n(codes, kBlock, dst + n);
  }
  for (; n < len; ++n) dst[n] = code(src[n]);
}

}  // namespace

void ownLinToMuLaw_16s8u_PX(const Zpp16s* src, Zpp8u* dst, int len) { compress<muLawCode>(src, dst, len); }
void ownLinToALaw_16s8u_PX(const Zpp16s* src, Zpp8u* dst, int len) { compress<aLawCode>(src, dst, len); }
