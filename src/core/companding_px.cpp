// ITU-T G.711 compression: portable kernels.
//
// A segment of a law is a line of the code over the magnitude, with half the slope of the segment below it: the code is the
// least of what all lines give, shifts truncating. So blocks need no bit lengths, and compilers make vectors of them.
#include <algorithm>

#include "core/companding.h"
#include "core/kernels.h"

using namespace zpp;

namespace {

// What `lines` lines give of a magnitude: the lowest rises by one every 2^first, and each starts 16 higher than the one before.
template <int first, int lines>
constexpr Zpp16s leastOfLines(Zpp16s magnitude) {
  const auto line = static_cast<Zpp16s>(magnitude >> first);
  if constexpr (lines == 1)
    return line;
  else
    return std::min(line, static_cast<Zpp16s>(leastOfLines<first + 1, lines - 1>(magnitude) + 16));
}

struct MuLaw {
  // The bias of 33 in units of 4, clamped; the codes of the eight lines begin at 16.
  static constexpr Zpp8u ofBlock(Zpp16s x) {
    constexpr Zpp16s bias = 33 * 4;
    const auto sign = static_cast<Zpp16s>(x >> 15);
    const Zpp16s magnitude = std::min(static_cast<Zpp16s>(x ^ sign), static_cast<Zpp16s>(32767 - bias));
    const Zpp16s code = leastOfLines<3, 8>(static_cast<Zpp16s>(magnitude + bias));
    return static_cast<Zpp8u>((127 + 16 - code) | (~sign & 0x80));
  }
  static constexpr Zpp8u ofSample(Zpp16s x) { return muLawCode(x); }
};

struct ALaw {
  // The two lowest segments, of equal steps, are one line.
  static constexpr Zpp8u ofBlock(Zpp16s x) {
    const auto sign = static_cast<Zpp16s>(x >> 15);
    return static_cast<Zpp8u>(leastOfLines<4, 7>(static_cast<Zpp16s>(x ^ sign)) ^ 0xd5 ^ (sign & 0x80));
  }
  static constexpr Zpp8u ofSample(Zpp16s x) { return aLawCode(x); }
};

template <class Law>
void compress(const Zpp16s* src, Zpp8u* dst, int len) {
  constexpr int kBlock = 16;
  constexpr bool vectors = sizeof(void*) == 8;  // which the least processors of 32 bits do not have
  int n = 0;
  for (; vectors && n + kBlock <= len; n += kBlock) {
    Zpp8u codes[kBlock];  // which no source overlaps
    for (int i = 0; i < kBlock; ++i) codes[i] = Law::ofBlock(src[n + i]);
    std::copy_n(codes, kBlock, dst + n);
  }
  for (; n < len; ++n) dst[n] = Law::ofSample(src[n]);
}

}  // namespace

void ownLinToMuLaw_16s8u_PX(const Zpp16s* src, Zpp8u* dst, int len) { compress<MuLaw>(src, dst, len); }
void ownLinToALaw_16s8u_PX(const Zpp16s* src, Zpp8u* dst, int len) { compress<ALaw>(src, dst, len); }
