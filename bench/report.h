// What every contender's benchmark reports: nanoseconds a sample and times real time.
#pragma once

#include <benchmark/benchmark.h>

inline void report(benchmark::State& state, std::size_t samples, int sampleRate) {
  const auto processed = static_cast<double>(state.iterations()) * static_cast<double>(samples);
  state.counters["ns/sample"] = benchmark::Counter(processed * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["x real time"] = benchmark::Counter(processed / sampleRate, benchmark::Counter::kIsRate);
}
