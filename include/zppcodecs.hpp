// zppcodecs for C++20: the C API of zppcodecs.h with spans, and streams that are values. Header-only, in namespace zpp.
//
//   const ZppcCodec& g729 = *zpp::findCodec("g729");
//   zpp::Encoder encoder = zpp::Encoder::create(g729, {.dtx = true}).value();
//   std::array<std::int16_t, 80> speech;
//   std::array<std::uint8_t, 10> buffer;
//   std::span<std::uint8_t> payload = encoder.encode(speech, buffer).value();
//
// A stream is a block of memory without pointers in it: an Encoder or Decoder may be copied, and the copy continues on its own,
// moved, or kept in a container. Memory is taken when it is created or copied, never while it codes. What can fail returns a
// Result (zppsc/result.hpp): value() throws, `if (result)` does not.
#ifndef ZPPCODECS_HPP
#define ZPPCODECS_HPP

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "zppcodecs.h"
#include "zppsc/result.hpp"

namespace zpp {

// A result of zppcodecs.h below zero
class CodecError {
 public:
  constexpr explicit CodecError(int code) noexcept : code_(code) {}
  constexpr int code() const noexcept { return code_; }  // ZPPC_ERROR_...
  const char* what() const noexcept { return zppcErrorText(code_); }
  friend constexpr bool operator==(CodecError, CodecError) noexcept = default;

 private:
  int code_;
};

// All codecs, in the order in which they are listed
inline std::span<const ZppcCodec> codecs() noexcept {
  int count = 0;
  const ZppcCodec* const first = zppcCodecs(&count);
  return {first, static_cast<std::size_t>(count)};
}

// The codec of that name; null if there is none.
inline const ZppcCodec* findCodec(std::string_view name) noexcept {
  for (const ZppcCodec& codec : codecs())
    if (codec.name == name) return &codec;
  return nullptr;
}

inline std::span<const int> bitRates(const ZppcCodec& codec) noexcept {
  return {codec.bitRates, static_cast<std::size_t>(codec.bitRateCount)};
}

// How a stream is coded: ZppcOptions of zppcodecs.h, with the defaults filled in
struct Options {
  int bitRate = 0;
  bool dtx = false;
  int variant = 0;
};

namespace detail {

// A size as the C API takes it: one that no int holds becomes one that no stream accepts.
constexpr int count(std::size_t size) noexcept {
  return size <= std::size_t{std::numeric_limits<int>::max()} ? static_cast<int>(size) : -1;
}

// The block of a stream; sizeOf and start are the functions of zppcodecs.h for that direction.
template <class Handle, auto sizeOf, auto start>
class Stream {
 public:
  // The stream as the functions of zppcodecs.h take it
  Handle* handle() noexcept { return reinterpret_cast<Handle*>(block_.data()); }

 protected:
  static Result<std::vector<std::byte>, CodecError> startedBlock(const ZppcCodec& codec, const Options& options) {
    const long bytes = sizeOf(&codec);
    if (bytes < 0) return CodecError(static_cast<int>(bytes));
    std::vector<std::byte> block(static_cast<std::size_t>(bytes));
    int error = 0;
    const ZppcOptions wanted = {options.bitRate, options.dtx, options.variant};
    start(block.data(), block.size(), &codec, &wanted, &error);
    if (error < 0) return CodecError(error);
    return block;
  }

  explicit Stream(std::vector<std::byte> block) noexcept : block_(std::move(block)) {}

 private:
  std::vector<std::byte> block_;
};

}  // namespace detail

class Encoder : public detail::Stream<ZppcEncoder, zppcEncoderSize, zppcEncoderInit> {
 public:
  static Result<Encoder, CodecError> create(const ZppcCodec& codec, const Options& options = {}) {
    auto block = startedBlock(codec, options);
    if (!block) return block.error();
    return Encoder(*std::move(block));
  }

  // Codes a frame; a sample-based codec one or more. buffer: room for the longest payload. The payload is the first part of the
  // buffer, empty where nothing is sent.
  Result<std::span<std::uint8_t>, CodecError> encode(std::span<const std::int16_t> pcm,
                                                     std::span<std::uint8_t> buffer) noexcept {
    const int octets = zppcEncode(handle(), pcm.data(), detail::count(pcm.size()), buffer.data(), detail::count(buffer.size()));
    if (octets < 0) return CodecError(octets);
    return buffer.first(static_cast<std::size_t>(octets));
  }

  // The bit rate from the next frame on
  Result<std::monostate, CodecError> setBitRate(int bitRate) noexcept {
    if (const int error = zppcEncoderSetBitRate(handle(), bitRate); error < 0) return CodecError(error);
    return std::monostate{};
  }

 private:
  using Stream::Stream;
};

class Decoder : public detail::Stream<ZppcDecoder, zppcDecoderSize, zppcDecoderInit> {
 public:
  static Result<Decoder, CodecError> create(const ZppcCodec& codec, const Options& options = {}) {
    auto block = startedBlock(codec, options);
    if (!block) return block.error();
    return Decoder(*std::move(block));
  }

  // Decodes a payload; an empty one stands for a frame for which nothing was sent. The speech is the first part of the buffer.
  Result<std::span<std::int16_t>, CodecError> decode(std::span<const std::uint8_t> payload,
                                                     std::span<std::int16_t> buffer) noexcept {
    static constexpr std::uint8_t nothing = 0;  // an empty span may have a null pointer, which would mean a loss
    return decoded(payload.empty() ? &nothing : payload.data(), payload.size(), buffer);
  }

  // Conceals a lost frame; of sample-based codecs, as much as the buffer holds.
  Result<std::span<std::int16_t>, CodecError> conceal(std::span<std::int16_t> buffer) noexcept {
    return decoded(nullptr, 0, buffer);
  }

 private:
  using Stream::Stream;

  Result<std::span<std::int16_t>, CodecError> decoded(const std::uint8_t* payload, std::size_t octets,
                                                      std::span<std::int16_t> buffer) noexcept {
    const int samples = zppcDecode(handle(), payload, detail::count(octets), buffer.data(), detail::count(buffer.size()));
    if (samples < 0) return CodecError(samples);
    return buffer.first(static_cast<std::size_t>(samples));
  }
};

}  // namespace zpp

#endif
