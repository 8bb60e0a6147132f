// ITU-T G.711 compression of one sample.
#pragma once

#include <bit>

#include "zppsc.h"

namespace zpp {

// mu-law: 14-bit magnitude plus bias 33, segment from its bit length, four bits below the leading one, all inverted
constexpr Zpp8u muLawCode(Zpp16s x) {
  const int magnitude = (x < 0 ? ~x : x) >> 2;
  const auto biased = static_cast<unsigned>(magnitude + 33 > 8191 ? 8191 : magnitude + 33);
  const int segment = std::bit_width(biased) - 5;  // 1..8
  const int code = (8 - segment) * 16 + 15 - static_cast<int>((biased >> segment) & 15);
  return static_cast<Zpp8u>(x < 0 ? code : code | 0x80);
}

// A-law: 13-bit magnitude, the two lowest segments of equal step, even bits inverted
constexpr Zpp8u aLawCode(Zpp16s x) {
  const auto magnitude = static_cast<unsigned>((x < 0 ? ~x : x) >> 3);
  const int segment = magnitude < 32 ? 0 : std::bit_width(magnitude) - 5;  // 0..7
  const int code = segment * 16 + static_cast<int>((magnitude >> (segment == 0 ? 1 : segment)) & 15);
  return static_cast<Zpp8u>(code ^ (x < 0 ? 0x55 : 0xd5));
}

}  // namespace zpp
