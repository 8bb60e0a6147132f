// Payloads as RTP carries them, one after the other.
#pragma once

#include "codecs/framing/framing.h"

namespace codecs::framing {

// Payloads of one size, or of a sample-based codec, back to back
class BareOctets : public Framing {
 public:
  // bitsPerSample: of a sample-based codec; 0: payloads of `octets` octets
  BareOctets(int octets, int bitsPerSample, int frameSamples)
      : octets_(octets), bits_(bitsPerSample), frameSamples_(frameSamples) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  // The smallest number of octets that whole samples fill, and those that a number of samples takes in such groups
  std::size_t groupOctets() const;
  std::size_t octetsOf(int samples) const;

  int octets_, bits_, frameSamples_;
};

// Before each payload an octet with its length: 0 where nothing is sent, 255 (without octets) for a lost frame
class LengthAndOctets : public Framing {
 public:
  explicit LengthAndOctets(std::vector<int> sizes) : sizes_(std::move(sizes)) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  std::vector<int> sizes_;
};

// One code of a sample-based codec in the low bits of each byte; the payloads hold the first in the least significant bits.
class CodePerByte : public Framing {
 public:
  CodePerByte(int bits, int frameSamples) : bits_(bits), frameSamples_(frameSamples) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  int bits_, frameSamples_;
};

// Catalogue functions: bareOctets for payloads of one size and sample-based codecs; lengthAndOctets; octetsOrLength: bare where
// all payloads have one size, behind a length octet with discontinuous transmission or several rates.
std::unique_ptr<Framing> bareOctets(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> lengthAndOctets(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> octetsOrLength(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> codePerByte(const Entry& entry, const ZppcOptions& options);

// "80, 60 or 0"
std::string oneOf(const std::vector<int>& sizes, bool orNone);

}  // namespace codecs::framing
