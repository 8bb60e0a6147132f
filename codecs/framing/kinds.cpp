#include "codecs/framing/kinds.h"

namespace codecs::framing {
namespace {

constexpr std::uint8_t kNothingSent = 3;

}  // namespace

void KindsAndOctets::append(const CodedFrame& frame, Bytes& stream) {
  stream.insert(stream.end(), frame.payload.begin(), frame.payload.end());
  if (frame.payload.empty() && keepsEmpty_) stream.push_back(kNothingSent);
}

std::optional<Frame> KindsAndOctets::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (stream.empty()) return std::nullopt;
  const unsigned kind = stream[0] & 3u;
  if (kind == kNothingSent) {
    if (!keepsEmpty_) throw StreamError("a frame for which nothing is sent has no octets in this framing");
    return Frame{.size = 1};
  }
  const auto size = static_cast<std::size_t>(octets_[kind]);
  if (stream.size() < size) return std::nullopt;
  const auto octets = stream.first(size);
  return Frame{.size = size, .payload = Bytes(octets.begin(), octets.end())};
}

std::unique_ptr<Framing> kindsAndOctets(const Entry& entry, const ZppcOptions&) {
  return std::make_unique<KindsAndOctets>(entry.octets, true);
}

std::unique_ptr<Framing> kindsAndOctetsOfSpeech(const Entry& entry, const ZppcOptions&) {
  return std::make_unique<KindsAndOctets>(entry.octets, false);
}

}  // namespace codecs::framing
