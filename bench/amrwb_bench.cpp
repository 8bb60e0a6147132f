// AMR-WB of libvo-amrwbenc and libopencore-amrwb on the same signal.
#include <benchmark/benchmark.h>
#include <opencore-amrwb/dec_if.h>
#include <vo-amrwbenc/enc_if.h>

#include <string>

#include "report.h"
#include "speech.h"

namespace {

constexpr std::size_t kFrameSize = 320, kMostOctets = 61;

struct Rate {
  const char* name;
  int mode;
  std::size_t octets;
};
constexpr Rate kRates[] = {{"12.65", 2, 33}, {"23.85", 8, 61}};

std::vector<std::uint8_t> encode(const Rate& rate, const std::vector<std::int16_t>& speech) {
  std::vector<std::uint8_t> stream(speech.size() / kFrameSize * rate.octets + kMostOctets);
  void* const coder = E_IF_init();
  for (std::size_t frame = 0; frame < speech.size() / kFrameSize; ++frame)
    E_IF_encode(coder, rate.mode, speech.data() + kFrameSize * frame, stream.data() + rate.octets * frame, 0);
  E_IF_exit(coder);
  return stream;
}

void timeEncoder(benchmark::State& state, const Rate& rate) {
  const auto speech = speechLike(16000);
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(encode(rate, speech));
  report(state, speech.size(), 16000);
}

void timeDecoder(benchmark::State& state, const Rate& rate) {
  const auto speech = speechLike(16000);
  const auto stream = encode(rate, speech);
  std::vector<std::int16_t> decoded(speech.size());
  for ([[maybe_unused]] auto _ : state) {
    void* const coder = D_IF_init();
    for (std::size_t frame = 0; frame < speech.size() / kFrameSize; ++frame)
      D_IF_decode(coder, stream.data() + rate.octets * frame, decoded.data() + kFrameSize * frame, 0);
    D_IF_exit(coder);
  }
  report(state, speech.size(), 16000);
}

const bool registered = [] {
  for (const Rate& rate : kRates) {
    const std::string name = std::string("peer_amr-wb-") + rate.name;
    benchmark::RegisterBenchmark((name + "_encode").c_str(), [&rate](benchmark::State& state) { timeEncoder(state, rate); });
    benchmark::RegisterBenchmark((name + "_decode").c_str(), [&rate](benchmark::State& state) { timeDecoder(state, rate); });
  }
  return true;
}();

}  // namespace
