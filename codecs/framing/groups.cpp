#include "codecs/framing/groups.h"

namespace codecs::framing {
namespace {

// Bits of a group of payloads, the most first
std::vector<int> groupSizes(int octets, std::size_t most) {
  std::vector<int> sizes;
  for (auto count = static_cast<int>(most); count > 0; --count) sizes.push_back(count * 8 * octets);
  return sizes;
}

}  // namespace

void CodePerWord::append(const CodedFrame& frame, Bytes& stream) {
  unsigned window = 0;
  int held = 0;
  for (const unsigned octet : frame.payload) {
    window = window << 8 | octet;
    held += 8;
    if (held < kBits) continue;
    held -= kBits;
    appendWord(window >> held & ((1u << kBits) - 1), stream);
  }
}

std::optional<Frame> CodePerWord::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (stream.size() < 2 * codes_) return std::nullopt;
  Frame frame{.size = 2 * codes_};
  unsigned window = 0;
  int held = 0;
  for (std::size_t n = 0; n < codes_; ++n) {
    window = window << kBits | (wordAt(stream, n) & ((1u << kBits) - 1));
    for (held += kBits; held >= 8; held -= 8) frame.payload.push_back(static_cast<std::uint8_t>(window >> (held - 8)));
  }
  return frame;
}

SerialGroups::SerialGroups(int octets) : octets_(static_cast<std::size_t>(octets)), serial_(groupSizes(octets, kMost)) {}

void SerialGroups::append(const CodedFrame& frame, Bytes& stream) {
  held_.insert(held_.end(), frame.payload.begin(), frame.payload.end());
  if (held_.size() == kUsual * octets_) end(stream);
}

void SerialGroups::end(Bytes& stream) {
  if (!held_.empty()) serial_.append({.payload = held_}, stream);
  held_.clear();
}

std::optional<Frame> SerialGroups::take(std::span<const std::uint8_t> stream, bool ended, bool single) {
  if (taken_.empty()) {
    const auto group = serial_.take(stream, ended, single);
    if (!group) return std::nullopt;
    Bytes octets = group->payload;
    if (octets.empty()) octets.resize(kUsual * octets_);
    for (auto at = octets.begin(); at != octets.end(); at += static_cast<std::ptrdiff_t>(octets_))
      taken_.push_back({.lost = group->lost, .payload = Bytes(at, at + static_cast<std::ptrdiff_t>(octets_))});
    taken_.front().size = group->size;
  }
  const Frame frame = std::move(taken_.front());
  taken_.pop_front();
  return frame;
}

std::unique_ptr<Framing> codePerWord(const Entry& entry, const ZppcOptions&) {
  return std::make_unique<CodePerWord>(entry.octets.front());
}

std::unique_ptr<Framing> serialGroups(const Entry& entry, const ZppcOptions&) {
  return std::make_unique<SerialGroups>(entry.octets.front());
}

}  // namespace codecs::framing
