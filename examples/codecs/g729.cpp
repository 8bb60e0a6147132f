#include "g729.h"

#include "g192.h"

namespace codecs {
namespace {

using g729::kFrameSize;

using g729::kSidOctets, g729::kSpeechOctets;

constexpr std::size_t kLost = 255;

G729Framing framingOf(std::string_view name, bool discontinuous) {
  if (name == "itu") return G729Framing::itu;
  return discontinuous ? G729Framing::lengthAndOctets : G729Framing::octets;
}

// The frame at the front of a stream of octets; its size is 0 if the stream ends within it.
SerialFrame takeOctets(std::span<const std::uint8_t> stream, bool withLength) {
  if (stream.empty()) return {};
  const std::size_t header = withLength ? 1 : 0;
  const std::size_t length = withLength ? stream[0] : kSpeechOctets;
  if (length == kLost) return {.size = header, .lost = true, .octets = {}};
  if (length != kSpeechOctets && length != kSidOctets && length != 0) {
    throw StreamError("a frame of " + std::to_string(length) + " octets where 10, 2 or 0 are expected");
  }
  if (stream.size() < header + length) return {};
  const auto octets = stream.subspan(header, length);
  return {.size = header + length, .lost = false, .octets = Bytes(octets.begin(), octets.end())};
}

}  // namespace

G729Encoder::G729Encoder(std::string_view framing, g729::Variant variant, bool discontinuous)
    : framing_(framingOf(framing, discontinuous)), encoder_(g729::makeFrameEncoder(variant, discontinuous)) {}

void G729Encoder::encode(std::span<const std::int16_t> frames, Bytes& stream) {
  for (; frames.size() >= kFrameSize; frames = frames.subspan(kFrameSize)) {
    const Bytes octets = g729::pack(encoder_->encode(frames.first<kFrameSize>()));
    if (framing_ == G729Framing::itu) {
      appendSerialFrame(octets, stream);
      continue;
    }
    if (framing_ == G729Framing::lengthAndOctets) stream.push_back(static_cast<std::uint8_t>(octets.size()));
    stream.insert(stream.end(), octets.begin(), octets.end());
  }
}

G729Decoder::G729Decoder(std::string_view framing, g729::Variant variant, bool discontinuous)
    : framing_(framingOf(framing, discontinuous)), decoder_(variant) {}

std::size_t G729Decoder::decodeFrame(std::span<const std::uint8_t> stream, Samples& samples) {
  const SerialFrame frame = framing_ == G729Framing::itu ? takeSerialFrame(stream, {8 * kSpeechOctets, 8 * kSidOctets, 0})
                                                         : takeOctets(stream, framing_ == G729Framing::lengthAndOctets);
  if (frame.size == 0) return 0;
  samples.resize(samples.size() + kFrameSize);
  const auto decoded = std::span(samples).last<kFrameSize>();
  if (frame.lost) {
    decoder_.conceal(decoded);
  } else {
    decoder_.decode(g729::unpack(frame.octets), decoded);
  }
  return frame.size;
}

}  // namespace codecs
