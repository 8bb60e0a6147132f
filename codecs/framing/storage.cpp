#include "codecs/framing/storage.h"

#include <algorithm>

namespace codecs::framing {
namespace {

constexpr std::uint8_t kNothingSent = 15 << 3 | 4;  // frame type 15, not damaged

}  // namespace

void AmrStorage::begin(Bytes& stream) { stream.insert(stream.end(), magic_.begin(), magic_.end()); }

void AmrStorage::append(const CodedFrame& frame, Bytes& stream) {
  if (frame.payload.empty())
    stream.push_back(kNothingSent);
  else
    stream.insert(stream.end(), frame.payload.begin(), frame.payload.end());
}

std::size_t AmrStorage::takeBegin(std::span<const std::uint8_t> stream) {
  if (begun_) return 0;
  const auto there = static_cast<std::ptrdiff_t>(std::min(stream.size(), magic_.size()));
  if (!std::equal(magic_.begin(), magic_.begin() + there, stream.begin()))
    throw StreamError("it does not begin with the line " + std::string(magic_.substr(0, magic_.size() - 1)));
  begun_ = stream.size() >= magic_.size();
  return begun_ ? magic_.size() : 0;
}

std::optional<Frame> AmrStorage::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (!begun_ || stream.empty()) return std::nullopt;
  const auto octets = static_cast<std::size_t>(sizes_[stream[0] >> 3 & 15]);
  if (stream.size() < octets) return std::nullopt;
  Frame frame{.size = octets};
  if (octets > 1) frame.payload.assign(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(octets));
  return frame;
}

}  // namespace codecs::framing
