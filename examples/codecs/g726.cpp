#include "g726.h"

#include <algorithm>

namespace codecs {
namespace {

constexpr Zpp32s linearOutput = 2;  // the decoder's law: samples instead of companded code words

Zpp32s rateOf(int width) {
  constexpr Zpp32s rates[] = {ZPP_RATE_16000, ZPP_RATE_24000, ZPP_RATE_32000, ZPP_RATE_40000};
  return rates[width - 2];
}

std::optional<BitOrder> orderOf(std::string_view framing) {
  if (framing == "codes") return std::nullopt;
  return framing == "aal2" ? BitOrder::msbFirst : BitOrder::lsbFirst;
}

}  // namespace

G726Encoder::G726Encoder(std::string_view framing, int width) : order_(orderOf(framing)), width_(width) {
  Zpp32s size = 0;
  require(zppsEncodeGetStateSize_G726_16s8u(&size));
  state_.resize(static_cast<std::size_t>(size));
  require(zppsEncodeInit_G726_16s8u(state_.data(), rateOf(width)));
}

void G726Encoder::encode(std::span<const std::int16_t> samples, Bytes& stream) {
  if (samples.empty()) return;
  Samples uniform(samples.size());  // 14 bits
  std::ranges::transform(samples, uniform.begin(), [](int s) { return static_cast<std::int16_t>(s >> 2); });
  Bytes codes(samples.size());
  require(zppsEncode_G726_16s8u(state_.data(), uniform.data(), codes.data(), static_cast<Zpp32u>(codes.size())));
  if (order_) {
    packCodes(codes, width_, *order_, stream);
  } else {
    stream.insert(stream.end(), codes.begin(), codes.end());
  }
}

void G726Encoder::finish(std::span<const std::int16_t> rest, Bytes& stream) {
  if (rest.empty()) return;
  Samples group(rest.begin(), rest.end());
  if (order_) group.resize(static_cast<std::size_t>(g726Group(width_)));
  encode(group, stream);
}

G726Decoder::G726Decoder(std::string_view framing, int width) : order_(orderOf(framing)), width_(width) {
  Zpp32s size = 0;
  require(zppsDecodeGetStateSize_G726_8u16s(&size));
  state_.resize(static_cast<std::size_t>(size));
  require(zppsDecodeInit_G726_8u16s(state_.data(), rateOf(width), linearOutput));
}

std::size_t G726Decoder::decode(std::span<const std::uint8_t> stream, Samples& samples) {
  Bytes codes;
  if (order_) {
    const auto groupOctets = static_cast<std::size_t>(g726GroupOctets(width_));
    stream = stream.first(stream.size() / groupOctets * groupOctets);
    unpackCodes(stream, width_, *order_, codes);
  } else {
    codes.assign(stream.begin(), stream.end());
    if (std::ranges::any_of(codes, [this](unsigned code) { return code >> width_ != 0; })) {
      throw StreamError("a byte holds more than the " + std::to_string(width_) + " bits of a code");
    }
  }
  if (codes.empty()) return 0;
  const std::size_t start = samples.size();
  samples.resize(start + codes.size());
  const std::span decoded = std::span(samples).subspan(start);
  require(zppsDecode_G726_8u16s(state_.data(), codes.data(), decoded.data(), static_cast<Zpp32u>(codes.size())));
  std::ranges::transform(decoded, decoded.begin(), [](int s) { return static_cast<std::int16_t>(4 * s); });
  return stream.size();
}

}  // namespace codecs
