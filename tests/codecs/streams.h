// Codecs by name, files of golden streams, checksums, and the serial format.
#pragma once

#include <cstring>
#include <fstream>
#include <iterator>

#include "codecs/framing/stream.h"

namespace test {

inline codecs::framing::Bytes fileBytes(const std::string& name) {
  std::ifstream file(TEST_DATA_DIR "/" + name, std::ios::binary);
  if (!file) throw std::runtime_error("no vectors " + name);
  return codecs::framing::Bytes(std::istreambuf_iterator<char>(file), {});
}

inline codecs::framing::Samples filePcm(const std::string& name) {
  const codecs::framing::Bytes bytes = fileBytes(name);
  codecs::framing::Samples samples;
  for (std::size_t n = 0; n + 1 < bytes.size(); n += 2)
    samples.push_back(static_cast<std::int16_t>(bytes[n] | bytes[n + 1] << 8));
  return samples;
}

// Codecs as the program names them, with the options that the names imply
using Codec = codecs::framing::Entry;

inline const Codec& codecNamed(std::string_view name) {
  if (const Codec* codec = codecs::framing::findEntry(name)) return *codec;
  throw std::runtime_error("no codec " + std::string(name));
}

inline std::string_view defaultFraming(const Codec& codec) { return codec.framings.front().name; }

inline codecs::framing::Bytes encoded(const codecs::framing::Format& format, std::span<const std::int16_t> speech,
                                      std::vector<int> rates = {}) {
  codecs::framing::Bytes stream;
  codecs::framing::StreamEncoder encoder(format, std::move(rates));
  encoder.add(speech, stream);
  encoder.finish(stream);
  return stream;
}
inline codecs::framing::Bytes encoded(const Codec& codec, std::string_view framing, std::span<const std::int16_t> speech) {
  return encoded({&codec, framing, codec.options}, speech);
}

// Decodes a stream that arrives in pieces of the given size, 0 for all at once.
inline codecs::framing::Samples decoded(const codecs::framing::Format& format, std::span<const std::uint8_t> stream,
                                        std::size_t piece = 0, codecs::framing::Reception reception = {}) {
  codecs::framing::StreamDecoder decoder(format, std::move(reception));
  codecs::framing::Samples samples;
  for (std::size_t at = 0; at < stream.size(); at += piece) {
    if (piece == 0 || stream.size() - at < piece) piece = stream.size() - at;
    decoder.add(stream.subspan(at, piece), samples);
  }
  if (decoder.finish(samples) != 0) throw codecs::framing::StreamError("the stream ends within a frame");
  return samples;
}
inline codecs::framing::Samples decoded(const Codec& codec, std::string_view framing, std::span<const std::uint8_t> stream,
                                        std::size_t piece = 0) {
  return decoded({&codec, framing, codec.options}, stream, piece);
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

// A frame in the serial format of ITU-T G.192, the first bit in the highest place of the first octet; unused: so many of its
// last bits are none
inline void appendSerial(std::span<const std::uint8_t> octets, bool lost, codecs::framing::Bytes& stream,
                         std::size_t unused = 0) {
  const auto put = [&stream](std::size_t word) {
    stream.push_back(static_cast<std::uint8_t>(word));
    stream.push_back(static_cast<std::uint8_t>(word >> 8));
  };
  put(lost ? 0x6b20 : 0x6b21);
  const std::size_t bits = 8 * octets.size() - unused;
  put(bits);
  for (std::size_t bit = 0; bit < bits; ++bit) put(octets[bit / 8] >> (7 - bit % 8) & 1 ? 0x81 : 0x7f);
}

}  // namespace test
