// What the fuzz targets share: memory whose every overrun is seen, and a complaint that ends the run.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "codecs/framing/framing.h"

namespace fuzz {

using codecs::framing::sampleBased;

inline void expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken promise: %s\n", what);
  std::abort();
}

// Memory of exactly so many octets that ends where the allocation ends, so that the sanitizer sees what lies behind it; at an
// odd address wherever it starts at one.
class Block {
 public:
  explicit Block(std::size_t size, std::size_t shift = 0)
      : memory_(new unsigned char[size + shift]), data_(memory_.get() + shift), size_(size) {
    std::memset(data_, 0xa5, size);
  }
  unsigned char* data() const { return data_; }
  std::size_t size() const { return size_; }
  std::vector<unsigned char> copy() const { return {data_, data_ + size_}; }

 private:
  std::unique_ptr<unsigned char[]> memory_;
  unsigned char* data_;
  std::size_t size_;
};

// A stream in memory of its own, which moves about.
template <class Stream>
class Mover {
 public:
  Mover(long size, Stream* (*init)(void*, std::size_t, const ZppcCodec*, const ZppcOptions*, int*), const ZppcCodec* codec,
        const ZppcOptions& options, std::size_t shift)
      : block_(static_cast<std::size_t>(size), shift) {
    int error = 0;
    started_ = init(block_.data(), block_.size(), codec, &options, &error) != nullptr;
    expect(started_ == (error == 0), "an error and no stream, or a stream and no error");
  }
  bool started() const { return started_; }
  Stream* get() const { return reinterpret_cast<Stream*>(block_.data()); }
  Mover movedTo(std::size_t shift) const { return Mover(*this, shift); }
  std::vector<unsigned char> content() const { return block_.copy(); }

 private:
  Mover(const Mover& original, std::size_t shift) : block_(original.block_.size(), shift), started_(original.started_) {
    std::memcpy(block_.data(), original.block_.data(), block_.size());
  }
  Block block_;
  bool started_ = false;
};

using Encoder = Mover<ZppcEncoder>;
using Decoder = Mover<ZppcDecoder>;

// A codec of the table with options that it may have, or may not.
struct Choice {
  const ZppcCodec* codec;
  ZppcOptions options;
};
inline Choice choose(FuzzedDataProvider& data) {
  int count = 0;
  const ZppcCodec* const codecs = zppcCodecs(&count);
  const ZppcCodec* const codec = codecs + data.ConsumeIntegralInRange(0, count - 1);
  const int rate = data.ConsumeIntegralInRange(-1, codec->bitRateCount);
  ZppcOptions options = {};
  options.bitRate = rate < 0 ? 0 : rate < codec->bitRateCount ? codec->bitRates[rate] : data.ConsumeIntegral<int>();
  options.dtx = data.ConsumeIntegralInRange(0, 1);
  options.variant = data.ConsumeIntegralInRange(0, 2);
  return {codec, options};
}

inline std::vector<std::int16_t> pattern(std::size_t samples) { return std::vector<std::int16_t>(samples, 0x5a5a); }

}  // namespace fuzz
