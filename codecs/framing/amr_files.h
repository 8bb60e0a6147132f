// Files of GSM-AMR: the storage format of RFC 4867, and those of the standard's own programs (3GPP TS 26.073). These have 250
// words a frame: its type, 244 words of a bit in the order of the codec's parameters, its mode, and four that are 0.
#pragma once

#include "codecs/framing/framing.h"

namespace codecs::framing {

class AmrWords : public Framing {
 public:
  // received: the types are those of a receiver; otherwise those of a sender, to which the standard's decoder adds four.
  explicit AmrWords(bool received) : received_(received) {}
  // Where nothing is sent, the descriptor that would be: so the standard's encoder does.
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  bool received_;
};

std::unique_ptr<Framing> amrStorage(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> amrSentWords(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> amrReceivedWords(const Entry& entry, const ZppcOptions& options);

}  // namespace codecs::framing
