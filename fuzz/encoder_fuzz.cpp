// Every encoder on arbitrary speech with switched rates, and its decoder on what it gives.
#include <algorithm>

#include "fuzz.h"

using namespace fuzz;

namespace {

// Samples of the kinds that drive encoders to their limits
std::vector<std::int16_t> speech(FuzzedDataProvider& data, std::size_t samples) {
  std::vector<std::int16_t> pcm(samples);
  const int kind = data.ConsumeIntegralInRange(0, 5);
  if (kind == 0) {  // as it comes
    const auto octets = data.ConsumeBytes<std::uint8_t>(2 * samples);
    if (!octets.empty()) std::memcpy(pcm.data(), octets.data(), octets.size());
    return pcm;
  }
  const auto amplitude = data.ConsumeIntegral<std::int16_t>(), offset = data.ConsumeIntegral<std::int16_t>();
  const auto period = data.ConsumeIntegralInRange<std::size_t>(1, 300);
  std::uint32_t random = data.ConsumeIntegral<std::uint32_t>();
  for (std::size_t n = 0; n < samples; ++n) {
    random = random * 1664525u + 1013904223u;
    const int noise = static_cast<int>(random >> 16) - 32768;
    const bool high = n / period % 2 == 0, pulse = n % period == 0;
    const int value = kind == 1   ? offset
                      : kind == 2 ? (high ? amplitude : offset)
                      : kind == 3 ? (pulse ? amplitude : 0)
                      : kind == 4 ? noise * amplitude / 32768 + offset
                                  : noise;
    pcm[n] = static_cast<std::int16_t>(std::clamp(value, -32768, 32767));
  }
  return pcm;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const auto [codec, options] = choose(data);
  Encoder encoder(zppcEncoderSize(codec), zppcEncoderInit, codec, options, 1);
  const Decoder decoder(zppcDecoderSize(codec), zppcDecoderInit, codec, options, 1);
  if (!encoder.started()) return 0;
  const auto frame = static_cast<std::size_t>(codec->frameSamples);
  const bool ofSamples = sampleBased(*codec);
  while (data.remaining_bytes() > 0) {
    if (data.ConsumeBool()) {
      const int rate = data.ConsumeIntegralInRange(0, codec->bitRateCount - 1);
      const int error = zppcEncoderSetBitRate(encoder.get(), codec->bitRates[rate]);
      expect((error == 0) == ((codec->features & ZPPC_FEATURE_RATE_SWITCH) != 0), "the rate switches where it may");
    }
    const std::size_t frames = ofSamples ? data.ConsumeIntegralInRange<std::size_t>(1, 20) : 1;
    auto pcm = speech(data, frames * frame);
    pcm.shrink_to_fit();
    const auto before = pcm;
    Encoder twin = encoder.movedTo(data.ConsumeIntegralInRange<std::size_t>(0, 3));
    const std::size_t room = frames * static_cast<std::size_t>(codec->maxPayload);
    const Block payload(room, 1), other(room, 2);
    const auto encode = [&](const Encoder& one, const Block& to) {
      return zppcEncode(one.get(), pcm.data(), static_cast<int>(pcm.size()), to.data(), static_cast<int>(room));
    };
    const int octets = encode(encoder, payload);
    expect(octets >= 0 && octets <= static_cast<int>(room), "a frame has a payload");
    expect(pcm == before, "the speech is only read");
    expect(encode(twin, other) == octets && payload.copy() == other.copy(), "a copied stream goes on as the original");
    encoder = std::move(twin);
    if (!decoder.started()) continue;
    std::vector<std::int16_t> heard(pcm.size());
    const int samples = zppcDecode(decoder.get(), payload.data(), octets, heard.data(), static_cast<int>(heard.size()));
    expect(samples == static_cast<int>(pcm.size()), "the decoder takes what the encoder gives");
  }
  return 0;
}
