#include "codecs/framing/parameters.h"

#include <numeric>

#include "codecs/bit_stream.h"

namespace codecs::framing {
namespace {

std::vector<unsigned> parametersIn(std::span<const std::uint8_t> payload, const ParameterLayout& layout) {
  BitReader reader(payload);
  reader.skip(layout.signatureBits);
  std::vector<unsigned> parameters;
  for (const int width : layout.widths) parameters.push_back(static_cast<unsigned>(reader.bits(width)));
  return parameters;
}

Bytes payloadOf(const std::vector<unsigned>& parameters, const ParameterLayout& layout) {
  Bytes payload(layout.octets());
  BitWriter writer(payload);
  writer.put(layout.signature, layout.signatureBits);
  for (std::size_t i = 0; i < parameters.size(); ++i) writer.put(parameters[i], layout.widths[i]);
  return payload;
}

}  // namespace

int ParameterLayout::bits() const { return std::accumulate(widths.begin(), widths.end(), 0); }

void SignedOctets::append(const CodedFrame& frame, Bytes& stream) {
  stream.insert(stream.end(), frame.payload.begin(), frame.payload.end());
}

std::optional<Frame> SignedOctets::take(std::span<const std::uint8_t> stream, bool, bool) {
  if (stream.size() < layout_.octets()) return std::nullopt;
  const auto octets = stream.first(layout_.octets());
  const bool lost = octets[0] >> (8 - layout_.signatureBits) != static_cast<int>(layout_.signature);
  return Frame{.size = octets.size(), .lost = lost, .payload = Bytes(octets.begin(), octets.end())};
}

void ParameterWords::append(const CodedFrame& frame, Bytes& stream) {
  unsigned flags = dtx_ ? frame.flags : 0;
  for (const unsigned parameter : parametersIn(frame.payload, layout_)) {
    appendWord(parameter | (flags & 1) << 15, stream);
    flags >>= 1;
  }
}

std::optional<Frame> ParameterWords::take(std::span<const std::uint8_t> stream, bool, bool) {
  const std::size_t count = layout_.widths.size();
  if (stream.size() < 2 * count) return std::nullopt;
  std::vector<unsigned> parameters;
  for (std::size_t i = 0; i < count; ++i) parameters.push_back(wordAt(stream, i));
  return Frame{.size = 2 * count, .payload = payloadOf(parameters, layout_)};
}

void PairedParameters::append(const CodedFrame& frame, Bytes& stream) {
  const auto perBlock = static_cast<std::size_t>(layout_.bits()) / 4;  // octets
  block_.resize(perBlock);
  int at = second_ ? layout_.bits() : 0;
  const std::vector<unsigned> parameters = parametersIn(frame.payload, layout_);
  for (std::size_t i = 0; i < parameters.size(); ++i)
    for (int bit = 0; bit < layout_.widths[i]; ++bit, ++at)
      block_[static_cast<std::size_t>(at / 8)] |= static_cast<std::uint8_t>((parameters[i] >> bit & 1) << at % 8);
  second_ = !second_;
  if (second_) return;
  stream.insert(stream.end(), block_.begin(), block_.end());
  block_.clear();
}

std::optional<Frame> PairedParameters::take(std::span<const std::uint8_t> stream, bool, bool) {
  const auto perBlock = static_cast<std::size_t>(layout_.bits()) / 4;
  if (stream.size() < perBlock) return std::nullopt;
  int at = second_ ? layout_.bits() : 0;
  std::vector<unsigned> parameters;
  for (const int width : layout_.widths) {
    unsigned parameter = 0;
    for (int bit = 0; bit < width; ++bit, ++at) parameter |= (stream[static_cast<std::size_t>(at / 8)] >> at % 8 & 1u) << bit;
    parameters.push_back(parameter);
  }
  // The octets of a block are taken with its second frame.
  const std::size_t size = second_ ? perBlock : 0;
  second_ = !second_;
  return Frame{.size = size, .payload = payloadOf(parameters, layout_)};
}

}  // namespace codecs::framing
