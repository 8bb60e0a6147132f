#include "codecs/framing/octets.h"

#include <algorithm>
#include <numeric>

namespace codecs::framing {
namespace {

constexpr int kLost = 255;

void appendAll(std::span<const std::uint8_t> payload, Bytes& stream) {
  stream.insert(stream.end(), payload.begin(), payload.end());
}

Bytes copyOf(std::span<const std::uint8_t> octets) { return Bytes(octets.begin(), octets.end()); }

int bitsPerSample(const Entry& entry, const ZppcOptions& options) { return options.bitRate / entry.codec->sampleRate; }

}  // namespace

std::size_t BareOctets::groupOctets() const { return static_cast<std::size_t>(bits_ / std::gcd(bits_, 8)); }

std::size_t BareOctets::octetsOf(int samples) const {
  const std::size_t octets = (static_cast<std::size_t>(samples) * static_cast<std::size_t>(bits_) + 7) / 8;
  return (octets + groupOctets() - 1) / groupOctets() * groupOctets();
}

void BareOctets::append(const CodedFrame& frame, Bytes& stream) {
  appendAll(frame.samples < 0 ? frame.payload : frame.payload.first(octetsOf(frame.samples)), stream);
}

std::optional<Frame> BareOctets::take(std::span<const std::uint8_t> stream, bool ended, bool single) {
  const std::size_t frame = bits_ == 0 ? static_cast<std::size_t>(octets_) : octetsOf(frameSamples_);
  std::size_t count = stream.size() / frame;
  if (count > 0) {
    if (single || bits_ == 0) count = 1;
    return Frame{.size = count * frame, .payload = copyOf(stream.first(count * frame))};
  }
  // A sample-based stream may end with fewer groups than a frame has.
  const std::size_t rest = bits_ == 0 ? 0 : stream.size() / groupOctets() * groupOctets();
  if (!ended || rest == 0) return std::nullopt;
  Frame last{.size = rest, .payload = copyOf(stream.first(rest)), .samples = static_cast<int>(8 * rest) / bits_};
  last.payload.resize(frame);
  return last;
}

void LengthAndOctets::append(const CodedFrame& frame, Bytes& stream) {
  stream.push_back(static_cast<std::uint8_t>(frame.payload.size()));
  appendAll(frame.payload, stream);
}

std::optional<Frame> LengthAndOctets::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (stream.empty()) return std::nullopt;
  const int length = stream[0];
  if (length == kLost) return Frame{.size = 1, .lost = true};
  if (length != 0 && std::ranges::find(sizes_, length) == sizes_.end())
    throw StreamError("a frame of " + std::to_string(length) + " octets where " + oneOf(sizes_, true) + " are expected");
  const std::size_t size = 1 + static_cast<std::size_t>(length);
  if (stream.size() < size) return std::nullopt;
  return Frame{.size = size, .payload = copyOf(stream.subspan(1, size - 1))};
}

void CodePerByte::append(const CodedFrame& frame, Bytes& stream) {
  const std::size_t all = 8 * frame.payload.size() / static_cast<std::size_t>(bits_);
  const std::size_t count = frame.samples < 0 ? all : static_cast<std::size_t>(frame.samples);
  unsigned window = 0;
  int held = 0;
  for (std::size_t n = 0, at = 0; n < count; ++n, held -= bits_, window >>= bits_) {
    for (; held < bits_; held += 8) window |= static_cast<unsigned>(frame.payload[at++]) << held;
    stream.push_back(static_cast<std::uint8_t>(window & ((1u << bits_) - 1)));
  }
}

std::optional<Frame> CodePerByte::take(std::span<const std::uint8_t> stream, bool ended, bool single) {
  const auto frame = static_cast<std::size_t>(frameSamples_);
  std::size_t count = stream.size() / frame * frame;
  if (single && count > 0) count = frame;
  if (count == 0 && ended) count = stream.size();
  if (count == 0) return std::nullopt;
  Frame taken{.size = count, .samples = static_cast<int>(count)};
  const std::size_t padded = (count + frame - 1) / frame * frame;
  unsigned window = 0;
  int held = 0;
  for (std::size_t n = 0; n < padded; ++n) {
    const unsigned code = n < count ? stream[n] : 0;
    if (code >> bits_ != 0) throw StreamError("a byte holds more than the " + std::to_string(bits_) + " bits of a code");
    window |= code << held;
    for (held += bits_; held >= 8; held -= 8, window >>= 8) taken.payload.push_back(static_cast<std::uint8_t>(window));
  }
  return taken;
}

std::unique_ptr<Framing> bareOctets(const Entry& entry, const ZppcOptions& options) {
  if (sampleBased(*entry.codec))
    return std::make_unique<BareOctets>(0, bitsPerSample(entry, options), entry.codec->frameSamples);
  return std::make_unique<BareOctets>(entry.octets.front(), 0, 0);
}

std::unique_ptr<Framing> lengthAndOctets(const Entry& entry, const ZppcOptions&) {
  return std::make_unique<LengthAndOctets>(entry.octets);
}

std::unique_ptr<Framing> octetsOrLength(const Entry& entry, const ZppcOptions& options) {
  return options.dtx != 0 || entry.everyRate ? lengthAndOctets(entry, options) : bareOctets(entry, options);
}

std::unique_ptr<Framing> codePerByte(const Entry& entry, const ZppcOptions& options) {
  return std::make_unique<CodePerByte>(bitsPerSample(entry, options), entry.codec->frameSamples);
}

std::string oneOf(const std::vector<int>& sizes, bool orNone) {
  std::vector<int> all = sizes;
  if (orNone) all.push_back(0);
  std::string text;
  for (std::size_t i = 0; i < all.size(); ++i)
    text += (i == 0 ? "" : i + 1 == all.size() ? " or " : ", ") + std::to_string(all[i]);
  return text;
}

}  // namespace codecs::framing
