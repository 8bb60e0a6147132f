// What every codec of this directory looks like to an application: an encoder and a decoder over streams of bytes, and one row
// in the table of codecs. The codecs use the public API of zppsc alone.
#ifndef ZPPSC_EXAMPLES_CODEC_H
#define ZPPSC_EXAMPLES_CODEC_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "zppsc.h"

namespace codecs {

using Samples = std::vector<std::int16_t>;
using Bytes = std::vector<std::uint8_t>;

// The bytes cannot be a stream of this codec in this framing.
class StreamError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

class Encoder {
 public:
  virtual ~Encoder() = default;

  // Codes a whole number of frames and appends their bytes to stream.
  virtual void encode(std::span<const std::int16_t> frames, Bytes& stream) = 0;

  // Ends the stream. rest: the samples behind the last whole frame, which a codec of fixed frames drops.
  virtual void finish([[maybe_unused]] std::span<const std::int16_t> rest, [[maybe_unused]] Bytes& stream) {}
};

class Decoder {
 public:
  virtual ~Decoder() = default;

  // Decodes the complete frames at the front of stream, appends their samples and returns the number of bytes used. The caller
  // presents the remaining bytes again, in front of those that follow; what remains at the end is a truncated frame.
  // Throws StreamError for bytes that are no frame at all.
  virtual std::size_t decode(std::span<const std::uint8_t> stream, Samples& samples) = 0;
};

// A decoder of streams that are one frame after the other
class FrameByFrameDecoder : public Decoder {
 public:
  std::size_t decode(std::span<const std::uint8_t> stream, Samples& samples) final {
    std::size_t used = 0;
    while (const std::size_t size = decodeFrame(stream.subspan(used), samples)) used += size;
    return used;
  }

 private:
  // Decodes the frame at the front of stream and returns its bytes; 0 if the stream ends within it.
  virtual std::size_t decodeFrame(std::span<const std::uint8_t> stream, Samples& samples) = 0;
};

struct Codec {
  std::string_view name;
  std::string_view bitRate;  // as text: some codecs pause in silence
  int sampleRate;            // Hz, one channel
  int samplesPerFrame;
  int delay;                               // samples by which the decoded signal lags behind the input
  std::vector<std::string_view> framings;  // the first is the default
  std::unique_ptr<Encoder> (*makeEncoder)(std::string_view framing);
  std::unique_ptr<Decoder> (*makeDecoder)(std::string_view framing);
};

// All codecs, in the order in which they are listed.
const std::vector<Codec>& registry();

// For calls whose arguments are right by construction.
inline void require(ZppStatus status) {
  if (status != zppStsOk) throw std::logic_error("unexpected status " + std::to_string(status) + " from libzppsc");
}

// The same for calls that may return a warning: whether they do
inline bool warns(ZppStatus status) {
  if (status < 0) require(status);
  return status > 0;
}

}  // namespace codecs

#endif
