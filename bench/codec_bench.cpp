// Every codec of examples/codecs: nanoseconds a sample and times real time of encoding and decoding.
#include <benchmark/benchmark.h>

#include "codec.h"
#include "report.h"
#include "speech.h"

namespace {

std::span<const std::int16_t> wholeFrames(const codecs::Codec& codec, const codecs::Samples& speech) {
  const auto frame = static_cast<std::size_t>(codec.samplesPerFrame);
  return std::span(speech).first(speech.size() / frame * frame);
}

void encode(benchmark::State& state, const codecs::Codec& codec) {
  const auto speech = speechLike(codec.sampleRate);
  codecs::Bytes stream;
  for ([[maybe_unused]] auto _ : state) {
    stream.clear();
    codec.makeEncoder(codec.framings.front())->encode(wholeFrames(codec, speech), stream);
  }
  report(state, speech.size(), codec.sampleRate);
}

void decode(benchmark::State& state, const codecs::Codec& codec) {
  const auto speech = speechLike(codec.sampleRate);
  codecs::Bytes stream;
  codec.makeEncoder(codec.framings.front())->encode(wholeFrames(codec, speech), stream);
  codecs::Samples decoded;
  for ([[maybe_unused]] auto _ : state) {
    decoded.clear();
    codec.makeDecoder(codec.framings.front())->decode(stream, decoded);
  }
  report(state, decoded.size(), codec.sampleRate);
}

}  // namespace

int main(int argc, char** argv) {
  for (const auto& codec : codecs::registry()) {
    const std::string name(codec.name);
    benchmark::RegisterBenchmark((name + "/encode").c_str(), [&codec](benchmark::State& s) { encode(s, codec); });
    benchmark::RegisterBenchmark((name + "/decode").c_str(), [&codec](benchmark::State& s) { decode(s, codec); });
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
