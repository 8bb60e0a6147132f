// G.711 and G.726 of libspandsp on the same signal, one code a byte as in our own library.
#include <benchmark/benchmark.h>
#include <cstdint>

#include <spandsp.h>

#include "report.h"
#include "speech.h"

namespace {

void peer_g726_encode(benchmark::State& state) {
  const auto speech = speechLike(8000);
  std::vector<std::uint8_t> codes(speech.size());
  g726_state_t* coder = g726_init(nullptr, static_cast<int>(state.range(0)), G726_ENCODING_LINEAR, G726_PACKING_NONE);
  for ([[maybe_unused]] auto _ : state) g726_encode(coder, codes.data(), speech.data(), static_cast<int>(speech.size()));
  g726_free(coder);
  report(state, speech.size(), 8000);
}

void peer_g726_decode(benchmark::State& state) {
  const auto speech = speechLike(8000);
  std::vector<std::uint8_t> codes(speech.size());
  std::vector<std::int16_t> decoded(speech.size());
  g726_state_t* coder = g726_init(nullptr, static_cast<int>(state.range(0)), G726_ENCODING_LINEAR, G726_PACKING_NONE);
  g726_encode(coder, codes.data(), speech.data(), static_cast<int>(speech.size()));
  for ([[maybe_unused]] auto _ : state) g726_decode(coder, decoded.data(), codes.data(), static_cast<int>(codes.size()));
  g726_free(coder);
  report(state, speech.size(), 8000);
}

void peer_g711_encode(benchmark::State& state) {
  const auto speech = speechLike(8000);
  std::vector<std::uint8_t> codes(speech.size());
  for ([[maybe_unused]] auto _ : state) {
    if (state.range(0) == 0)
      for (std::size_t n = 0; n < speech.size(); ++n) codes[n] = linear_to_ulaw(speech[n]);
    else
      for (std::size_t n = 0; n < speech.size(); ++n) codes[n] = linear_to_alaw(speech[n]);
    benchmark::DoNotOptimize(codes.data());
    benchmark::ClobberMemory();
  }
  report(state, speech.size(), 8000);
}

void peer_g711_decode(benchmark::State& state) {
  std::vector<std::uint8_t> codes(speechLike(8000).size());
  for (std::size_t n = 0; n < codes.size(); ++n) codes[n] = static_cast<std::uint8_t>(n * 37);
  std::vector<std::int16_t> decoded(codes.size());
  for ([[maybe_unused]] auto _ : state) {
    if (state.range(0) == 0)
      for (std::size_t n = 0; n < codes.size(); ++n) decoded[n] = ulaw_to_linear(codes[n]);
    else
      for (std::size_t n = 0; n < codes.size(); ++n) decoded[n] = alaw_to_linear(codes[n]);
    benchmark::DoNotOptimize(decoded.data());
    benchmark::ClobberMemory();
  }
  report(state, codes.size(), 8000);
}

// 0: mu-law, 1: A-law
BENCHMARK(peer_g711_encode)->Arg(0)->Arg(1);
BENCHMARK(peer_g711_decode)->Arg(0)->Arg(1);
BENCHMARK(peer_g726_encode)->Arg(16000)->Arg(24000)->Arg(32000)->Arg(40000);
BENCHMARK(peer_g726_decode)->Arg(16000)->Arg(24000)->Arg(32000)->Arg(40000);

}  // namespace
