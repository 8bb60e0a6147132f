// Pitch analysis and adaptive codebook of G.729: decisions of the searches that fixed vectors hardly meet.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

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

// Annex A scales by the energy of the odd samples alone: loud even samples saturate once, in the doubled sum.
TEST(OpenLoopPitch, AnnexASurvivesLoudEvenSamples) {
  std::vector<Zpp16s> speech(143 + 80);
  for (unsigned n = 1; n < speech.size(); n += 2) speech[n] = n % 100 < 50 ? 32767 : -32768;
  Zpp16s delay = 0;
  EXPECT_EQ(zppsOpenLoopPitchSearch_G729A_16s(speech.data() + 143, &delay), zppStsOk);
  EXPECT_EQ(delay, 100);
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
