// The excitation's codebooks of G.729 in single precision: what the searches promise, by exhaustive comparison in double
// precision, and silence, denormals and NaN, which fixed vectors do not reach.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "zppsc.h"

namespace {

constexpr int kSubframe = 40, kPast = 154;
using Vector = std::array<Zpp32f, kSubframe>;

class Codebook32f : public testing::Test {
 protected:
  Zpp32f uniform(float amplitude) { return std::uniform_real_distribution<Zpp32f>(-amplitude, amplitude)(random_); }
  Vector noise(float amplitude) {
    Vector v;
    for (auto& x : v) x = uniform(amplitude);
    return v;
  }
  // A decaying impulse response that starts with 1
  Vector response() {
    const float decay = 0.55f + uniform(0.35f);
    Vector h{1};
    float level = 1;
    for (std::size_t n = 1; n < h.size(); ++n) h[n] = uniform(level *= decay);
    return h;
  }

  std::mt19937 random_{729};
};

// Energy of a code vector through the impulse response, and its correlation with a backward-filtered target
double filteredEnergy(const Vector& code, const Vector& h) {
  double energy = 0;
  for (std::size_t n = 0; n < h.size(); ++n) {
    double y = 0;
    for (std::size_t k = 0; k <= n; ++k) y += double{code[k]} * double{h[n - k]};
    energy += y * y;
  }
  return energy;
}
double correlation(const Vector& a, const Vector& b) {
  double sum = 0;
  for (std::size_t n = 0; n < a.size(); ++n) sum += double{a[n]} * double{b[n]};
  return sum;
}
double merit(const Vector& code, const Vector& target, const Vector& h) {
  const double c = correlation(code, target);
  return c * c / filteredEnergy(code, h);
}

struct Found {
  Vector code, filtered;
  std::array<Zpp16s, 2> word;
  Zpp16s budget;
};

Found fourPulses(const Vector& target, const Vector& h, Zpp16s budget) {
  Found f{};
  std::array<Zpp32f, 616> matrix;
  EXPECT_EQ(zppsToeplizMatrix_G729_32f(h.data(), matrix.data()), zppStsOk);
  f.budget = budget;
  EXPECT_EQ(zppsFixedCodebookSearch_G729_32f(target.data(), matrix.data(), f.code.data(), f.word.data(), &f.budget, 1),
            zppStsOk);
  return f;
}
Found tree(const Vector& target, const Vector& h) {
  Found f{};
  std::array<Zpp32f, 616> matrix;
  EXPECT_EQ(zppsToeplizMatrix_G729_32f(h.data(), matrix.data()), zppStsOk);
  EXPECT_EQ(zppsFixedCodebookSearch_G729A_32f(target.data(), matrix.data(), f.code.data(), f.word.data()), zppStsOk);
  return f;
}
Found twoPulses(const Vector& target, const Vector& h) {
  Found f{};
  EXPECT_EQ(
      zppsFixedCodebookSearch_G729D_32f(target.data(), h.data(), f.code.data(), f.filtered.data(), &f.word[0], &f.word[1]),
      zppStsOk);
  return f;
}

// The code vectors of a sign word and a position word
Vector decodeFour(int signs, int positions) {
  Vector code{};
  for (int n = 0; n < 4; ++n) {
    const int field = n < 3 ? positions >> 3 * n & 7 : positions >> 9;
    const int sample = n < 3 ? 5 * field + n : 5 * (field / 2) + 3 + field % 2;
    code[static_cast<std::size_t>(sample)] = (signs >> n & 1) != 0 ? 1.0f : -1.0f;
  }
  return code;
}
Vector decodeTwo(int signs, int positions) {
  const auto fromGray = [](int g) { return g ^ g >> 1 ^ g >> 2 ^ g >> 3 ^ g >> 4; };
  const int first = fromGray(positions & 15), second = fromGray(positions >> 4);
  const int sample[2] = {5 * (first / 2) + (first % 2 == 0 ? 1 : 3),
                         second < 24 ? 5 * (second / 3) + second % 3 * 2 : 5 * (second - 24) + 1};
  Vector code{};
  for (int n = 0; n < 2; ++n) code[static_cast<std::size_t>(sample[n])] += (signs >> n & 1) != 0 ? 1.0f : -1.0f;
  return code;
}
// The sign word that follows the target at the pulses of a position word
template <class Decode>
int signsOf(Decode decode, int positions, int pulses, const Vector& target) {
  int signs = 0;
  for (int n = 0; n < pulses; ++n) {
    const Vector both = decode(0, positions), one = decode(1 << n, positions);
    for (std::size_t k = 0; k < both.size(); ++k)
      if (both[k] != one[k] && target[k] >= 0) signs |= 1 << n;
  }
  return signs;
}

TEST_F(Codebook32f, FourPulsesAreTheBestOfThosePromising) {
  for (int round = 0; round < 6; ++round) {
    const Vector target = noise(1000), h = response();
    const Found found = fourPulses(target, h, 32000);
    EXPECT_EQ(found.code, decodeFour(found.word[0], found.word[1]));
    double sum = 0, most = 0;
    for (std::size_t track = 0; track < 3; ++track) {
      double largest = 0;
      for (std::size_t n = track; n < target.size(); n += 5) {
        sum += std::fabs(double{target[n]});
        largest = std::max(largest, std::fabs(double{target[n]}));
      }
      most += largest;
    }
    const double threshold = sum / 8 + 0.4 * (most - sum / 8);
    double best = 0;
    int triples = 0;
    for (int positions = 0; positions < 8192; ++positions) {
      double three = 0;
      for (int n = 0; n < 3; ++n)
        three += std::fabs(double{target[static_cast<std::size_t>(5 * (positions >> 3 * n & 7) + n)]});
      if (!(three > threshold)) continue;
      if (positions < 512) ++triples;
      best = std::max(best, merit(decodeFour(signsOf(decodeFour, positions, 4, target), positions), target, h));
    }
    EXPECT_EQ(found.budget, 32000 + 75 - triples);
    EXPECT_NEAR(merit(found.code, target, h) / best, 1, 1e-5);
    // The tree looks at 320 of the 8192, but seldom misses much.
    const Found quick = tree(target, h);
    EXPECT_EQ(quick.code, decodeFour(quick.word[0], quick.word[1]));
    EXPECT_GT(merit(quick.code, target, h) / best, 0.6);
  }
}

TEST_F(Codebook32f, TwoPulsesAreTheBestOfAll) {
  for (int round = 0; round < 40; ++round) {
    const Vector target = noise(1000), h = response();
    const Found found = twoPulses(target, h);
    EXPECT_EQ(found.code, decodeTwo(found.word[0], found.word[1]));
    double best = 0;
    for (int positions = 0; positions < 512; ++positions)
      best = std::max(best, merit(decodeTwo(signsOf(decodeTwo, positions, 2, target), positions), target, h));
    EXPECT_NEAR(merit(found.code, target, h) / best, 1, 1e-5);
    for (std::size_t n = 0; n < h.size(); ++n) {
      double y = 0;
      for (std::size_t k = 0; k <= n; ++k) y += double{found.code[k]} * double{h[n - k]};
      EXPECT_NEAR(double{found.filtered[n]}, y, 1e-5);
    }
  }
}

// With the impulse as response each pulse adds alone: the two positions of each track on which target and residual agree most.
TEST_F(Codebook32f, TenAndTwelvePulsesHaveTwoOrThreeInEachTrack) {
  for (int round = 0; round < 50; ++round)
    for (const Zpp16s mode : {0, 1}) {
      const Vector target = noise(1000), residual = noise(300), h = response();
      Vector code, filtered;
      std::array<Zpp16s, 5> index;
      ASSERT_EQ(zppsFixedCodebookSearch_G729E_32f(mode, target.data(), residual.data(), h.data(), code.data(), filtered.data(),
                                                  index.data()),
                zppStsOk);
      std::array<int, 5> pulses{};
      for (std::size_t n = 0; n < code.size(); ++n) pulses[n % 5] += static_cast<int>(std::fabs(code[n]));
      const auto start = static_cast<std::size_t>(mode == 0 ? 0 : index[0] / 1024);
      ASSERT_LT(start, 5u);
      for (std::size_t n = 0; n < 5; ++n) {
        const bool three = mode != 0 && n < 2;
        EXPECT_EQ(pulses[(start + n) % 5], three ? 3 : 2);
        EXPECT_EQ((n == 0 ? index[0] % 1024 : index[n]) >> (three ? 10 : 7), 0);
      }
      // Correlated with the code vector they chose, the pulses must beat any set of signs from chance.
      EXPECT_GT(correlation(filtered, target), 0);
    }
}

// Nothing but the order of candidates and the starting values decides here.
TEST_F(Codebook32f, SilenceDenormalsAndNaNLeaveValidCodewords) {
  const Vector h = response();
  Vector silence{}, denormal, nan;
  denormal.fill(std::numeric_limits<Zpp32f>::denorm_min());
  nan.fill(std::numeric_limits<Zpp32f>::quiet_NaN());
  for (const Vector& target : {silence, denormal}) {
    const Found full = fourPulses(target, h, -100), quick = tree(target, h), two = twoPulses(target, h);
    EXPECT_EQ(full.word, (std::array<Zpp16s, 2>{15, 0}));
    EXPECT_EQ(quick.word, (std::array<Zpp16s, 2>{15, 0}));
    EXPECT_EQ(two.word, (std::array<Zpp16s, 2>{3, 1}));
  }
  for (const Found& found : {fourPulses(nan, h, 5), tree(nan, h)}) EXPECT_EQ(found.code, decodeFour(0, found.word[1]));
  EXPECT_EQ(twoPulses(nan, h).code, decodeTwo(0, 1));
}

TEST_F(Codebook32f, AdaptiveVectorContinuesAPeriodicExcitation) {
  for (const int lag : {18, 19, 29, 39, 40, 57, 100, 143, 144})
    for (const int fraction : {-1, 0, 1}) {
      const double period = lag + fraction / 3.0;
      const auto wave = [&](int n) { return std::sin(2 * M_PI * n / period) + 0.5 * std::cos(4 * M_PI * n / period); };
      std::vector<Zpp32f> exc(kPast + kSubframe);
      for (int n = 0; n < kPast; ++n) exc[static_cast<std::size_t>(n)] = static_cast<Zpp32f>(wave(n - kPast));
      const Zpp16s delay[2] = {static_cast<Zpp16s>(lag), static_cast<Zpp16s>(fraction)};
      ASSERT_EQ(zppsDecodeAdaptiveVector_G729_32f_I(delay, exc.data()), zppStsOk);
      // One third of a sample is a phase of at least 2 pi / 430, 0.015.
      for (int n = 0; n < kSubframe; ++n)
        ASSERT_NEAR(double{exc[static_cast<std::size_t>(kPast + n)]}, wave(n), 0.02) << lag << " " << fraction << " " << n;
    }
}

// Every pointer and every index of a delay comes from integers: the pitch search stays within its range.
TEST_F(Codebook32f, OpenLoopDelayStaysInItsRange) {
  const Zpp32f inf = std::numeric_limits<Zpp32f>::infinity(), huge = std::numeric_limits<Zpp32f>::max();
  for (const Zpp32f extreme : {std::numeric_limits<Zpp32f>::quiet_NaN(), inf, -inf, huge, -huge})
    for (int round = 0; round < 50; ++round) {
      std::vector<Zpp32f> wsp(223);
      for (auto& x : wsp) x = uniform(1) > 0.9f ? extreme : uniform(1000);
      Zpp16s delay = -1;
      ASSERT_EQ(zppsOpenLoopPitchSearch_G729A_32f(wsp.data() + 143, &delay), zppStsOk);
      EXPECT_TRUE(delay >= 20 && delay <= 143) << delay;
    }
}

// A constant is alike at every delay: correlations of different precision would prefer a long one.
TEST_F(Codebook32f, OpenLoopDelayOfAConstantIsTheShortest) {
  for (const Zpp32f level : {1.f, 1234.567f, 30000.f, 32767.f, -32768.f}) {
    const std::vector<Zpp32f> wsp(223, level);
    Zpp16s delay = -1;
    ASSERT_EQ(zppsOpenLoopPitchSearch_G729A_32f(wsp.data() + 143, &delay), zppStsOk);
    EXPECT_EQ(delay, 20) << level;
  }
}

TEST_F(Codebook32f, RunningGainDecaysToZeroInSilence) {
  const std::vector<Zpp32f> silence(kSubframe);
  Zpp32f gain = 1;
  for (int s = 0; s < 200; ++s) {
    std::vector<Zpp32f> signal(kSubframe, 1.f);
    ASSERT_EQ(zppsGainControl_G729_32f_I(silence.data(), signal.data(), &gain), zppStsOk);
  }
  EXPECT_EQ(gain, 0);
}

}  // namespace
