// G.726 of libspandsp on the same signal, one code a byte as in our own library.
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

BENCHMARK(peer_g726_encode)->Arg(16000)->Arg(24000)->Arg(32000)->Arg(40000);
BENCHMARK(peer_g726_decode)->Arg(16000)->Arg(24000)->Arg(32000)->Arg(40000);

}  // namespace
