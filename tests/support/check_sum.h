// CRC-32 of a table's values, the same on every processor
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace test {

class CheckSum {
 public:
  // Arrays element by element; an integer as 32 bits, the low byte first, a number of single precision as its bits
  template <class T>
  CheckSum& add(const T& value) {
    if constexpr (std::is_same_v<T, float>) {
      add(std::bit_cast<std::uint32_t>(value));
    } else if constexpr (std::is_integral_v<T>) {
      for (int i = 0; i < 4; ++i) addOctet(static_cast<std::uint32_t>(value) >> (8 * i) & 255);
    } else {
      for (const auto& element : value) add(element);
    }
    return *this;
  }
  std::uint32_t value() const { return ~crc_; }

 private:
  void addOctet(std::uint32_t octet) {
    crc_ ^= octet;
    for (int bit = 0; bit < 8; ++bit) crc_ = crc_ >> 1 ^ (crc_ & 1 ? 0xedb88320u : 0);
  }

  std::uint32_t crc_ = 0xffffffff;
};

template <class... Tables>
std::uint32_t sumOf(const Tables&... tables) {
  CheckSum sum;
  (sum.add(tables), ...);
  return sum.value();
}

}  // namespace test
