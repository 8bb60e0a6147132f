// Fields of bits in octets, the most significant bit first.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace codecs {

// Fills octets from their first bit; what goes beyond their end is dropped.
class BitWriter {
 public:
  explicit BitWriter(std::span<std::uint8_t> octets) : octets_(octets) { std::ranges::fill(octets, std::uint8_t{0}); }

  int left() const { return static_cast<int>(8 * octets_.size()) - position_; }

  // The lowest `width` bits of value, width 0..32
  void put(std::uint32_t value, int width) {
    // From the first bit of the octet that they begin in
    auto at = static_cast<std::size_t>(position_ / 8);
    std::uint64_t window = (std::uint64_t{value} << (64 - width - 1) << 1) >> position_ % 8;
    position_ += width;
    for (; window != 0 && at < octets_.size(); ++at, window <<= 8) octets_[at] |= static_cast<std::uint8_t>(window >> 56);
  }

 private:
  std::span<std::uint8_t> octets_;
  int position_ = 0;
};

// Reads octets from their first bit. Beyond their end there are zeros; the caller watches left().
class BitReader {
 public:
  explicit BitReader(std::span<const std::uint8_t> octets) : octets_(octets) {}

  int left() const { return static_cast<int>(8 * octets_.size()) - position_; }

  // The next 16 bits, which stay unread
  unsigned peek16() {
    if (ahead_ < 16) refill();
    return static_cast<unsigned>(window_ >> (kWindow - 16));
  }
  void skip(int bits) {
    position_ += bits;
    const bool seen = bits <= ahead_ && bits < kWindow;
    if (!seen) {
      next_ = static_cast<std::size_t>(position_ / 8);
      window_ = 0;
      ahead_ = 0;
      refill();
      bits = position_ % 8;
    }
    window_ <<= bits;
    ahead_ -= bits;
  }
  // The next `width` bits, width 0..16
  int bits(int width) {
    const unsigned window = peek16();
    skip(width);
    return static_cast<int>(window >> (16 - width));
  }

 private:
  void refill() {
    for (; ahead_ <= kWindow - 8; ahead_ += 8)
      if (next_ < octets_.size()) window_ |= std::size_t{octets_[next_++]} << (kWindow - 8 - ahead_);
  }

  static constexpr int kWindow = 8 * sizeof(std::size_t);

  std::span<const std::uint8_t> octets_;
  std::size_t next_ = 0;    // octet that the window has not
  std::size_t window_ = 0;  // the next bits, from the highest on; zeros behind them
  int ahead_ = 0;           // of them
  int position_ = 0;
};

}  // namespace codecs
