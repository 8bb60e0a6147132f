// A signal that is coded into a framing's bytes, and back, in pieces of any size.
#pragma once

#include "codecs/framing/framing.h"

namespace codecs::framing {

using Samples = std::vector<std::int16_t>;

// What a stream is made of
struct Format {
  const Entry* entry;
  std::string_view framing;  // name
  ZppcOptions options;       // the entry's, with what the user adds
};
Format defaultFormat(const Entry& entry);
// The framing of that name; null if the entry has none.
const Choice* findFraming(const Entry& entry, std::string_view name);
// The entry of that name; null if there is none.
const Entry* findEntry(std::string_view name);

class StreamEncoder {
 public:
  // rates: indices of the bit rate, ascending, frame by frame; the last holds on. None: the rate of the options
  explicit StreamEncoder(const Format& format, std::vector<int> rates = {});
  // Codes the whole frames that are there by now, and appends their bytes to stream.
  void add(std::span<const std::int16_t> samples, Bytes& stream);
  // The end of the signal: sample-based codecs complete the last frame with silence, the others drop what is no whole frame.
  void finish(Bytes& stream);

 private:
  void encode(std::span<const std::int16_t> frames, int count, Bytes& stream);

  const ZppcCodec& codec_;
  std::unique_ptr<Framing> framing_;
  std::unique_ptr<ZppcEncoder, void (*)(ZppcEncoder*)> encoder_;
  std::vector<int> rates_;
  std::size_t frame_ = 0;
  Samples pending_;
  Bytes payload_, unsent_;
  bool begun_ = false;
};

// Frames that are taken for something else than the stream says
struct Reception {
  std::vector<bool> lost;         // by frame; those beyond are as the stream says
  std::vector<int> receiveTypes;  // by frame, the standard's numbers; those beyond are as the stream says
};

class StreamDecoder {
 public:
  explicit StreamDecoder(const Format& format, Reception reception = {});
  // Decodes the whole frames that are there by now, and appends their samples. Throws StreamError.
  void add(std::span<const std::uint8_t> bytes, Samples& samples);
  // The end of the stream. Returns how many bytes are left over, which are no whole frame.
  std::size_t finish(Samples& samples);

 private:
  void decode(bool ended, Samples& samples);
  void decode(const Frame& frame, Samples& samples);

  const ZppcCodec& codec_;
  std::unique_ptr<Framing> framing_;
  std::unique_ptr<ZppcDecoder, void (*)(ZppcDecoder*)> decoder_;
  Reception reception_;
  std::size_t frame_ = 0;
  Bytes pending_;
};

}  // namespace codecs::framing
