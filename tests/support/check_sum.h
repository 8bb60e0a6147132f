// Check sums, the same on every processor
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace test {

// CRC-32 of a table's values
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

// FNV-1a, of bytes
class ByteSum {
 public:
  void add(const void* bytes, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) value_ = (value_ ^ static_cast<const unsigned char*>(bytes)[i]) * 0x100000001b3;
  }
  unsigned long long value() const { return value_; }

 private:
  std::uint64_t value_ = 0xcbf29ce484222325;
};

template <class... Tables>
std::uint32_t sumOf(const Tables&... tables) {
  CheckSum sum;
  (sum.add(tables), ...);
  return sum.value();
}

}  // namespace test
