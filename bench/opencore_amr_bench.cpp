// GSM-AMR of libopencore-amrnb on the same signal.
#include <benchmark/benchmark.h>
#include <opencore-amrnb/interf_dec.h>
#include <opencore-amrnb/interf_enc.h>

#include <string>

#include "report.h"
#include "speech.h"

namespace {

constexpr std::size_t kFrameSize = 160, kMostOctets = 32;

struct Rate {
  const char* name;
  Mode mode;
  std::size_t octets;
};
constexpr Rate kRates[] = {{"4.75", MR475, 13}, {"7.95", MR795, 21}, {"12.2", MR122, 32}};

std::vector<std::uint8_t> encode(const Rate& rate, const std::vector<std::int16_t>& speech) {
  std::vector<std::uint8_t> stream(speech.size() / kFrameSize * rate.octets + kMostOctets);
  void* const coder = Encoder_Interface_init(0);
  for (std::size_t frame = 0; frame < speech.size() / kFrameSize; ++frame)
    Encoder_Interface_Encode(coder, rate.mode, speech.data() + kFrameSize * frame, stream.data() + rate.octets * frame, 0);
  Encoder_Interface_exit(coder);
  return stream;
}

void timeEncoder(benchmark::State& state, const Rate& rate) {
  const auto speech = speechLike(8000);
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(encode(rate, speech));
  report(state, speech.size(), 8000);
}

void timeDecoder(benchmark::State& state, const Rate& rate) {
  const auto speech = speechLike(8000);
  const auto stream = encode(rate, speech);
  std::vector<std::int16_t> decoded(speech.size());
  for ([[maybe_unused]] auto _ : state) {
    void* const coder = Decoder_Interface_init();
    for (std::size_t frame = 0; frame < speech.size() / kFrameSize; ++frame)
      Decoder_Interface_Decode(coder, stream.data() + rate.octets * frame, decoded.data() + kFrameSize * frame, 0);
    Decoder_Interface_exit(coder);
  }
  report(state, speech.size(), 8000);
}

const bool registered = [] {
  for (const Rate& rate : kRates) {
    const std::string name = std::string("peer_amr-") + rate.name;
    benchmark::RegisterBenchmark((name + "_encode").c_str(), [&rate](benchmark::State& state) { timeEncoder(state, rate); });
    benchmark::RegisterBenchmark((name + "_decode").c_str(), [&rate](benchmark::State& state) { timeDecoder(state, rate); });
  }
  return true;
}();

}  // namespace
