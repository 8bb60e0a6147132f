// G.729A of libbcg729 on the same signal.
#include <benchmark/benchmark.h>

extern "C" {  // its headers are C
#include <bcg729/decoder.h>
#include <bcg729/encoder.h>
}

#include "report.h"
#include "speech.h"

namespace {

constexpr std::size_t kFrameSize = 80, kOctets = 10;

std::vector<std::uint8_t> encode(const std::vector<std::int16_t>& speech) {
  std::vector<std::uint8_t> stream(speech.size() / kFrameSize * kOctets);
  bcg729EncoderChannelContextStruct* coder = initBcg729EncoderChannel(0);
  for (std::size_t frame = 0; frame < speech.size() / kFrameSize; ++frame) {
    std::uint8_t length = 0;
    bcg729Encoder(coder, speech.data() + kFrameSize * frame, stream.data() + kOctets * frame, &length);
  }
  closeBcg729EncoderChannel(coder);
  return stream;
}

void peer_g729a_encode(benchmark::State& state) {
  const auto speech = speechLike(8000);
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(encode(speech));
  report(state, speech.size(), 8000);
}

void peer_g729a_decode(benchmark::State& state) {
  const auto speech = speechLike(8000);
  auto stream = encode(speech);
  std::vector<std::int16_t> decoded(speech.size());
  for ([[maybe_unused]] auto _ : state) {
    bcg729DecoderChannelContextStruct* coder = initBcg729DecoderChannel();
    for (std::size_t frame = 0; frame < stream.size() / kOctets; ++frame)
      bcg729Decoder(coder, stream.data() + kOctets * frame, kOctets, 0, 0, 0, decoded.data() + kFrameSize * frame);
    closeBcg729DecoderChannel(coder);
  }
  report(state, speech.size(), 8000);
}

BENCHMARK(peer_g729a_encode);
BENCHMARK(peer_g729a_decode);

}  // namespace
