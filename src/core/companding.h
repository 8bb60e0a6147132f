// ITU-T G.711 compression: the laws as lines.
//
// A segment is a line of the code over the magnitude, with half the slope of the segment below it: the codes are the least of
// what all lines give, shifts truncating. No search for the segment, and many samples side by side.
#pragma once

#include <algorithm>

#include "zppsc.h"

namespace zpp {

// What `lines` lines give of a magnitude: the lowest rises by one every 2^first, and each starts 16 higher than the one before.
template <int first, int lines>
constexpr Zpp16s leastOfLines(Zpp16s magnitude) {
  const auto line = static_cast<Zpp16s>(magnitude >> first);
  if constexpr (lines == 1)
    return line;
  else
    return std::min(line, static_cast<Zpp16s>(leastOfLines<first + 1, lines - 1>(magnitude) + 16));
}

// mu-law: a bias of 33 in units of 4, clamped; eight segments, the codes of whose lines begin at 16; all bits inverted
constexpr Zpp8u muLawCode(Zpp16s x) {
  constexpr Zpp16s bias = 33 * 4;
  const auto sign = static_cast<Zpp16s>(x >> 15);
  const Zpp16s magnitude = std::min(static_cast<Zpp16s>(x ^ sign), static_cast<Zpp16s>(32767 - bias));
  const Zpp16s code = leastOfLines<3, 8>(static_cast<Zpp16s>(magnitude + bias));
  return static_cast<Zpp8u>((127 + 16 - code) | (~sign & 0x80));
}

// A-law: the two lowest of eight segments have equal steps, which makes them one line; even bits inverted
constexpr Zpp8u aLawCode(Zpp16s x) {
  const auto sign = static_cast<Zpp16s>(x >> 15);
  return static_cast<Zpp8u>(leastOfLines<4, 7>(static_cast<Zpp16s>(x ^ sign)) ^ 0xd5 ^ (sign & 0x80));
}

}  // namespace zpp
