// Files of AMR-WB: the storage format of RFC 4867, and the two formats of words of the standard's own program (3GPP TS 26.173).
#pragma once

#include "codecs/framing/framing.h"
#include "codecs/framing/storage.h"

namespace codecs::framing {

class AmrWbStorage : public AmrStorage {
 public:
  AmrWbStorage();
  // Frames of a type octet alone are not all the same: some are lost ones.
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;
};

// For each frame a first word, its type, its mode, and a word a bit in the order of the codec's parameters, 127 or -127.
// Comfort noise has all its bits in every frame, also where nothing of it is sent.
class AmrWbWords : public Framing {
 public:
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  bool afterSpeech_ = true;
};

// The serial format of ITU-T G.192: a first word that says whether the frame is lost, the number of bits, a word a bit. Without
// bits a frame is the first of comfort noise where speech went before, and otherwise one for which nothing was sent.
class AmrWbSerial : public Framing {
 public:
  void append(const CodedFrame& frame, Bytes& stream) override;
  std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) override;

 private:
  bool afterSpeech_ = true;
};

std::unique_ptr<Framing> amrWbStorage(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> amrWbWords(const Entry& entry, const ZppcOptions& options);
std::unique_ptr<Framing> amrWbSerial(const Entry& entry, const ZppcOptions& options);

}  // namespace codecs::framing
