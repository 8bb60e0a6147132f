#include "codecs/framing/amr_files.h"

#include "codecs/amr/frame.h"
#include "codecs/framing/storage.h"

namespace codecs::framing {
namespace {

constexpr std::size_t kWords = 250, kModeWord = 1 + amr::kMaxBits;
constexpr unsigned kNoMode = 0xffff;
constexpr int kNoData = 7, kTypes = 8;
// A sender's types: speech, first descriptor, update, nothing; then degraded and bad speech, bad descriptor, onset. A
// receiver's: good, degraded speech, onset, bad speech, first descriptor, update, bad descriptor, no data.
constexpr int kReceivedAs[kTypes] = {0, 4, 5, 7, 1, 3, 6, 2};
enum { kSpeech, kFirst, kUpdate, kNothing };

}  // namespace

void AmrWords::append(const CodedFrame& frame, Bytes& stream) {
  amr::FrameBits bits;
  unsigned type = kNothing, mode = kNoMode;
  if (frame.payload.empty()) {
    if (!frame.unsent.empty()) amr::unpackSid(frame.unsent.data(), bits);
  } else if (const amr::PayloadHead head(frame.payload[0]); head.type < amr::kModes) {
    type = kSpeech;
    mode = static_cast<unsigned>(head.type);
    amr::unpackSpeech(frame.payload.data(), head.type, bits);
  } else {
    const amr::SidHead sid = amr::unpackSid(frame.payload.data(), bits);
    type = sid.update ? kUpdate : kFirst;
    mode = static_cast<unsigned>(sid.mode);
  }
  appendWord(received_ ? static_cast<unsigned>(kReceivedAs[type]) : type, stream);
  for (int n = 0; n < amr::kMaxBits; ++n) appendWord(bits.at[n], stream);
  appendWord(mode, stream);
  for (std::size_t n = kModeWord + 1; n < kWords; ++n) appendWord(0, stream);
}

std::optional<Frame> AmrWords::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (stream.size() < 2 * kWords) return std::nullopt;
  const unsigned type = wordAt(stream, 0);
  if (type >= kTypes) throw StreamError("a frame of type " + std::to_string(type) + " where 0 to 7 are expected");
  Frame frame{.size = 2 * kWords};
  frame.receiveType = received_ ? static_cast<int>(type) : kReceivedAs[type];
  // Whatever the type, the bits go to the decoder as those of speech; without data they have no mode of their own: all of them.
  const unsigned mode = frame.receiveType == kNoData ? unsigned{amr::k1220} : wordAt(stream, kModeWord);
  if (mode >= amr::kModes) throw StreamError("a frame of mode " + std::to_string(mode) + " where 0 to 7 are expected");
  amr::FrameBits bits;
  for (std::size_t n = 0; n < amr::kMaxBits; ++n) {
    const unsigned word = wordAt(stream, 1 + n);
    if (word > 1) throw StreamError("a word of " + std::to_string(word) + " where a bit is expected");
    bits.at[n] = static_cast<Zpp8u>(word);
  }
  frame.payload.resize(amr::kMaxPayload);
  frame.payload.resize(static_cast<std::size_t>(amr::packSpeech(bits, static_cast<int>(mode), frame.payload.data())));
  return frame;
}

std::unique_ptr<Framing> amrStorage(const Entry&, const ZppcOptions&) {
  static constexpr AmrStorage::Sizes sizes = {13, 14, 16, 18, 20, 21, 27, 32, 6, 1, 1, 1, 1, 1, 1, 1};
  return std::make_unique<AmrStorage>("#!AMR\n", sizes);
}
std::unique_ptr<Framing> amrSentWords(const Entry&, const ZppcOptions&) { return std::make_unique<AmrWords>(false); }
std::unique_ptr<Framing> amrReceivedWords(const Entry&, const ZppcOptions&) { return std::make_unique<AmrWords>(true); }

}  // namespace codecs::framing
