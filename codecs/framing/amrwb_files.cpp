#include "codecs/framing/amrwb_files.h"

#include <stdexcept>

#include "codecs/amrwb/payload.h"

namespace codecs::framing {
namespace {

using namespace amrwb;

// First words: of an encoder's frames, and of frames as received, which G.192 calls lost
constexpr unsigned kSent = 0x6b21, kReceived = 0x6b20;
constexpr unsigned kOne = 0x81, kZero = 0x7f;           // of G.192
constexpr unsigned kPlusOne = 127, kMinusOne = 0xff81;  // 127 and -127

// Types of an encoder's frames
enum : unsigned { kSpeech, kFirst, kUpdate, kNothing };

constexpr AmrStorage::Sizes kSizes = [] {
  AmrStorage::Sizes sizes{};
  for (int type = 0; type < 16; ++type) sizes[static_cast<std::size_t>(type)] = octetsOf(type);
  return sizes;
}();

amrwb::Frame unpacked(std::span<const std::uint8_t> payload) {
  amrwb::Frame frame;
  if (!payload.empty() && !unpack(payload.data(), static_cast<int>(payload.size()), frame))
    throw std::logic_error("a payload that AMR-WB does not have");
  return frame;
}

Bytes packed(const amrwb::Frame& frame) {
  Bytes payload(kMaxPayload);
  payload.resize(static_cast<std::size_t>(pack(frame, payload.data())));
  return payload;
}

// Reads count words from the index-th on as bits; false if one is none of both.
bool readBits(std::span<const std::uint8_t> stream, std::size_t index, int count, unsigned one, unsigned zero,
              FrameBits& bits) {
  bits.count = 0;
  for (int n = 0; n < count; ++n) {
    const unsigned word = wordAt(stream, index + static_cast<std::size_t>(n));
    if (word != one && word != zero) return false;
    bits.put(word == one ? 1 : 0, 1);
  }
  return true;
}

// Frame type with so many bits; none: one without bits
int typeWithBits(unsigned count) {
  for (int type = 0; type <= frameNoise; ++type)
    if (count == static_cast<unsigned>(bitsOf(type))) return type;
  return frameNoData;
}

}  // namespace

AmrWbStorage::AmrWbStorage() : AmrStorage("#!AMR-WB\n", kSizes) {}

std::optional<Frame> AmrWbStorage::take(std::span<const std::uint8_t> stream, bool ended, bool single) {
  auto frame = AmrStorage::take(stream, ended, single);
  if (frame && frame->payload.empty()) frame->payload.assign(1, stream[frame->size - 1]);
  return frame;
}

void AmrWbWords::append(const CodedFrame& frame, Bytes& stream) {
  amrwb::Frame inner = unpacked(frame.payload);
  const bool speech = inner.type < kModes;
  unsigned type = speech ? kSpeech : kUpdate;
  // Of the first frame of comfort noise only that it is one is sent, of later ones often nothing.
  if (!speech && !inner.update) {
    type = afterSpeech_ ? kFirst : kNothing;
    inner = unpacked(frame.unsent);
  }
  afterSpeech_ = speech;
  appendWord(kSent, stream);
  appendWord(type, stream);
  appendWord(static_cast<unsigned>(inner.mode), stream);
  for (int n = 0; n < inner.bits.count; ++n) appendWord(inner.bits.bit[n] != 0 ? kPlusOne : kMinusOne, stream);
}

std::optional<Frame> AmrWbWords::take(std::span<const std::uint8_t> stream, bool, bool) {
  constexpr std::size_t head = 3;
  if (stream.size() < 2 * head) return std::nullopt;
  const unsigned first = wordAt(stream, 0), type = wordAt(stream, 1), mode = wordAt(stream, 2);
  if (first != kSent && first != kReceived) throw StreamError("a frame that begins with the word " + std::to_string(first));
  if (type > (first == kSent ? unsigned{kNothing} : 7u)) throw StreamError("a frame of type " + std::to_string(type));
  if (mode >= kModes) throw StreamError("a frame of mode " + std::to_string(mode) + " where 0 to 8 are expected");
  constexpr ReceiveType receivedAs[4] = {speechGood, noiseFirst, noiseUpdate, noData};
  const ReceiveType receiveType = first == kSent ? receivedAs[type] : static_cast<ReceiveType>(type);

  amrwb::Frame inner;
  inner.type = receiveType < noiseFirst ? static_cast<int>(mode) : frameNoise;
  inner.mode = static_cast<int>(mode);
  const int count = bitsOf(inner.type);
  const std::size_t size = 2 * (head + static_cast<std::size_t>(count));
  if (stream.size() < size) return std::nullopt;
  if (!readBits(stream, head, count, kPlusOne, kMinusOne, inner.bits))
    throw StreamError("a word where 127 or -127 is expected for a bit");
  return Frame{.size = size, .receiveType = withMode(receiveType, inner.mode), .payload = packed(inner)};
}

void AmrWbSerial::append(const CodedFrame& frame, Bytes& stream) {
  const amrwb::Frame inner = unpacked(frame.payload);
  const int count = inner.type < kModes || inner.update ? inner.bits.count : 0;
  appendWord(kSent, stream);
  appendWord(static_cast<unsigned>(count), stream);
  for (int n = 0; n < count; ++n) appendWord(inner.bits.bit[n] != 0 ? kOne : kZero, stream);
}

std::optional<Frame> AmrWbSerial::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (stream.size() < 4) return std::nullopt;
  const unsigned first = wordAt(stream, 0), count = wordAt(stream, 1);
  if (first != kSent && first != kReceived) throw StreamError("a frame that begins with the word " + std::to_string(first));
  amrwb::Frame inner;
  inner.type = typeWithBits(count);
  if (first == kSent && count != 0 && inner.type == frameNoData)
    throw StreamError("a frame of " + std::to_string(count) + " bits, which no rate has");
  const std::size_t size = 2 * (2 + std::size_t{count});
  if (stream.size() < size) return std::nullopt;

  Frame frame{.size = size};
  frame.receiveType = speechLost;
  if (readBits(stream, 2, bitsOf(inner.type), kOne, kZero, inner.bits)) {
    if (first == kSent) {
      frame.receiveType = inner.type < kModes ? speechGood : inner.type == frameNoise ? noiseUpdate : noData;
      if (count == 0 && afterSpeech_) frame.receiveType = noiseFirst;
      afterSpeech_ = frame.receiveType == speechGood;
    }
  } else {
    inner.type = frameLost;
  }
  frame.payload = packed(inner);
  return frame;
}

std::unique_ptr<Framing> amrWbStorage(const Entry&, const ZppcOptions&) { return std::make_unique<AmrWbStorage>(); }
std::unique_ptr<Framing> amrWbWords(const Entry&, const ZppcOptions&) { return std::make_unique<AmrWbWords>(); }
std::unique_ptr<Framing> amrWbSerial(const Entry&, const ZppcOptions&) { return std::make_unique<AmrWbSerial>(); }

}  // namespace codecs::framing
