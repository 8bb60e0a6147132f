// The storage format of RFC 4867 for one channel: a line that names the codec, then the payloads one after the other.
#pragma once

#include <array>

#include "codecs/framing/framing.h"

namespace codecs::framing {

class AmrStorage : public Framing {
 public:
  // Octets of a payload by the frame type of its first octet; 1: nothing but that octet, so nothing was sent
  using Sizes = std::array<int, 16>;

  AmrStorage(std::string_view magic, const Sizes& sizes) : magic_(magic), sizes_(sizes) {}
  void begin(Bytes& stream) override;
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::size_t takeBegin(std::span<const std::uint8_t> stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  std::string_view magic_;
  Sizes sizes_;
  bool begun_ = false;
};

}  // namespace codecs::framing
