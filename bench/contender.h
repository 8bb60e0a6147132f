// A library's coder of one codec as the benchmarks see it, and what is reported of it.
//
// Names are CODEC/DIRECTION/LIBRARY: what shares the first two does the same work on the same signal.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "speech.h"

using Samples = std::vector<std::int16_t>;
using Octets = std::vector<std::uint8_t>;

// Coder: encode(const Samples&) codes the signal from a fresh start and keeps the payloads, of which decode(Samples&) makes
// samples again; stateBytes: of an encoder and a decoder, where known.
template <class Coder>
void enter(const std::string& codec, const std::string& library, int sampleRate, const Coder& coder, double stateBytes = 0) {
  const auto report = [=](benchmark::State& state, std::size_t samples) {
    const auto processed = static_cast<double>(state.iterations()) * static_cast<double>(samples);
    using benchmark::Counter;
    state.counters["ns/sample"] = Counter(processed * 1e-9, Counter::kIsRate | Counter::kInvert);
    state.counters["x real time"] = Counter(processed / sampleRate, Counter::kIsRate);
    if (stateBytes > 0) state.counters["state"] = stateBytes;
  };
  benchmark::RegisterBenchmark((codec + "/encode/" + library).c_str(), [=](benchmark::State& state) {
    const Samples speech = speechLike(sampleRate);
    Coder mine(coder);
    for ([[maybe_unused]] auto _ : state) mine.encode(speech);
    report(state, speech.size());
  });
  benchmark::RegisterBenchmark((codec + "/decode/" + library).c_str(), [=](benchmark::State& state) {
    Samples speech = speechLike(sampleRate);
    Coder mine(coder);
    mine.encode(speech);
    for ([[maybe_unused]] auto _ : state) mine.decode(speech);
    report(state, speech.size());
  });
}

// One a peer, in <library>_bench.cpp, where it is installed
void enterSpandsp();
void enterBcg729();
void enterLibgsm();
void enterOpencoreAmrnb();
void enterAmrwb();
