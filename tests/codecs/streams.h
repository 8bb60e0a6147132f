// Codecs by name, files of golden streams, checksums, and the serial format.
#pragma once

#include <cstring>
#include <fstream>
#include <iterator>

#include "codec.h"

namespace test {

inline codecs::Bytes fileBytes(const std::string& name) {
  std::ifstream file(TEST_DATA_DIR "/" + name, std::ios::binary);
  if (!file) throw std::runtime_error("no vectors " + name);
  return codecs::Bytes(std::istreambuf_iterator<char>(file), {});
}

inline codecs::Samples filePcm(const std::string& name) {
  const codecs::Bytes bytes = fileBytes(name);
  codecs::Samples samples;
  for (std::size_t n = 0; n + 1 < bytes.size(); n += 2)
    samples.push_back(static_cast<std::int16_t>(bytes[n] | bytes[n + 1] << 8));
  return samples;
}

inline const codecs::Codec& codecNamed(std::string_view name) {
  for (const codecs::Codec& codec : codecs::registry())
    if (codec.name == name) return codec;
  throw std::runtime_error("no codec " + std::string(name));
}

inline codecs::Bytes encoded(const codecs::Codec& codec, std::string_view framing, std::span<const std::int16_t> speech) {
  codecs::Bytes stream;
  codec.makeEncoder(framing)->encode(speech, stream);
  return stream;
}

// Decodes a stream that arrives in pieces of the given size, 0 for all at once.
inline codecs::Samples decoded(const codecs::Codec& codec, std::string_view framing, std::span<const std::uint8_t> stream,
                               std::size_t piece = 0) {
  const auto decoder = codec.makeDecoder(framing);
  codecs::Samples samples;
  std::size_t used = 0, arrived = 0;
  while (arrived < stream.size()) {
    arrived = piece == 0 ? stream.size() : std::min(stream.size(), arrived + piece);
    used += decoder->decode(stream.subspan(used, arrived - used), samples);
  }
  return samples;
}

inline std::uint32_t crc32(std::span<const std::int16_t> samples) {
  std::uint32_t crc = 0xffffffff;
  const auto take = [&](unsigned octet) {
    crc ^= octet & 0xff;
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xedb88320 : 0);
  };
  for (const int sample : samples) {
    take(static_cast<unsigned>(sample));
    take(static_cast<unsigned>(sample) >> 8);
  }
  return ~crc;
}

// A frame in the serial format of ITU-T G.192, the first bit in the highest place of the first octet
inline void appendSerial(std::span<const std::uint8_t> octets, bool lost, codecs::Bytes& stream) {
  const auto put = [&stream](std::size_t word) {
    stream.push_back(static_cast<std::uint8_t>(word));
    stream.push_back(static_cast<std::uint8_t>(word >> 8));
  };
  put(lost ? 0x6b20 : 0x6b21);
  put(8 * octets.size());
  for (const unsigned octet : octets)
    for (int bit = 7; bit >= 0; --bit) put(octet >> bit & 1 ? 0x81 : 0x7f);
}

}  // namespace test
