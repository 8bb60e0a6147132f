// How payloads lie in files: bare, behind a length octet, in words. A framing knows no codec beyond its table row and what the
// catalogue says of its payloads.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "zppcodecs.h"

namespace codecs::framing {

using Bytes = std::vector<std::uint8_t>;

// The bytes cannot be a stream of this codec in this framing; the message is the rest of a sentence.
class StreamError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A frame as it stood in a stream; of sample-based codecs a piece of any number of whole frames
struct Frame {
  std::size_t size = 0;  // bytes of the stream that have been taken
  bool lost = false;
  int receiveType = -1;  // by the codec's standard, instead of what the payload says; below 0: none
  Bytes payload{};       // empty: nothing was sent
  int samples = -1;      // how many of the decoded samples count, from the first; below 0: all
};

// A frame as its encoder hands it out
struct CodedFrame {
  std::span<const std::uint8_t> payload{};  // that is sent; empty: nothing
  int samples = -1;                         // of its samples, those that belong to the speech; below 0: all
  std::span<const std::uint8_t>
      unsent{};        // what comfort noise would be sent, where payload brings none (unsentPayload in registry.h)
  unsigned flags = 0;  // what the standard's files tell beside the bits (flagsOf in registry.h)
};

// A framing serves one stream in one direction and may remember what went before.
class Framing {
 public:
  virtual ~Framing() = default;

  // Appends what stands before the first frame.
  virtual void begin([[maybe_unused]] Bytes& stream) {}
  virtual void append(const CodedFrame& frame, Bytes& stream) = 0;
  // Whether the stream may end here; otherwise it needs another frame, of silence.
  virtual bool mayEnd() const { return true; }
  // Appends what stands behind the last frame.
  virtual void end([[maybe_unused]] Bytes& stream) {}

  // Takes what stands before the first frame, and returns its bytes, 0 until it is all there or when it has been taken. Called
  // before every take. Throws StreamError for bytes that begin no stream.
  virtual std::size_t takeBegin([[maybe_unused]] std::span<const std::uint8_t> stream) { return 0; }
  // The frame at the front of stream; none if the stream ends within it. ended: nothing follows the bytes of stream.
  // single: of sample-based codecs no more than one frame. Throws StreamError for bytes that are no frame at all.
  virtual std::optional<Frame> take(std::span<const std::uint8_t> stream, bool ended, bool single) = 0;
};

struct Entry;

// A framing of a catalogue entry
struct Choice {
  std::string_view name;
  std::unique_ptr<Framing> (*make)(const Entry& entry, const ZppcOptions& options);
  int variant = 0;  // of the codec, which goes with this framing
};

// A codec as the program names it: a table row and, where the name says them, bit rate and discontinuous transmission
struct Entry {
  std::string_view name;
  const ZppcCodec* codec;
  ZppcOptions options;           // that the name implies
  bool everyRate;                // the name leaves the rate open, from frame to frame
  std::vector<int> octets;       // that a payload may have, the longest first; none of sample-based codecs
  std::vector<Choice> framings;  // the first is the default
  // Options of the program that stand for the codec's variant 1: of the encoder and of the decoder; empty: none
  std::string_view encoderSwitch = {}, decoderSwitch = {};
};

// All names, in the order in which they are listed.
const std::vector<Entry>& catalogue();

inline bool sampleBased(const ZppcCodec& codec) { return (codec.features & ZPPC_FEATURE_SAMPLE_BASED) != 0; }

// Samples of a packet of 20 ms, or of one frame where frames are longer
inline int packetSamples(const ZppcCodec& codec) {
  if (!sampleBased(codec)) return codec.frameSamples;
  return std::max(1, codec.sampleRate / 50 / codec.frameSamples) * codec.frameSamples;
}

// 16-bit words, the low octet first
inline void appendWord(unsigned word, Bytes& stream) {
  stream.push_back(static_cast<std::uint8_t>(word));
  stream.push_back(static_cast<std::uint8_t>(word >> 8));
}
inline unsigned wordAt(std::span<const std::uint8_t> stream, std::size_t index) {
  return stream[2 * index] | static_cast<unsigned>(stream[2 * index + 1]) << 8;
}

}  // namespace codecs::framing
