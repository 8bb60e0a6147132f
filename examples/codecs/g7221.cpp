#include "g7221.h"

#include <utility>

#include "g192.h"

namespace codecs {
namespace {

using g7221::kFrameSize;

constexpr int kFramesPerSecond = 50;

G7221Framing framingOf(std::string_view name) {
  if (name == "rfc5577") return G7221Framing::rfc5577;
  return name == "itu" ? G7221Framing::itu : G7221Framing::packed;
}

// Between the order of octets in the bit stream and that of words with the low octet first
void swapOctets(Bytes& frame) {
  for (std::size_t n = 0; n + 1 < frame.size(); n += 2) std::swap(frame[n], frame[n + 1]);
}

}  // namespace

G7221Encoder::G7221Encoder(std::string_view framing, int bitRate)
    : framing_(framingOf(framing)), frame_(static_cast<std::size_t>(bitRate / kFramesPerSecond / 8)) {}

void G7221Encoder::encode(std::span<const std::int16_t> frames, Bytes& stream) {
  for (; frames.size() >= kFrameSize; frames = frames.subspan(kFrameSize)) {
    encoder_.encode(frames.first<kFrameSize>(), frame_);
    if (framing_ == G7221Framing::itu) {
      appendSerialFrame(frame_, stream);
      continue;
    }
    if (framing_ == G7221Framing::packed) swapOctets(frame_);
    stream.insert(stream.end(), frame_.begin(), frame_.end());
  }
}

G7221Decoder::G7221Decoder(std::string_view framing, int bitRate)
    : framing_(framingOf(framing)), frameSize_(static_cast<std::size_t>(bitRate / kFramesPerSecond / 8)) {}

std::size_t G7221Decoder::decodeFrame(std::span<const std::uint8_t> stream, Samples& samples) {
  SerialFrame frame;
  if (framing_ == G7221Framing::itu) {
    frame = takeSerialFrame(stream, {8 * frameSize_});
  } else if (stream.size() >= frameSize_) {
    frame = {.size = frameSize_, .octets = Bytes(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(frameSize_))};
    if (framing_ == G7221Framing::packed) swapOctets(frame.octets);
  }
  if (frame.size == 0) return 0;
  samples.resize(samples.size() + kFrameSize);
  const auto decoded = std::span(samples).last<kFrameSize>();
  if (frame.lost) {
    decoder_.conceal(decoded);
  } else {
    decoder_.decode(frame.octets, decoded);
  }
  return frame.size;
}

}  // namespace codecs
