#include "codecs/g726/g726.h"

#include <algorithm>

namespace codecs::g726 {
namespace {

constexpr Zpp32s linearOutput = 2;  // the decoder's law: samples instead of companded code words
constexpr int kBlock = 32 * kGroup;

Zpp32s rateOf(int width) {
  constexpr Zpp32s rates[] = {ZPP_RATE_16000, ZPP_RATE_24000, ZPP_RATE_32000, ZPP_RATE_40000};
  return rates[width - 2];
}

}  // namespace

Packing::Packing(const Options& options)
    : width_(options.bitRate / 8000), order_(options.variant == 0 ? BitOrder::lsbFirst : BitOrder::msbFirst) {}

// A group of eight codes is a number of `width` octets, which starts at one of its ends.
void Packing::pack(const Zpp8u* codes, int count, Zpp8u* octets) const {
  for (; count > 0; count -= kGroup, codes += kGroup, octets += width_) {
    Zpp64s group = 0;
    if (order_ == BitOrder::lsbFirst) {
      for (int i = kGroup - 1; i >= 0; --i) group = group << width_ | codes[i];
      for (int i = 0; i < width_; ++i) octets[i] = static_cast<Zpp8u>(group >> (8 * i));
    } else {
      for (int i = 0; i < kGroup; ++i) group = group << width_ | codes[i];
      for (int i = 0; i < width_; ++i) octets[i] = static_cast<Zpp8u>(group >> (8 * (width_ - 1 - i)));
    }
  }
}

void Packing::unpack(const Zpp8u* octets, int count, Zpp8u* codes) const {
  const int mask = (1 << width_) - 1;
  for (; count > 0; count -= width_, codes += kGroup, octets += width_) {
    Zpp64s group = 0;
    if (order_ == BitOrder::lsbFirst) {
      for (int i = width_ - 1; i >= 0; --i) group = group << 8 | octets[i];
      for (int i = 0; i < kGroup; ++i) codes[i] = static_cast<Zpp8u>(group >> (width_ * i) & mask);
    } else {
      for (int i = 0; i < width_; ++i) group = group << 8 | octets[i];
      for (int i = 0; i < kGroup; ++i) codes[i] = static_cast<Zpp8u>(group >> (width_ * (kGroup - 1 - i)) & mask);
    }
  }
}

Encoder::Encoder(const Options& options) : packing_(options) {
  require(zppsEncodeInit_G726_16s8u(state_.data(), rateOf(packing_.width())));
}

void Encoder::encode(const Zpp16s* pcm, int samples, Zpp8u* payload) {
  std::array<Zpp16s, kBlock> uniform;  // 14 bits
  std::array<Zpp8u, kBlock> codes;
  for (int done = 0; done < samples; done += kBlock) {
    const int count = std::min(kBlock, samples - done);
    std::transform(pcm + done, pcm + done + count, uniform.begin(), [](int s) { return static_cast<Zpp16s>(s >> 2); });
    require(zppsEncode_G726_16s8u(state_.data(), uniform.data(), codes.data(), static_cast<Zpp32u>(count)));
    packing_.pack(codes.data(), count, payload + packing_.octetsOf(done));
  }
}

Decoder::Decoder(const Options& options) : packing_(options) {
  require(zppsDecodeInit_G726_8u16s(state_.data(), rateOf(packing_.width()), linearOutput));
}

void Decoder::decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
  std::array<Zpp8u, kBlock> codes;
  const int samples = packing_.codesOf(octets);
  for (int done = 0; done < samples; done += kBlock) {
    const int count = std::min(kBlock, samples - done);
    packing_.unpack(payload + packing_.octetsOf(done), packing_.octetsOf(count), codes.data());
    require(zppsDecode_G726_8u16s(state_.data(), codes.data(), pcm + done, static_cast<Zpp32u>(count)));
    std::transform(pcm + done, pcm + done + count, pcm + done, [](int s) { return static_cast<Zpp16s>(4 * s); });
  }
}

}  // namespace codecs::g726
