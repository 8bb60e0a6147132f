#include "g192.h"

#include <algorithm>

namespace codecs {
namespace {

constexpr unsigned kGoodFrame = 0x6b21, kZero = 0x7f, kOne = 0x81;

void append(unsigned word, Bytes& stream) {
  stream.push_back(static_cast<std::uint8_t>(word));
  stream.push_back(static_cast<std::uint8_t>(word >> 8));
}

unsigned wordAt(std::span<const std::uint8_t> stream, std::size_t index) {
  return stream[2 * index] | static_cast<unsigned>(stream[2 * index + 1]) << 8;
}

}  // namespace

void appendSerialFrame(std::span<const std::uint8_t> octets, Bytes& stream) {
  append(kGoodFrame, stream);
  append(static_cast<unsigned>(8 * octets.size()), stream);
  for (const unsigned octet : octets)
    for (int bit = 7; bit >= 0; --bit) append(octet >> bit & 1 ? kOne : kZero, stream);
}

SerialFrame takeSerialFrame(std::span<const std::uint8_t> stream, std::initializer_list<std::size_t> sizes) {
  SerialFrame frame;
  if (stream.size() < 4) return frame;
  const std::size_t length = wordAt(stream, 1);
  frame.lost = wordAt(stream, 0) != kGoodFrame;
  if (std::ranges::find(sizes, length) == sizes.end() && !(frame.lost && length == 0)) {
    throw StreamError("a frame of " + std::to_string(length) + " bits where " + std::to_string(*sizes.begin()) +
                      (sizes.size() > 1 ? " or fewer are expected" : " are expected"));
  }
  if (stream.size() < 2 * (2 + length)) return frame;
  frame.size = 2 * (2 + length);
  frame.octets.resize(length / 8);
  for (std::size_t n = 0; n < length; ++n) {
    const unsigned word = wordAt(stream, 2 + n);
    if (word == kOne) frame.octets[n / 8] |= static_cast<std::uint8_t>(0x80 >> n % 8);
    if (word != kOne && word != kZero) frame.lost = true;
  }
  return frame;
}

}  // namespace codecs
