// The serial format of ITU-T G.192: for each frame a synchronisation word, the number of bits, then a word a bit. Files hold
// the words with the low octet first. A frame may be marked as lost.
#ifndef ZPPSC_EXAMPLES_G192_H
#define ZPPSC_EXAMPLES_G192_H

#include <initializer_list>

#include "codec.h"

namespace codecs {

// A frame as it stood in the stream; octets hold its bits, the first in the most significant place.
struct SerialFrame {
  std::size_t size = 0;  // bytes of the stream; 0: the stream ends within the frame
  bool lost = false;
  Bytes octets;
};

void appendSerialFrame(std::span<const std::uint8_t> octets, Bytes& stream);

// Takes the frame at the front of a stream whose frames have one of the given numbers of bits, multiples of 8; lost ones may
// have none. Throws StreamError for another number of bits.
SerialFrame takeSerialFrame(std::span<const std::uint8_t> stream, std::initializer_list<std::size_t> sizes);

}  // namespace codecs

#endif
