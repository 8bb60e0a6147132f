#include "codecs/framing/words.h"

#include <algorithm>
#include <utility>

namespace codecs::framing {
namespace {

constexpr unsigned kGoodFrame = 0x6b21, kZero = 0x7f, kOne = 0x81;

int octetsOf(int bits) { return (bits + 7) / 8; }

std::vector<int> bitsOf(const std::vector<int>& octets) {
  std::vector<int> bits = octets;
  for (int& size : bits) size *= 8;
  return bits;
}

// Between the order of octets in the bit stream and that of words with the low octet first
void swapOctets(std::span<std::uint8_t> octets) {
  for (std::size_t n = 0; n + 1 < octets.size(); n += 2) std::swap(octets[n], octets[n + 1]);
}

}  // namespace

void PackedWords::append(const CodedFrame& frame, Bytes& stream) {
  stream.insert(stream.end(), frame.payload.begin(), frame.payload.end());
  swapOctets(std::span(stream).last(frame.payload.size()));
}

std::optional<Frame> PackedWords::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (stream.size() < octets_) return std::nullopt;
  const auto octets = stream.first(octets_);
  Frame frame{.size = octets_, .payload = Bytes(octets.begin(), octets.end())};
  swapOctets(frame.payload);
  return frame;
}

void SerialBits::append(const CodedFrame& frame, Bytes& stream) {
  const auto octets = static_cast<int>(frame.payload.size());
  const auto size = std::ranges::find(sizes_, octets, octetsOf);
  const int bits = size == sizes_.end() ? 8 * octets : *size;
  appendWord(kGoodFrame, stream);
  appendWord(static_cast<unsigned>(bits), stream);
  for (int bit = 0; bit < bits; ++bit)
    appendWord(frame.payload[static_cast<std::size_t>(bit / 8)] >> (7 - bit % 8) & 1 ? kOne : kZero, stream);
}

std::optional<Frame> SerialBits::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (stream.size() < 4) return std::nullopt;
  Frame frame;
  const unsigned length = wordAt(stream, 1);
  frame.lost = wordAt(stream, 0) != kGoodFrame;
  const auto fits = [length](int bits) { return length == static_cast<unsigned>(bits); };
  if (std::ranges::none_of(sizes_, fits) && !(frame.lost && length == 0)) {
    throw StreamError("a frame of " + std::to_string(length) + " bits where " + std::to_string(sizes_.front()) +
                      (sizes_.size() > 1 ? " or fewer are expected" : " are expected"));
  }
  if (stream.size() < 2 * (2 + length)) return std::nullopt;
  frame.size = 2 * (2 + length);
  frame.payload.resize((length + 7) / 8);
  for (std::size_t n = 0; n < length; ++n) {
    const unsigned word = wordAt(stream, 2 + n);
    if (word == kOne) frame.payload[n / 8] |= static_cast<std::uint8_t>(0x80 >> n % 8);
    if (word != kOne && word != kZero) frame.lost = true;
  }
  return frame;
}

std::unique_ptr<Framing> packedWords(const Entry& entry, const ZppcOptions&) {
  return std::make_unique<PackedWords>(entry.octets.front());
}

std::unique_ptr<Framing> serialBits(const Entry& entry, const ZppcOptions&) {
  return std::make_unique<SerialBits>(bitsOf(entry.octets));
}

std::unique_ptr<Framing> serialBitsOfG729(const Entry& entry, const ZppcOptions&) {
  std::vector<int> sizes = bitsOf(entry.octets);
  std::ranges::replace(sizes, 120, 118);
  sizes.insert(sizes.end(), {15, 0});
  return std::make_unique<SerialBits>(std::move(sizes));
}

}  // namespace codecs::framing
