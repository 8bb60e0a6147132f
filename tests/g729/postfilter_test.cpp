// The postfilter beyond single calls with given results: streams, memories across subframes, and the edges of its ranges.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <random>

#include "core/fixed_point.h"
#include "support/golden.h"
#include "support/guarded.h"
#include "zppsc.h"

namespace {

using Subframe = std::array<Zpp16s, 40>;

template <class Array>
Array noise(int amplitude, unsigned seed) {
  std::mt19937 random(seed);
  Array a;
  for (auto& x : a) x = static_cast<Zpp16s>(static_cast<int>(random() % static_cast<unsigned>(2 * amplitude + 1)) - amplitude);
  return a;
}

// Streams at 6.4 kbit/s with subframes of other rates among them, from a state block at an odd address that held rubbish
TEST(PhaseDispersion, FollowsStreams) {
  const auto streams = test::readGolden(TEST_DATA_DIR "/g729/zppsPhaseDispersion_G729D_16s.cases");
  ASSERT_FALSE(streams.empty());
  for (const auto& stream : streams) {
    const auto sample = [&](const char* name, std::size_t i) { return static_cast<Zpp16s>(stream.in.at(name).at(i)); };
    Zpp32s size = 0;
    ASSERT_EQ(zppsPhaseDispersionGetStateSize_G729D_16s(&size), zppStsOk);
    test::Guarded memory(64);
    auto* state = memory.claim(static_cast<std::size_t>(size), {test::Place::Kind::middle, 1}, 1);
    std::memset(state, 0xA7, static_cast<std::size_t>(size));
    ASSERT_EQ(zppsPhaseDispersionInit_G729D_16s(state), zppStsOk);
    std::size_t done = 0;
    for (std::size_t i = 0; i < stream.in.at("process").size(); ++i) {
      const Zpp16s pitchGain = sample("pitchGain", i), codeGain = sample("codeGain", i);
      if (sample("process", i) == 0) {
        ASSERT_EQ(zppsPhaseDispersionUpdate_G729D_16s(pitchGain, codeGain, state), zppStsOk);
        continue;
      }
      Subframe excitation, code, dst, expected;
      for (std::size_t n = 0; n < 40; ++n) {
        excitation[n] = sample("excitation", done + n);
        code[n] = sample("code", done + n);
        expected[n] = static_cast<Zpp16s>(stream.out.at("dst").at(done + n));
      }
      ASSERT_EQ(zppsPhaseDispersion_G729D_16s(excitation.data(), code.data(), dst.data(), codeGain, pitchGain, state),
                zppStsOk);
      EXPECT_EQ(dst, expected) << stream.label << ", subframe " << i;
      done += 40;
    }
    EXPECT_TRUE(memory.canariesIntact());
  }
}

TEST(LongTermPostfilter, OfAnnexBTakesDelaysTooShortAsTheShortest) {
  const auto speech = noise<std::array<Zpp16s, 50>>(3000, 1);
  constexpr std::array<Zpp16s, 11> coef = {4096, -3000, 900};
  const auto history = noise<std::array<Zpp16s, 194>>(3000, 2);
  const auto filtered = [&](Zpp16s delay) {
    auto residual = history;
    for (std::size_t n = 18; n < 154; ++n) residual[n] = residual[n - 18];  // a period of 18 for the delay to find
    Subframe dst;
    Zpp16s voicing = -1;
    EXPECT_EQ(
        zppsLongTermPostFilter_G729B_16s(delay, speech.data() + 10, coef.data(), residual.data(), dst.data(), &voicing, 1),
        zppStsOk);
    return dst;
  };
  for (const Zpp16s delay : {Zpp16s{0}, Zpp16s{1}, Zpp16s{17}}) EXPECT_EQ(filtered(delay), filtered(18));
}

// The period of a pulse train of limited bandwidth is found to 1/8 sample, and the delayed signal falls on the current one.
TEST(LongTermPostfilter, FindsFractionalPeriods) {
  for (const int delay : {18, 19, 47, 90, 142, 143, 144})
    for (int eighths = -6; eighths <= (delay == 144 ? 14 : 6); ++eighths) {
      const double period = delay + eighths / 8.0;
      std::array<Zpp16s, 193> residual;
      for (int n = 0; n < 193; ++n) {
        double sum = 0;
        for (int k = 1; k < 0.2 * period; ++k) sum += std::cos(2 * 3.14159265358979 * k * (n - 171) / period);
        residual[static_cast<std::size_t>(n)] = static_cast<Zpp16s>(std::lround(40000 / period * sum));
      }
      Subframe dst, same;
      Zpp16s selected = 0, sameSelected = 0;
      const Zpp16s* current = residual.data() + 153;
      ASSERT_EQ(zppsLongTermPostFilter_G729I_16s(16384, delay, current, dst.data(), &selected), zppStsOk);
      EXPECT_EQ(selected, std::ceil(period)) << period;
      for (std::size_t n = 0; n < 40; ++n) EXPECT_NEAR(dst[n], current[n], 50) << period << ", sample " << n;
      if (delay == 144) continue;
      ASSERT_EQ(zppsLongTermPostFilter_G729_16s(16384, delay, current, same.data(), &sameSelected), zppStsOk);
      EXPECT_EQ(sameSelected, selected) << period;
      EXPECT_EQ(same, dst) << period;
    }
}

// Residuals of any level stay exact copies when nothing of the past matches, and silence stays silent.
TEST(LongTermPostfilter, IsOffWithoutAMatch) {
  std::array<Zpp16s, 192> residual = {};
  Subframe dst;
  Zpp16s selected = -1;
  ASSERT_EQ(zppsLongTermPostFilter_G729_16s(16384, 60, residual.data() + 152, dst.data(), &selected), zppStsOk);
  EXPECT_EQ(selected, 0);
  EXPECT_EQ(dst, Subframe{});
  for (const Zpp16s level : {Zpp16s{1}, Zpp16s{300}, Zpp16s{-32768}}) {
    residual[171] = level;
    ASSERT_EQ(zppsLongTermPostFilter_G729_16s(16384, 60, residual.data() + 152, dst.data(), &selected), zppStsOk);
    EXPECT_EQ(selected, 0);
    EXPECT_TRUE(std::equal(dst.begin(), dst.end(), residual.begin() + 152));
  }
}

// A square wave at full scale: the interpolated signal overshoots the 16 bits and is held at them.
TEST(LongTermPostfilter, SaturatesTheInterpolatedSignal) {
  constexpr std::array<Zpp16s, 11> flat = {4096};
  for (const double period : {40.5, 61.25, 97.625}) {
    std::array<Zpp16s, 194> residual;
    for (int n = 0; n < 194; ++n)
      residual[static_cast<std::size_t>(n)] = std::fmod(n, period) < period / 2 ? Zpp16s{32767} : Zpp16s{-32768};
    std::array<Zpp16s, 50> speech = {};
    std::copy_n(residual.end() - 40, 40, speech.begin() + 10);
    const auto integer = static_cast<Zpp16s>(period);

    Subframe dst, dstAnnexB;
    Zpp16s selected = 0, voicing = 0;
    ASSERT_EQ(zppsLongTermPostFilter_G729_16s(16384, integer, residual.data() + 154, dst.data(), &selected), zppStsOk);
    ASSERT_NE(selected, 0) << period;
    for (std::size_t n = 0; n < 40; ++n) {
      const Zpp16s* past = residual.data() + 154 + n - selected;
      // Where the current sample and all that the interpolation looks at are of one sign, nothing changes it.
      if (!std::all_of(past - 8, past + 9, [&](Zpp16s x) { return x == residual[154 + n]; })) continue;
      EXPECT_NEAR(dst[n], residual[154 + n], 60) << period << ", sample " << n;
    }
    ASSERT_EQ(zppsLongTermPostFilter_G729B_16s(integer, speech.data() + 10, flat.data(), residual.data(), dstAnnexB.data(),
                                               &voicing, 1),
              zppStsOk);
    EXPECT_EQ(dstAnnexB, dst) << period;
  }
}

// Annex A clause A.4.2.1 on saturating sums
Subframe harmonicallyFiltered(int delay, const Zpp16s* residual) {
  using namespace zpp;
  const auto dot = [residual](int lag1, int lag2, Zpp32s sum) {
    for (int n = 0; n < 40; ++n) sum = macDbl(sum, shr16(residual[n - lag1], 2), shr16(residual[n - lag2], 2));
    return sum;
  };
  const int shortest = std::min(delay - 3, 137);
  int lag = shortest;
  for (int l = shortest; l < shortest + 7; ++l) lag = dot(0, l, 0) > dot(0, lag, 0) ? l : lag;
  const Zpp32s correlation = std::max(dot(0, lag, 0), 0), past = dot(lag, lag, 1), current = dot(0, 0, 1);
  const int norm = norm32(std::max({correlation, past, current}));
  const auto upper = [norm](Zpp32s x) { return roundHigh16(shlSat32(x, norm)); };
  const Zpp16s c = upper(correlation), p = upper(past), e = upper(current);
  Zpp16s gain = 32767, pastGain = 0;
  if (subSat32(mulDbl(c, c), mulDbl(p, e) >> 1) >= 0) {
    const auto half = static_cast<Zpp16s>(mulQ15(c, 16384) >> 1), whole = static_cast<Zpp16s>((p >> 1) + half);
    if (c > p) {
      gain = 21845, pastGain = 10923;
    } else if (whole > 0) {
      pastGain = divQ15(half, whole);
      gain = static_cast<Zpp16s>(32767 - pastGain);
    }
  }
  Subframe dst;
  for (int n = 0; n < 40; ++n) {
    const Zpp16s x = residual[n];
    dst[static_cast<std::size_t>(n)] = pastGain == 0 ? x : addSat16(mulQ15(gain, x), mulQ15(pastGain, residual[n - lag]));
  }
  return dst;
}

TEST(HarmonicPostfilter, SaturatesAtFullScale) {
  std::mt19937 random(5);
  for (const int peak : {300, 16000, 16384, 16388, 16400, 18000, 20724, 20732, 26000, 32000, 32767})
    for (int trial = 0; trial < 300; ++trial) {
      // Full-scale samples of a sign that holds for a while; current ones like those a delay ago, but for some
      const int delay = static_cast<int>(random() % 125) + 18;
      std::array<Zpp16s, 194> residual;
      Zpp16s value = static_cast<Zpp16s>(peak);
      for (std::size_t n = 0; n < residual.size(); ++n) {
        if (random() % 4 == 0) value = static_cast<Zpp16s>(random() % 2 == 0 ? -peak - (trial % 2) : peak);
        residual[n] = n < 154 || random() % 8 == 0 ? value : residual[n - static_cast<std::size_t>(delay)];
      }
      Subframe dst;
      ASSERT_EQ(_zppsHarmonicPostFilter_G729A_16s(static_cast<Zpp16s>(delay), residual.data() + 154, dst.data()), zppStsOk);
      ASSERT_EQ(dst, harmonicallyFiltered(delay, residual.data() + 154)) << peak << ' ' << trial;
    }
}

TEST(ShortTermPostfilter, TellsOfClampedOutputs) {
  constexpr std::array<Zpp16s, 11> pole = {4096, -4096};  // an integrator
  Subframe src, expected;
  src.fill(30000);
  std::array<Zpp16s, 50> dst = {};
  expected.fill(32767);
  expected[0] = 30000;
  EXPECT_EQ(zppsShortTermPostFilter_G729A_16s(pole.data(), src.data(), dst.data() + 10), zppStsOverflowWarn);
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin() + 10));

  std::array<Zpp16s, 20> impulse;
  std::copy(src.begin(), src.end(), dst.begin() + 10);
  std::fill(dst.begin(), dst.begin() + 10, Zpp16s{32767});
  constexpr std::array<Zpp16s, 11> flat = {4096, -100};
  EXPECT_EQ(zppsShortTermPostFilter_G729_16s(flat.data(), src.data(), dst.data() + 10, impulse.data()), zppStsOk);
}

// The memory of a filter is what makes subframes of one signal meet: two calls of 40 and one of 80 agree.
TEST(Preemphasis, ContinuesAcrossCalls) {
  const auto signal = noise<std::array<Zpp16s, 80>>(32767, 3);
  for (const Zpp16s factor : {Zpp16s{-32768}, Zpp16s{-1}, Zpp16s{26214}, Zpp16s{32767}}) {
    std::array<Zpp16s, 80> whole, parts = signal;
    Zpp16s memory = 1234, memoryOfParts = 1234;
    zppsPreemphasize_G729A_16s(signal.data(), whole.data(), 80, factor, &memory);
    for (int n = 0; n < 80; n += 16) zppsPreemphasize_G729A_16s_I(parts.data() + n, 16, factor, &memoryOfParts);
    EXPECT_EQ(whole, parts);
    EXPECT_EQ(memory, memoryOfParts);
  }
}

TEST(TiltCompensation, OfAnnexASurvivesResponsesOfAnyEnergy) {
  // The response saturates: energy and correlation reach the top of 32 bits, the factor 0.8 times their quotient.
  std::array<Zpp16s, 22> coef = {};
  std::fill(coef.begin(), coef.begin() + 11, Zpp16s{32767});
  coef[11] = 4096;
  coef[12] = -4096;
  std::array<Zpp16s, 41> signal = {}, expected = {};
  signal[1] = 10000;
  expected[0] = signal[40];
  expected[1] = 10000;
  expected[2] = static_cast<Zpp16s>(-((10000 * 26213) >> 15));
  EXPECT_EQ(zppsTiltCompensation_G729A_16s(coef.data(), signal.data() + 1), zppStsOk);
  EXPECT_EQ(signal, expected);
}

// 1/80 of the quotient of the sums of magnitudes, Q14: 143.503 and 102.497. Were a sample of -32768 counted as 32767, they
// would be 143.499 and 102.500, and round the other way.
TEST(GainControl, CountsTheLargestMagnitudeInFull) {
  const auto firstOutput = [](Subframe src, Subframe dst) {
    Zpp16s gain = 0;
    EXPECT_EQ(zppsGainControl_G729_16s_I(src.data(), dst.data(), &gain), zppStsOk);
    return dst[0];
  };
  Subframe src = {}, dst;
  std::fill_n(src.begin(), 28, Zpp16s{-32768});
  dst.fill(32767);
  EXPECT_EQ(firstOutput(src, dst), 2 * 144);
  EXPECT_EQ(firstOutput({32767}, {-32768, -32768}), -2 * 102);
}

// The running gain settles where the output has the level of the source: unity, and half for an output twice as loud.
TEST(GainControl, ConvergesToTheLevelBeforeThePostfilter) {
  const auto src = noise<Subframe>(6000, 4);
  for (const int louder : {1, 2}) {
    Zpp16s gain = 0, gainAnnexA = 0;
    for (int subframe = 0; subframe < 40; ++subframe) {
      Subframe dst = src, dstAnnexA = src;
      for (auto* d : {&dst, &dstAnnexA})
        for (auto& x : *d) x = static_cast<Zpp16s>(x * louder);
      zppsGainControl_G729_16s_I(src.data(), dst.data(), &gain);
      zppsGainControl_G729A_16s_I(src.data(), dstAnnexA.data(), &gainAnnexA);
    }
    EXPECT_NEAR(gain, 16384 / louder, 60);
    EXPECT_NEAR(gainAnnexA, 4096 / louder, 60);
  }
}

}  // namespace
