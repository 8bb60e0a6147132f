// Fixed-width codes packed into octets without gaps, in either bit order.
#ifndef ZPPSC_EXAMPLES_BIT_ORDER_H
#define ZPPSC_EXAMPLES_BIT_ORDER_H

#include "codec.h"

namespace codecs {

enum class BitOrder { lsbFirst, msbFirst };

// Appends the codes, each below 2^width; together they fill whole octets.
inline void packCodes(std::span<const std::uint8_t> codes, int width, BitOrder order, Bytes& octets) {
  unsigned window = 0;
  int held = 0;  // bits in the window
  for (const unsigned code : codes) {
    window = order == BitOrder::lsbFirst ? window | code << held : (window << width | code) & 0xffff;
    held += width;
    if (held < 8) continue;
    held -= 8;
    octets.push_back(static_cast<std::uint8_t>(order == BitOrder::lsbFirst ? window : window >> held));
    if (order == BitOrder::lsbFirst) window >>= 8;
  }
}

// Appends the codes that the octets hold; a whole number of codes.
inline void unpackCodes(std::span<const std::uint8_t> octets, int width, BitOrder order, Bytes& codes) {
  const unsigned mask = (1u << width) - 1;
  unsigned window = 0;
  int held = 0;
  for (const unsigned octet : octets) {
    window = order == BitOrder::lsbFirst ? window | octet << held : (window << 8 | octet) & 0xffff;
    for (held += 8; held >= width; held -= width) {
      codes.push_back(static_cast<std::uint8_t>((order == BitOrder::lsbFirst ? window : window >> (held - width)) & mask));
      if (order == BitOrder::lsbFirst) window >>= width;
    }
  }
}

}  // namespace codecs

#endif
