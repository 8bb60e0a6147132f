// Framings of 16-bit words, the low octet first.
#pragma once

#include "codecs/framing/framing.h"

namespace codecs::framing {

// The octets of payloads of one size as words, the first bit in the highest bit of the first word
class PackedWords : public Framing {
 public:
  explicit PackedWords(int octets) : octets_(static_cast<std::size_t>(octets)) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  std::size_t octets_;
};

// The serial format of ITU-T G.192: for each frame a synchronisation word, the number of bits, then a word a bit. A frame may
// be marked as lost, by another first word or a bit that is neither 0 nor 1.
class SerialBits : public Framing {
 public:
  // sizes: bits that a frame may have, the most first; those that do not fill their octets leave the lowest of the last unused
  explicit SerialBits(std::vector<int> sizes) : sizes_(std::move(sizes)) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  std::vector<int> sizes_;
};

std::unique_ptr<Framing> packedWords(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> serialBits(const Entry& entry, const ZppcOptions& options);
// Of G.729: frames without bits are those for which nothing was sent, 15 octets are 118 bits, and silence descriptors may also
// come without their last bit.
std::unique_ptr<Framing> serialBitsOfG729(const Entry& entry, const ZppcOptions& options);

}  // namespace codecs::framing
