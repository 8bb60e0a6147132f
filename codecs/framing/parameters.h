// Framings of codecs whose payload is a signature and then the parameters of the frame, bit fields of fixed widths without
// gaps.
#pragma once

#include "codecs/framing/framing.h"

namespace codecs::framing {

struct ParameterLayout {
  int signatureBits;
  unsigned signature;
  std::span<const int> widths;  // bits of the parameters
  int bits() const;             // of all parameters
  std::size_t octets() const { return static_cast<std::size_t>(signatureBits + bits() + 7) / 8; }
};

// Payloads one after the other; what has another signature is a lost frame.
class SignedOctets : public Framing {
 public:
  SignedOctets(const ParameterLayout& layout, bool) : layout_(layout) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  ParameterLayout layout_;
};

// A word a parameter. With discontinuous transmission the highest bits of the first words are the encoder's flags.
class ParameterWords : public Framing {
 public:
  ParameterWords(const ParameterLayout& layout, bool dtx) : layout_(layout), dtx_(dtx) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  ParameterLayout layout_;
  bool dtx_;
};

// Blocks of two frames without signatures, the least significant bits first. A last frame that is alone gets one of silence for
// company.
class PairedParameters : public Framing {
 public:
  PairedParameters(const ParameterLayout& layout, bool) : layout_(layout) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  bool mayEnd() const override { return !second_; }
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  ParameterLayout layout_;
  bool second_ = false;  // the next frame is the second one of its block
  Bytes block_{};        // with its first frame
};

}  // namespace codecs::framing
