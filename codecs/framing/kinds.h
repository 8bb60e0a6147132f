// Payloads one after the other, each of which says by its first two bits how long it is.
#pragma once

#include "codecs/framing/framing.h"

namespace codecs::framing {

// octets: by the two lowest bits of the first octet. A payload of one octet stands for a frame for which nothing was sent; in
// streams that keep none of these such frames vanish.
class KindsAndOctets : public Framing {
 public:
  KindsAndOctets(std::vector<int> octets, bool keepsEmpty) : octets_(std::move(octets)), keepsEmpty_(keepsEmpty) {}
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  std::vector<int> octets_;
  bool keepsEmpty_;
};

// Catalogue functions: with the frames for which nothing was sent, and without
std::unique_ptr<Framing> kindsAndOctets(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> kindsAndOctetsOfSpeech(const Entry& entry, const ZppcOptions& options);

}  // namespace codecs::framing
