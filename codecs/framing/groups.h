// Framings of codecs whose frames are so short that several travel together (G.728).
#pragma once

#include <deque>

#include "codecs/framing/words.h"

namespace codecs::framing {

// Codes of ten bits in the low bits of 16-bit words, whose other bits are ignored; the payloads hold them without gaps.
class CodePerWord : public Framing {
 public:
  explicit CodePerWord(int octets) : codes_(static_cast<std::size_t>(8 * octets / kBits)) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  static constexpr int kBits = 10;
  std::size_t codes_;  // a payload
};

// The serial format of ITU-T G.192 with up to eight payloads a frame; four are written. A frame without bits that is marked as
// lost counts as four.
class SerialGroups : public Framing {
 public:
  explicit SerialGroups(int octets);
  void append(const CodedFrame& frame, Bytes& stream) override;
  void end(Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  static constexpr std::size_t kUsual = 4, kMost = 8;
  std::size_t octets_;
  SerialBits serial_;
  Bytes held_;               // payloads that are to be written together
  std::deque<Frame> taken_;  // of one serial frame, still to be delivered
};

std::unique_ptr<Framing> codePerWord(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> serialGroups(const Entry& entry, const ZppcOptions& options);

}  // namespace codecs::framing
