// kernels_test [--seed N] [--bench | --count] [NAME]: compares all processor variants of this build with the portable kernels,
// times them, or has callgrind count the instructions of the one that the library uses.
#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_DUMP_STATS_AT(what) (void)(what)
#endif

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "kernels/rig.h"

namespace test {

void checkVariants(const std::string& kernel, const Options&, Tally& tally,
                   const std::function<std::string(const std::string&, Content, Place, int)>& attempt,
                   const std::vector<std::string>& variants, const Sizes& sizes) {
  std::vector<Place> places = {{Place::Kind::end, 0}, {Place::Kind::start, 0}};
  for (unsigned offset = 0; offset < 16; offset += 2) places.push_back({Place::Kind::middle, offset});
  for (const auto& variant : variants) {
    std::string failure;
    for (const int size : sizes.tested)
      for (int content = 0; content < static_cast<int>(Content::count) && failure.empty(); ++content)
        for (const Place place : places) {
          failure = attempt(variant, static_cast<Content>(content), place, size);
          if (failure.empty()) continue;
          std::printf("FAILED %s %s: %s (size %d, content %d, place %d+%u)\n", kernel.c_str(), variant.c_str(), failure.c_str(),
                      size, content, static_cast<int>(place.kind), place.offset);
          break;
        }
    ++(failure.empty() ? tally.passed : tally.failed);
  }
}

void timeVariants(const std::string& kernel, int size, const std::vector<std::string>& names,
                  const std::vector<std::function<void(int)>>& repeat) {
  using Clock = std::chrono::steady_clock;
  const auto nanoseconds = [](const std::function<void(int)>& f, int rounds) {
    const auto begin = Clock::now();
    f(rounds);
    return std::chrono::duration<double, std::nano>(Clock::now() - begin).count() / rounds / 16;
  };
  int rounds = 1;
  while (nanoseconds(repeat[0], rounds) * rounds * 16 < 4e5) rounds *= 2;
  // The contenders take turns, so that a disturbance of the machine meets all of them; the median counts.
  std::vector<std::vector<double>> times(names.size());
  for (int turn = 0; turn < 15; ++turn)
    for (std::size_t v = 0; v < names.size(); ++v) times[v].push_back(nanoseconds(repeat[v], rounds));
  for (auto& t : times) std::sort(t.begin(), t.end());
  for (std::size_t v = 0; v < names.size(); ++v) {
    const auto& t = times[v];
    std::printf("%-44s %5d  %s %9.1f ns  x%.2f  spread %.0f %%\n", kernel.c_str(), size, names[v].c_str(), t[7],
                times[0][7] / t[7], 100 * (t[11] - t[3]) / t[7]);
  }
}

void countVariants(const std::string& kernel, int size, const std::vector<std::function<void(int)>>& repeat) {
  const std::string what = kernel + ' ' + std::to_string(size);
  repeat.back()(1);
  CALLGRIND_ZERO_STATS;
  repeat.back()(1);
  CALLGRIND_DUMP_STATS_AT(what.c_str());
}

}  // namespace test

int main(int argc, char** argv) {
  test::Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--seed" && i + 1 < argc)
      options.seed = std::strtoull(argv[++i], nullptr, 0);
    else if (argument == "--bench")
      options.bench = true;
    else if (argument == "--count")
      options.bench = options.count = true;
    else
      options.filter = argument;
  }
  std::printf("%d bit, level %d, seed %llu\n", static_cast<int>(sizeof(void*)) * 8, static_cast<int>(zpp::buildLevel),
              static_cast<unsigned long long>(options.seed));
  test::Tally tally;
  for (auto run :
       {test::runCoreKernels, test::runLpcKernels, test::runG729Kernels, test::runG723Kernels, test::runAmrKernels,
        test::runG726Kernels, test::runG7221Kernels, test::runAmrWbKernels, test::runG728Kernels, test::runGsmFrKernels})
    run(options, tally);
  if (!options.bench) std::printf("%d passed, %d failed\n", tally.passed, tally.failed);
  return tally.failed != 0;
}
