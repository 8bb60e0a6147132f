// Pitch analysis and adaptive codebook of G.729: decisions of the searches that fixed vectors hardly meet.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "core/fixed_point.h"
#include "g729/pitch/tables.h"
#include "zppsc.h"

namespace {

constexpr int kSubframe = 40, kPast = 154;
using Delay = std::array<Zpp16s, 2>;
using Vector = std::array<Zpp16s, kSubframe>;
using Search = decltype(&zppsAdaptiveCodebookSearch_G729_16s);

struct Subframe {
  std::vector<Zpp16s> exc = std::vector<Zpp16s>(kPast + kSubframe);
  Vector target{}, impulse{4096};

  // Noise as past excitation; the target is its continuation at the given delay, the response a single pulse.
  static Subframe withDelay(Delay delay) {
    Subframe s;
    unsigned noise = 4711;
    for (int n = 0; n < kPast; ++n) {
      noise = noise * 1664525u + 1013904223u;
      s.exc[static_cast<unsigned>(n)] = static_cast<Zpp16s>(static_cast<int>(noise >> 20) - 2048);
    }
    EXPECT_EQ(zppsDecodeAdaptiveVector_G729_16s(delay.data(), s.exc.data(), s.target.data()), zppStsOk);
    return s;
  }
  Delay found(Search search, int olDelay, int subframe) const {
    auto buffer = exc;
    Delay delay{};
    EXPECT_EQ(search(static_cast<Zpp16s>(olDelay), target.data(), impulse.data(), buffer.data(), subframe, delay.data()),
              zppStsOk);
    Vector decoded;
    EXPECT_EQ(zppsDecodeAdaptiveVector_G729_16s(delay.data(), exc.data(), decoded.data()), zppStsOk);
    EXPECT_TRUE(std::equal(decoded.begin(), decoded.end(), buffer.begin() + kPast)) << "the vector is not that of the delay";
    EXPECT_TRUE(std::equal(exc.begin(), exc.begin() + kPast, buffer.begin())) << "the past excitation was changed";
    return delay;
  }
};

// Samples of 14 bits and of more, with the signs of the taps or against them: from some level on, sums saturate on their way.
TEST(AdaptiveVector, SaturatesAtEveryStep) {
  int saturated = 0;
  for (const int level : {16382, 16383, 16384, 18003, 18020, 20000, 25000, 32767})
    for (const int lag : {20, 45, 80, 143})
      for (const int fraction : {-1, 0, 1})
        for (const bool against : {false, true}) {
          const int phase = fraction > 0 ? 3 - fraction : -fraction;
          std::array<Zpp16s, kPast + 40> exc{};
          Zpp16s* const now = exc.data() + kPast;
          for (int n = -kPast; n < 0; ++n) {
            const int k = n + lag + (fraction > 0 ? 1 : 0) - 17;  // of output 17: -9..10
            const bool negative = k > -10 && k < 11 && inter_3l[k > 0 ? 3 * k - phase : phase - 3 * k] < 0;
            now[n] = static_cast<Zpp16s>(negative == against ? level : ~level);
          }
          auto wanted = exc;
          const Zpp16s* x = wanted.data() + kPast - lag - (fraction > 0 ? 1 : 0);
          for (std::size_t n = 0; n < 40; ++n, ++x) {
            Zpp32s acc = 0;
            for (int i = 0; i < 10; ++i) {
              acc = zpp::macDbl(acc, x[-i], inter_3l[3 * i + phase]);
              acc = zpp::macDbl(acc, x[i + 1], inter_3l[3 * i + 3 - phase]);
            }
            saturated += acc == zpp::kMax32 || acc == zpp::kMin32 ? 1 : 0;
            wanted[kPast + n] = zpp::roundHigh16(acc);
          }
          const Delay delay{static_cast<Zpp16s>(lag), static_cast<Zpp16s>(fraction)};
          ASSERT_EQ(zppsDecodeAdaptiveVector_G729_16s_I(delay.data(), exc.data()), zppStsOk);
          ASSERT_EQ(exc, wanted) << level << ' ' << lag << ' ' << fraction;
        }
  EXPECT_GT(saturated, 50);
}

TEST(AdaptiveCodebookSearch, FindsTheDelayOfItsTarget) {
  for (const Search search : {zppsAdaptiveCodebookSearch_G729_16s, zppsAdaptiveCodebookSearch_G729A_16s})
    for (const int subframe : {0, 1})
      for (const int lag : {41, 60, 83, 84, 85, 120}) {
        for (const Zpp16s fraction : {-1, 0, 1}) {
          // Without fractions above 84 in subframe 0, a delay of a third less or more comes out as the integer.
          const Delay delay{static_cast<Zpp16s>(lag), fraction};
          const Delay expected{delay[0], subframe == 0 && lag > 84 ? Zpp16s{0} : fraction};
          EXPECT_EQ(Subframe::withDelay(delay).found(search, lag, subframe), expected) << lag << " " << fraction;
        }
      }
}

TEST(AdaptiveCodebookSearch, KeepsTheWholeRangeAtItsLimits) {
  const auto lagFound = [](Zpp16s lag, int olDelay, int subframe) {
    return Subframe::withDelay({lag, 0}).found(zppsAdaptiveCodebookSearch_G729_16s, olDelay, subframe)[0];
  };
  EXPECT_EQ(lagFound(137, 141, 0), 137);  // 138..144 becomes 137..143
  EXPECT_EQ(lagFound(143, 145, 0), 143);
  EXPECT_EQ(lagFound(134, 145, 1), 134);
  EXPECT_NE(lagFound(136, 141, 0), 136);
  EXPECT_NE(lagFound(133, 145, 1), 133);
  EXPECT_NE(lagFound(61, 65, 0), 61);
  EXPECT_EQ(lagFound(60, 65, 1), 60);
  EXPECT_EQ(lagFound(69, 65, 1), 69);
  EXPECT_NE(lagFound(70, 65, 1), 70);
}

// ITU-T G.729 Annex D, clause D.4: thirds from 5/3 below the fourth delay from the end to 1 above it
TEST(AdaptiveCodebookSearch, AnnexDHasThirdsAroundTheCentreOnly) {
  const int reference = 60;  // olDelay 60: 55..64
  for (int d = -5; d <= 4; ++d)
    for (const Zpp16s fraction : {-1, 0, 1}) {
      const Delay delay{static_cast<Zpp16s>(reference + d), fraction};
      const int thirds = 3 * d + fraction;
      const bool exists = fraction == 0 || (-6 < thirds && thirds < 4);
      const Delay expected{delay[0], exists ? fraction : Zpp16s{0}};
      EXPECT_EQ(Subframe::withDelay(delay).found(zppsAdaptiveCodebookSearch_G729D_16s, 60, 1), expected)
          << d << " " << fraction;
    }
}

TEST(ClosedLoopPitchSearch, TiesTakeTheLargestDelayAndTheFirstFraction) {
  const std::array<Zpp16s, 15> silence{};
  Zpp16s fraction = 9, delay = 9;
  _zppsClosedLoopPitchSearch_G729_16s(silence.data(), 0, 50, 56, &fraction, &delay);
  EXPECT_EQ(delay, 55);  // 56 - 2/3
  EXPECT_EQ(fraction, 1);
  _zppsClosedLoopPitchSearch_G729_16s(silence.data(), 0, 79, 85, &fraction, &delay);
  EXPECT_EQ(delay, 85);
  EXPECT_EQ(fraction, 0);
  _zppsClosedLoopPitchSearch_G729_16s(silence.data(), 1, 79, 85, &fraction, &delay);
  EXPECT_EQ(delay, 84);
  EXPECT_EQ(fraction, 1);
}

// At full scale all correlations saturate alike, and the favouring leads down to the shortest delay.
TEST(OpenLoopPitch, SaturatesAtFullScale) {
  for (const auto search : {zppsOpenLoopPitchSearch_G729_16s, zppsOpenLoopPitchSearch_G729A_16s})
    for (const Zpp16s level : {32767, -32768}) {
      const std::vector<Zpp16s> speech(143 + 80, level);
      Zpp16s delay = 0;
      EXPECT_EQ(search(speech.data() + 143, &delay), zppStsOk);
      EXPECT_EQ(delay, 20);
    }
}

// The searches on saturating sums, without a shorter way for signals of any level
class OpenLoop {
 public:
  static constexpr int kSpan = 143 + 80;
  OpenLoop(const std::vector<Zpp16s>& signal, int step) : step_(step), scaled_(signal) {
    const Zpp64s energy = 2 * energyOf(signal, step);
    for (Zpp16s& x : scaled_) {
      if (energy > zpp::kMax32) x = zpp::shr16(x, 3);
      if (energy < 1048576) x = zpp::shlSat16(x, 3);
    }
  }
  static Zpp64s energyOf(const std::vector<Zpp16s>& signal, int step) {
    Zpp64s sum = 0;
    for (std::size_t n = 0; n < signal.size(); n += static_cast<std::size_t>(step)) sum += Zpp64s{signal[n]} * signal[n];
    return sum;
  }
  Zpp32s correlation(int lag) const { return dot(0, lag, 0); }
  // The delay of the largest correlation, the smallest of several; then what the root of the energy leaves of it
  int best(int first, int last, int lagStep = 1) const {
    int lag = first;
    for (int l = first; l <= last; l += lagStep) lag = correlation(l) > correlation(lag) ? l : lag;
    return lag;
  }
  Zpp16s normalised(int lag) const {
    Zpp32s root = dot(lag, lag, step_ - 1);
    zppsInvSqrt_32s_I(&root, 1);
    return zpp::low16(zpp::mulDpf(zpp::toDpf(correlation(lag)), zpp::toDpf(root)));
  }

 private:
  // Saturated at each step, but once where every second sample is taken
  Zpp32s dot(int lag1, int lag2, Zpp64s sum) const {
    for (int n = 143; n < kSpan; n += step_) {
      sum += Zpp64s{2} * scaled_[static_cast<std::size_t>(n - lag1)] * scaled_[static_cast<std::size_t>(n - lag2)];
      if (step_ == 1) sum = zpp::sat32(sum);
    }
    return zpp::sat32(sum);
  }
  int step_;
  std::vector<Zpp16s> scaled_;
};

int openLoopDelay(const std::vector<Zpp16s>& signal) {
  const OpenLoop search(signal, 1);
  int lag = search.best(80, 143);
  for (const int shorter : {search.best(40, 79), search.best(20, 39)})
    if (search.normalised(shorter) > zpp::mulQ15(search.normalised(lag), 27853)) lag = shorter;
  return lag;
}

int openLoopDelayOfAnnexA(const std::vector<Zpp16s>& signal) {
  const OpenLoop search(signal, 2);
  const int shortest = search.best(20, 39), middle = search.best(40, 79), coarse = search.best(80, 142, 2);
  int longest = coarse;
  for (const int lag : {coarse + 1, coarse - 1})
    if (search.correlation(lag) > search.correlation(longest)) longest = lag;
  Zpp16s norms[] = {search.normalised(shortest), search.normalised(middle), search.normalised(longest)};
  const auto favour = [&](int lag, int multiple, Zpp16s& norm, int share) {
    if (std::abs(2 * lag - multiple) < 5) norm = zpp::addSat16(norm, share);
    if (std::abs(3 * lag - multiple) < 7) norm = zpp::addSat16(norm, share);
  };
  favour(middle, longest, norms[1], norms[2] >> 2);
  favour(shortest, middle, norms[0], zpp::mulQ15(norms[1], 6554));
  if (std::max(norms[0], norms[1]) < norms[2]) return longest;
  return norms[0] < norms[1] ? middle : shortest;
}

class OpenLoopPitchOf : public testing::Test {
 protected:
  std::mt19937 random{29};
  int between(int low, int high) { return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1)); }
  // A noisy period; samples of the one phase (odd offsets) and of the other at levels of their own
  std::vector<Zpp16s> voiced(int oddLevel, int evenLevel) {
    std::vector<Zpp16s> signal(OpenLoop::kSpan);
    const auto period = static_cast<std::size_t>(between(20, 143));
    for (std::size_t n = 0; n < signal.size(); ++n) {
      const int level = n % 2 == 0 ? oddLevel : evenLevel;
      const int past = n < period ? 0 : signal[n - period];
      signal[n] = static_cast<Zpp16s>(
          std::clamp(n < period ? between(-level, level) : past + between(-level, level) / 4, -level, level));
    }
    return signal;
  }
  // Gives the samples from `first` in steps of `step` the energy wanted: squares in the oldest ones make up what is missing.
  static void setEnergy(std::vector<Zpp16s>& signal, std::size_t first, std::size_t step, Zpp64s wanted) {
    Zpp64s energy = 0;
    std::size_t n = signal.size() - 1 - (signal.size() - 1 - first) % step;
    for (; n > first + 8 * step; n -= step) {
      if (energy + Zpp64s{signal[n]} * signal[n] > wanted) signal[n] = 0;
      energy += Zpp64s{signal[n]} * signal[n];
    }
    for (;; n -= step) {
      Zpp64s root = 0;
      while (root < 32767 && (root + 1) * (root + 1) <= wanted - energy) ++root;
      signal[n] = static_cast<Zpp16s>(root);
      energy += root * root;
      if (n == first) break;
    }
    ASSERT_EQ(energy, wanted);
  }
  static void check(const std::vector<Zpp16s>& signal, const std::string& what) {
    Zpp16s delay = 0;
    EXPECT_EQ(zppsOpenLoopPitchSearch_G729_16s(signal.data() + 143, &delay), zppStsOk);
    EXPECT_EQ(delay, openLoopDelay(signal)) << what;
    EXPECT_EQ(zppsOpenLoopPitchSearch_G729A_16s(signal.data() + 143, &delay), zppStsOk);
    EXPECT_EQ(delay, openLoopDelayOfAnnexA(signal)) << what << ", Annex A";
  }
};

TEST_F(OpenLoopPitchOf, LevelsThatDifferBetweenPhases) {
  for (int i = 0; i < 200; ++i)
    for (const int odd : {0, 1, 60, 120, 4000, 32767})
      for (const int even : {0, 90, 5000, 12000, 32767})
        check(voiced(odd, even), std::to_string(odd) + " " + std::to_string(even));
}

// Where the signal begins to be scaled, and where doubled sums begin to saturate
TEST_F(OpenLoopPitchOf, EnergiesAtTheBounds) {
  for (const Zpp64s bound : {Zpp64s{524288}, Zpp64s{1} << 30})
    for (const int offset : {-1, 0, 1})
      for (int i = 0; i < 50; ++i) {
        const int level = bound == 524288 ? 80 : 4400;
        const std::string what = std::to_string(bound + offset);
        auto signal = voiced(level, level);
        setEnergy(signal, 0, 1, bound + offset);
        check(signal, what);
        signal = voiced(level * 3 / 2, i % 2 == 0 ? level : 32767);
        setEnergy(signal, 0, 2, bound + offset);
        check(signal, what + " of the odd phase");
        signal = voiced(i % 2 == 0 ? level : 3000, level * 3 / 2);
        setEnergy(signal, 1, 2, bound + offset);
        check(signal, what + " of the even phase");
      }
}

TEST(DecodeAdaptiveVector, RefusesDelaysOutsideThePastExcitation) {
  std::vector<Zpp16s> exc(kPast + kSubframe, 100);
  const auto before = exc;
  Vector dst{};
  for (const Delay bad : {Delay{17, 1}, Delay{145, -1}, Delay{60, 2}, Delay{60, -2}, Delay{-32768, 0}, Delay{60, 32767}}) {
    EXPECT_EQ(zppsDecodeAdaptiveVector_G729_16s_I(bad.data(), exc.data()), zppStsBadCodedParam);
    EXPECT_EQ(zppsDecodeAdaptiveVector_G729_16s(bad.data(), exc.data(), dst.data()), zppStsBadCodedParam);
  }
  EXPECT_EQ(exc, before);
  EXPECT_EQ(dst, Vector{});
}

// A constant passes the interpolation filter with unit gain; at the shortest delay the vector is fed by its own first samples.
TEST(DecodeAdaptiveVector, PassesAConstantAtEveryDelay) {
  for (Zpp16s lag = 18; lag <= 144; ++lag)
    for (const Zpp16s fraction : {-1, 0, 1}) {
      const std::vector<Zpp16s> past(kPast, 10000);
      Vector dst{};
      const Delay delay{lag, fraction};
      EXPECT_EQ(zppsDecodeAdaptiveVector_G729_16s(delay.data(), past.data(), dst.data()), zppStsOk);
      for (const Zpp16s sample : dst) EXPECT_NEAR(sample, 10000, 100) << lag << " " << fraction;
    }
}

}  // namespace
