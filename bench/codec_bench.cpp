// Every codec that the program names: nanoseconds a sample and times real time of encoding and decoding, through the C API.
#include <benchmark/benchmark.h>

#include "codecs/framing/framing.h"
#include "report.h"
#include "speech.h"

namespace {

using codecs::framing::Entry;

// The payloads of a signal; sample-based codecs take packets of 20 ms.
struct Coded {
  std::vector<std::uint8_t> octets;
  std::vector<int> sizes;
  int packet, room;  // samples and octets of a packet
};

Coded prepared(const Entry& entry) {
  const ZppcCodec& codec = *entry.codec;
  const int frames = codec.features & ZPPC_FEATURE_SAMPLE_BASED ? codec.sampleRate / 50 / codec.frameSamples : 1;
  Coded coded{.octets = {}, .sizes = {}, .packet = frames * codec.frameSamples, .room = frames * codec.maxPayload};
  const auto packets = static_cast<std::size_t>(10 * codec.sampleRate / coded.packet);
  coded.octets.resize(packets * static_cast<std::size_t>(coded.room));
  coded.sizes.resize(packets);
  return coded;
}

void encodeAll(const Entry& entry, const std::vector<std::int16_t>& speech, Coded& coded) {
  ZppcEncoder* const encoder = zppcEncoderCreate(entry.codec, &entry.options, nullptr);
  for (std::size_t n = 0; n < coded.sizes.size(); ++n)
    coded.sizes[n] = zppcEncode(encoder, &speech[n * static_cast<std::size_t>(coded.packet)], coded.packet,
                                &coded.octets[n * static_cast<std::size_t>(coded.room)], coded.room);
  zppcEncoderDestroy(encoder);
}

void encode(benchmark::State& state, const Entry& entry) {
  const auto speech = speechLike(entry.codec->sampleRate);
  Coded coded = prepared(entry);
  for ([[maybe_unused]] auto _ : state) encodeAll(entry, speech, coded);
  report(state, coded.sizes.size() * static_cast<std::size_t>(coded.packet), entry.codec->sampleRate);
}

void decode(benchmark::State& state, const Entry& entry) {
  const auto speech = speechLike(entry.codec->sampleRate);
  Coded coded = prepared(entry);
  encodeAll(entry, speech, coded);
  std::vector<std::int16_t> decoded(static_cast<std::size_t>(coded.packet));
  for ([[maybe_unused]] auto _ : state) {
    ZppcDecoder* const decoder = zppcDecoderCreate(entry.codec, &entry.options, nullptr);
    for (std::size_t n = 0; n < coded.sizes.size(); ++n)
      zppcDecode(decoder, &coded.octets[n * static_cast<std::size_t>(coded.room)], coded.sizes[n], decoded.data(),
                 coded.packet);
    zppcDecoderDestroy(decoder);
  }
  report(state, coded.sizes.size() * static_cast<std::size_t>(coded.packet), entry.codec->sampleRate);
}

}  // namespace

int main(int argc, char** argv) {
  for (const Entry& codec : codecs::framing::catalogue()) {
    const std::string name(codec.name);
    benchmark::RegisterBenchmark((name + "/encode").c_str(), [&codec](benchmark::State& s) { encode(s, codec); });
    benchmark::RegisterBenchmark((name + "/decode").c_str(), [&codec](benchmark::State& s) { decode(s, codec); });
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
