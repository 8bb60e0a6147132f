// The hybrid window of Annex E over streams of frames.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include "core/fixed_point.h"
#include "g729/lsp/tables.h"
#include "support/golden.h"
#include "support/guarded.h"

namespace {

constexpr std::size_t kLength = 145, kLags = 31, kFrame = 80;

// A state block of the size that the library tells, at an odd address, which held rubbish before it was initialised
class State {
 public:
  State(ZppStatus (*sizeOf)(Zpp32s*), ZppStatus (*init)(void*)) {
    Zpp32s size = 0;
    EXPECT_EQ(sizeOf(&size), zppStsOk);
    block_ = memory_.claim(static_cast<std::size_t>(size), {test::Place::Kind::middle, 1}, 1);
    std::memset(block_, 0xA7, static_cast<std::size_t>(size));
    EXPECT_EQ(init(block_), zppStsOk);
  }
  ~State() { EXPECT_TRUE(memory_.canariesIntact()); }
  void* get() { return block_; }

 private:
  test::Guarded memory_{128};
  void* block_;
};

template <class Sample, class Sum, class Window>
void followStreams(const char* function, ZppStatus (*sizeOf)(Zpp32s*), ZppStatus (*init)(void*), Window window) {
  const auto streams = test::readGolden(std::string(TEST_DATA_DIR "/g729/") + function + ".cases");
  ASSERT_FALSE(streams.empty());
  for (const auto& stream : streams) {
    const auto& src = stream.in.at("src");
    const auto& expected = stream.out.at("dst");
    double largest = 0;
    for (const double e : expected) largest = std::max(largest, std::fabs(e));
    State state(sizeOf, init);
    for (std::size_t frame = 0; kFrame * frame + kLength <= src.size(); ++frame) {
      std::array<Sample, kLength> samples;
      std::array<Sum, kLags> sums;
      for (std::size_t n = 0; n < kLength; ++n) samples[n] = static_cast<Sample>(src[kFrame * frame + n]);
      ASSERT_EQ(window(samples.data(), sums.data(), state.get()), zppStsOk);
      for (std::size_t lag = 0; lag < kLags; ++lag)
        ASSERT_NEAR(static_cast<double>(sums[lag]), expected[kLags * frame + lag], stream.absolute + stream.relative * largest)
            << stream.label << ", frame " << frame << ", lag " << lag;
    }
  }
}

TEST(HybridWindow, FollowsStreams) {
  followStreams<Zpp16s, Zpp32s>("zppsWinHybrid_G729E_16s32s", zppsWinHybridGetStateSize_G729E_16s, zppsWinHybridInit_G729E_16s,
                                zppsWinHybrid_G729E_16s32s);
  followStreams<Zpp32f, Zpp32f>("zppsWinHybrid_G729E_32f", zppsWinHybridGetStateSize_G729E_32f, zppsWinHybridInit_G729E_32f,
                                zppsWinHybrid_G729E_32f);
}

// The standard's basic operators, step by step, for levels around those where sums begin to saturate and for sums that the
// state brings along from louder frames
TEST(HybridWindow, SaturatesStepByStep) {
  using namespace zpp;
  std::mt19937 random(1);
  int saturated = 0;
  for (const int level : {300, 3000, 6000, 9000, 32767})
    for (const int period : {1, 7, 80}) {
      State state(zppsWinHybridGetStateSize_G729E_16s, zppsWinHybridInit_G729E_16s);
      std::array<Zpp32s, kLags> sums = {}, dst;
      for (int frame = 0; frame < 12; ++frame) {
        const int amplitude = frame % 4 == 3 ? level / 30 : level;  // a quiet frame meets full sums
        std::array<Zpp16s, kLength> src, w;
        for (std::size_t n = 0; n < kLength; ++n) {
          const int noise = static_cast<int>(random() % static_cast<unsigned>(amplitude / 4 + 1));
          src[n] = static_cast<Zpp16s>((n / static_cast<std::size_t>(period)) % 2 ? noise - amplitude : amplitude - noise);
          w[n] = mulQ15(src[n], hw[n]);
        }
        ASSERT_EQ(zppsWinHybrid_G729E_16s32s(src.data(), dst.data(), state.get()), zppStsOk);
        for (std::size_t lag = 0; lag < kLags; ++lag) {
          Zpp32s recursive = 0;
          for (std::size_t n = 30; n < 110; ++n) recursive = macDbl(recursive, w[n], w[n - lag]);
          sums[lag] = addSat32(mulDpf16(toDpf(sums[lag]), 10368), recursive >> 1);
          Zpp32s whole = shlSat32(sums[lag], 1);
          for (std::size_t n = 110; n < kLength; ++n) whole = macDbl(whole, w[n], w[n - lag]);
          saturated += whole == kMax32 || whole == kMin32;
          ASSERT_EQ(dst[lag], whole >> 1) << "level " << level << ", frame " << frame << ", lag " << lag;
        }
      }
    }
  EXPECT_GT(saturated, 100);
}

}  // namespace
