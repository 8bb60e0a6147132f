// GSM full rate of libgsm on the same signal.
#include <benchmark/benchmark.h>
#include <cstdint>

#include <gsm.h>

#include "report.h"
#include "speech.h"

namespace {

constexpr std::size_t kFrameSize = 160, kOctets = 33;

std::vector<std::uint8_t> encode(std::vector<std::int16_t> speech) {
  std::vector<std::uint8_t> stream(speech.size() / kFrameSize * kOctets);
  const gsm coder = gsm_create();
  for (std::size_t frame = 0; frame < speech.size() / kFrameSize; ++frame)
    gsm_encode(coder, speech.data() + kFrameSize * frame, stream.data() + kOctets * frame);
  gsm_destroy(coder);
  return stream;
}

void peer_gsm_encode(benchmark::State& state) {
  const auto speech = speechLike(8000);
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(encode(speech));
  report(state, speech.size(), 8000);
}

void peer_gsm_decode(benchmark::State& state) {
  const auto speech = speechLike(8000);
  auto stream = encode(speech);
  std::vector<std::int16_t> decoded(kFrameSize);
  for ([[maybe_unused]] auto _ : state) {
    const gsm coder = gsm_create();
    for (std::size_t at = 0; at < stream.size(); at += kOctets) gsm_decode(coder, stream.data() + at, decoded.data());
    gsm_destroy(coder);
  }
  report(state, speech.size(), 8000);
}

BENCHMARK(peer_gsm_encode);
BENCHMARK(peer_gsm_decode);

}  // namespace
