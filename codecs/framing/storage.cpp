#include "codecs/framing/storage.h"

#include <algorithm>

namespace codecs::framing {
namespace {

constexpr std::uint8_t kNothingSent = 15 << 3 | 4;  // frame type 15, not damaged

}  // namespace

void AmrStorage::begin(Bytes& stream) { stream.insert(stream.end(), magic_.begin(), magic_.end()); }

void AmrStorage::append(std::span<const std::uint8_t> payload, int, Bytes& stream) {
  if (payload.empty())
    stream.push_back(kNothingSent);
  else
    stream.insert(stream.end(), payload.begin(), payload.end());
}

std::optional<Frame> AmrStorage::take(std::span<const std::uint8_t> stream, bool ended, bool) {
  std::size_t size = 0;
  if (!begun_) {
    const std::size_t there = std::min(stream.size(), magic_.size());
    if (!std::equal(magic_.begin(), magic_.begin() + static_cast<std::ptrdiff_t>(there), stream.begin()) ||
        (ended && there > 0 && there < magic_.size()))
      throw StreamError("it does not begin with the line " + std::string(magic_.substr(0, magic_.size() - 1)));
    if (there < magic_.size()) return std::nullopt;
    size = magic_.size();
  }
  if (stream.size() <= size) return std::nullopt;
  const auto octets = static_cast<std::size_t>(sizes_[stream[size] >> 3 & 15]);
  if (stream.size() < size + octets) return std::nullopt;
  Frame frame{.size = size + octets};
  if (octets > 1) {
    const auto payload = stream.subspan(size, octets);
    frame.payload.assign(payload.begin(), payload.end());
  }
  begun_ = true;
  return frame;
}

}  // namespace codecs::framing
