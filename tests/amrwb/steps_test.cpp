// Filters that compute without the standard's steps where a bound allows it, against those steps: on both sides of the bounds,
// with the signals that reach them.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "amrwb/filters/kernels.h"
#include "amrwb/filters/tables.h"
#include "amrwb/pitch/kernels.h"
#include "amrwb/pitch/tables.h"

namespace {

using namespace zpp;
using V16 = std::vector<Zpp16s>;

std::mt19937 random(20);
int number(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random); }

// Full scale with the taps' signs or against them, and now and then something else
Zpp16s extreme(int tap) {
  if (number(0, 9) == 0) return static_cast<Zpp16s>(number(-32768, 32767));
  return tap < 0 ? -32768 : 32767;
}
V16 signalFor(const Zpp16s* taps, int count, bool opposite) {
  V16 x(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) x[static_cast<std::size_t>(i)] = extreme(opposite ? -taps[i] : taps[i]);
  return x;
}
Zpp16s stepwise(const Zpp16s* x, const Zpp16s* taps, int count, int shift) {
  Zpp32s sum = 0;
  for (int i = 0; i < count; ++i) sum = macDbl(sum, x[i], taps[i]);
  return roundHigh16(shlSat32(sum, shift));
}

TEST(Steps, ResamplingDoesWithoutAtAnyLevel) {
  for (int run = 0; run < 400; ++run) {
    const int phase = 1 + run % 4;
    const V16 loud = signalFor(upSamplingTaps[4 * phase % 5], 24, run % 8 > 3);
    for (const auto kernel : {ownUpSampling_AMRWB_16s, ownUpSampling_AMRWB_16s_PX}) {
      V16 memory(24), src(4), dst(5);
      std::copy_n(loud.begin(), 23 - 4 * phase / 5, memory.begin() + 1 + 4 * phase / 5);
      std::copy(loud.begin() + 23 - 4 * phase / 5, loud.end(), src.begin());
      V16 signal = memory;
      signal.insert(signal.end(), src.begin(), src.end());
      kernel(src.data(), dst.data(), 4, memory.data());
      for (std::size_t j = 0; j < 5; ++j)
        EXPECT_EQ(dst[j], stepwise(&signal[1 + 4 * j / 5], upSamplingTaps[4 * j % 5], 24, 1)) << phase << ' ' << j;
    }
  }
}

TEST(Steps, AdaptiveVectorDoesWithoutAtAnyLevel) {
  for (int run = 0; run < 400; ++run) {
    const int quarters = run % 4, lag = number(17, 200);
    const V16 loud = signalFor(excitationTaps[(4 - quarters) & 3], 32, run % 8 > 3);
    V16 start(248 + 65);
    for (std::size_t n = 0; n < 248; ++n) start[n] = loud[n % 32];
    V16 expected = start;
    Zpp16s* const now = expected.data() + 248;
    for (int n = 0; n <= 64; ++n)
      now[n] = stepwise(now + n - lag - 15 - (quarters > 0), excitationTaps[(4 - quarters) & 3], 32, 1);
    for (const auto kernel : {ownPredLt_AMRWB_16s_I, ownPredLt_AMRWB_16s_I_PX}) {
      V16 actual = start;
      kernel(actual.data() + 248, lag, quarters);
      EXPECT_EQ(actual, expected) << lag << ' ' << quarters;
    }
  }
}

// Coefficients whose magnitudes add up to `total`
V16 coefficients(int order, int total, Zpp16s first) {
  V16 a(static_cast<std::size_t>(order + 1));
  a[0] = first;
  for (int left = total; left > 0;) {
    Zpp16s& one = a[static_cast<std::size_t>(number(1, order))];
    const int added = std::min({left, number(1, 4000), 32767 - std::abs(one)});
    one = static_cast<Zpp16s>(one == 0 && number(0, 1) == 0 ? -added : one + (one < 0 ? -added : added));
    left -= added;
  }
  return a;
}

TEST(Steps, ResidualsAreThoseOfTheStepsOnBothSidesOfTheBound) {
  constexpr int bound = 63488;  // magnitudesThatRound(4) / 32768
  for (int run = 0; run < 600; ++run) {
    V16 lpc = coefficients(16, bound - 4096 + number(-2, 2) + (run % 3 == 0 ? number(-8000, 40000) : 0), 4096);
    if (run % 50 == 0) lpc[static_cast<std::size_t>(number(0, 16))] = -32768;
    V16 signal(16 + 64), reversed(lpc.rbegin(), lpc.rend());
    for (std::size_t n = 0; n < signal.size(); ++n) signal[n] = extreme(run % 2 == 0 ? reversed[n % 17] : -reversed[n % 17]);
    for (const auto kernel : {ownResidualFilter_AMRWB_16s, ownResidualFilter_AMRWB_16s_PX}) {
      V16 dst(64);
      kernel(lpc.data(), signal.data() + 16, dst.data(), 64);
      for (std::size_t n = 0; n < 64; ++n) {
        Zpp32s sum = 0;
        for (std::size_t j = 0; j <= 16; ++j) sum = macDbl(sum, lpc[j], signal[16 + n - j]);
        EXPECT_EQ(dst[n], roundHigh16(shlSat32(sum, 4))) << run << ' ' << n;
      }
    }
  }
}

TEST(Steps, SynthesisIsThatOfTheStepsOnBothSidesOfTheBound) {
  for (int run = 0; run < 600; ++run) {
    const int order = run % 2 == 0 ? 16 : 20, shift = number(1, 5);
    const auto bound = static_cast<int>(magnitudesThatRound(shift) / 32768);
    const auto factor = static_cast<Zpp16s>(number(100, 4096));
    const V16 lpc = coefficients(order, bound - factor + number(-2, 2) + (run % 3 == 0 ? number(-9000, 9000) : 0), 4096);
    V16 expected(64), start(static_cast<std::size_t>(order));
    for (std::size_t n = 0; n < start.size(); ++n)
      start[n] = extreme(run % 4 < 2 ? lpc[start.size() - n] : -lpc[start.size() - n]);
    for (Zpp16s& x : expected) x = extreme(number(-1, 1));
    const V16 src = expected;
    V16 past = start;
    for (Zpp16s& x : expected) {
      Zpp32s sum = mulDbl(x, factor);
      for (std::size_t j = 1; j <= start.size(); ++j) sum = msuDbl(sum, lpc[j], past[past.size() - j]);
      past.push_back(x = roundHigh16(shlSat32(sum, shift)));
    }
    for (const auto kernel : {ownSynthesisFilter_AMRWB_16s_I, ownSynthesisFilter_AMRWB_16s_I_PX}) {
      V16 actual = src, memory = start;
      kernel(lpc.data(), order, factor, shift, actual.data(), 64, memory.data());
      EXPECT_EQ(actual, expected) << run;
      EXPECT_EQ(memory, V16(past.end() - order, past.end())) << run;
    }
  }
}

TEST(Steps, FineSynthesisIsThatOfTheStepsOnBothSidesOfTheBound) {
  for (int run = 0; run < 600; ++run) {
    const auto unit = static_cast<Zpp16s>(4096 >> number(0, 3));
    const int shift = norm16(unit) + 1, factor = unit >> 4;
    const auto bound = static_cast<int>(magnitudesThatRound(shift) / 32769);
    const V16 lpc = coefficients(16, bound - factor + number(-3, 3) + (run % 3 == 0 ? number(-40000, 90000) : 0), unit);
    std::vector<Zpp32s> start(16 + 64), expected;
    for (std::size_t n = 0; n < 16; ++n) {
      start[n] = extreme(run % 4 < 2 ? lpc[16 - n] : -lpc[16 - n]) * 4096 + number(0, 4095);
      if (run % 20 == 0) start[n] = start[n] * 2;  // no output of the filter
    }
    V16 src(64);
    for (Zpp16s& x : src) x = extreme(number(-1, 1));
    expected = start;
    for (std::size_t n = 16; n < expected.size(); ++n) {
      Zpp32s sum = 0;
      for (std::size_t j = 1; j <= 16; ++j) sum = msuDbl(sum, static_cast<Zpp16s>(expected[n - j] & 4095), lpc[j]);
      sum = macDbl(sum >> 12, src[n - 16], static_cast<Zpp16s>(factor));
      for (std::size_t j = 1; j <= 16; ++j) sum = msuDbl(sum, low16(expected[n - j] >> 12), lpc[j]);
      expected[n] = shlSat32(sum, shift) >> 4;
    }
    for (const auto kernel : {ownSynthesisFilter_AMRWB_16s32s, ownSynthesisFilter_AMRWB_16s32s_PX}) {
      std::vector<Zpp32s> actual = start;
      kernel(lpc.data(), src.data(), actual.data() + 16, 64, 0);
      EXPECT_EQ(actual, expected) << run;
    }
  }
}

// Extremes of sample, factor and memory, a signal by itself and beside another
TEST(Steps, DeemphasisIsThatOfTheSteps) {
  for (int run = 0; run < 2000; ++run) {
    constexpr int kLen = 64;
    const Zpp16s gamma = run % 2 == 0 ? Zpp16s{22282} : extreme(number(-1, 0));
    const Zpp16s past[2] = {extreme(number(-1, 0)), extreme(number(-1, 0))};
    V16 signals[2], alone[2], expected[2];
    for (int k = 0; k < 2; ++k) {
      for (int n = 0; n < kLen; ++n) signals[k].push_back(extreme(run % 3 == 0 ? number(-1, 0) : past[k]));
      alone[k] = signals[k];
      Zpp16s y = past[k], mem = past[k];
      for (const Zpp16s x : signals[k]) expected[k].push_back(y = roundHigh16(macDbl(mulDbl(x, 16384), y, gamma)));
      ownDeemphasize_AMRWB_16s_I(alone[k].data(), kLen, gamma, &mem);
      ASSERT_EQ(alone[k], expected[k]);
      ASSERT_EQ(mem, y);
    }
    if (gamma == -32768) continue;
    ownDeemphasizeTwo_AMRWB_16s_I(signals[0].data(), signals[1].data(), kLen, gamma, past[0], past[1]);
    ASSERT_EQ(signals[0], expected[0]);
    ASSERT_EQ(signals[1], expected[1]);
  }
}

}  // namespace
