// What the table of exports cannot say about GSM full rate: streams through the voice activity detector, signals in pieces and
// in place, coded parameters through quantiser and back, and arguments that no codec passes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>

#include "gsmfr/kernels.h"
#include "support/golden.h"
#include "zppsc.h"

namespace {

using V16 = std::vector<Zpp16s>;
using V32 = std::vector<Zpp32s>;

template <class T>
std::vector<T> as(const std::vector<double>& values) {
  return std::vector<T>(values.begin(), values.end());
}

V16 noise(std::size_t n, int level, unsigned seed) {
  std::mt19937 random(seed);
  V16 v(n);
  for (auto& x : v) x = static_cast<Zpp16s>(static_cast<int>(random() % (2u * static_cast<unsigned>(level))) - level);
  return v;
}

TEST(VoiceActivity, DecidesAsTheStandardOnWholeStreams) {
  for (const auto& golden : test::readGolden(std::string(TEST_DATA_DIR) + "/gsmfr/vad_streams.cases")) {
    const V32 autoCorr = as<Zpp32s>(golden.in.at("autoCorr")), scale = as<Zpp32s>(golden.in.at("scale"));
    const V16 lags = as<Zpp16s>(golden.in.at("lags"));
    const auto given = golden.in.find("offsetFree");
    const V16 signal = given == golden.in.end() ? V16(160 * scale.size()) : as<Zpp16s>(given->second);
    V16 state(160, 0x5a5a), decided(scale.size());
    ASSERT_EQ(zppsVADInit_GSMFR_16s(state.data(), static_cast<Zpp32s>(golden.in.at("direction").at(0))), zppStsOk);
    for (std::size_t f = 0; f < scale.size(); ++f)
      ASSERT_EQ(zppsVAD_GSMFR_16s(&autoCorr[9 * f], &signal[160 * f], &lags[4 * f], &decided[f], scale[f], state.data()),
                zppStsOk);
    EXPECT_EQ(decided, as<Zpp16s>(golden.out.at("vad"))) << golden.label;
  }
}

TEST(VoiceActivity, RefusesAnyBadLag) {
  V16 state(160), signal(160);
  const V32 autoCorr(9, 5000);
  zppsVADInit_GSMFR_16s(state.data(), 0);
  for (std::size_t subframe = 0; subframe < 4; ++subframe)
    for (const Zpp16s bad : {39, 121, -1}) {
      V16 lags(4, 40), vad(1, 77);
      const V16 before = state;
      lags[subframe] = bad;
      EXPECT_EQ(zppsVAD_GSMFR_16s(autoCorr.data(), signal.data(), lags.data(), vad.data(), 0, state.data()),
                zppStsBadCodedParam);
      EXPECT_EQ(zppsVAD_GSMFR_16s(autoCorr.data(), signal.data(), lags.data(), vad.data(), 5, state.data()), zppStsBadScale);
      EXPECT_EQ(state, before);
      EXPECT_EQ(vad[0], 77);
    }
}

// Lags that no signal has, and blocks that nobody has initialised: the sanitizers see what happens inside.
TEST(VoiceActivity, DoesNoHarmWithImpossibleInput) {
  std::mt19937 random(5);
  const Zpp32s extremes[] = {0, 1, -1, INT32_MAX, INT32_MIN, 0x40000000};
  for (int round = 0; round < 3000; ++round) {
    V16 state(160), lags(4), refl(8), vad(1, 77);
    V32 autoCorr(9);
    if (round % 2 == 0) zppsVADInit_GSMFR_16s(state.data(), 1);
    if (round % 2 == 1) std::ranges::generate(state, [&] { return static_cast<Zpp16s>(random()); });
    for (int frame = 0; frame < 15; ++frame) {
      for (auto& lag : autoCorr) lag = random() % 3 == 0 ? extremes[random() % 6] : static_cast<Zpp32s>(random());
      for (auto& lag : lags) lag = static_cast<Zpp16s>(40 + random() % 81);
      const V16 signal = noise(160, 32768, random());
      zppsVAD_GSMFR_16s(autoCorr.data(), signal.data(), lags.data(), vad.data(), frame % 5, state.data());
      ASSERT_TRUE(vad[0] == 0 || vad[0] == 1);
      zppsSchur_GSMFR_32s16s(autoCorr.data(), refl.data());
    }
  }
}

// A signal in pieces, and in place, gives what it gives at once: memories carry all there is to carry.
struct Filter {
  const char* name;
  std::function<ZppStatus(const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory)> run;
};
class Filtering : public testing::TestWithParam<Filter> {};

TEST_P(Filtering, GoesOnWhereItStopped) {
  const auto& run = GetParam().run;
  for (const int level : {300, 8000, 32768}) {
    const V16 src = noise(160, level, 3);
    V16 whole(160), pieces(160), inPlace = src;
    V32 memory(8), memory2(8), memory3(8);
    ASSERT_EQ(run(src.data(), whole.data(), 160, memory.data()), zppStsOk);
    ASSERT_EQ(run(inPlace.data(), inPlace.data(), 160, memory2.data()), zppStsOk);
    int n = 0;
    for (const int len : {1, 13, 14, 8, 2, 7, 24, 1, 90}) {
      ASSERT_EQ(run(&src[static_cast<std::size_t>(n)], &pieces[static_cast<std::size_t>(n)], len, memory3.data()), zppStsOk);
      n += len;
    }
    ASSERT_EQ(n, 160);
    EXPECT_EQ(inPlace, whole) << level;
    EXPECT_EQ(pieces, whole) << level;
    EXPECT_EQ(memory2, memory) << level;
    EXPECT_EQ(memory3, memory) << level;
  }
}

const V16 strongRefl = {-30000, 25000, -12000, 9000, -31000, 2000, 32767, -32767};
Zpp16s* words(Zpp32s* memory) { return reinterpret_cast<Zpp16s*>(memory); }
INSTANTIATE_TEST_SUITE_P(All, Filtering,
                         testing::Values(Filter{"OffsetCompensation", zppsOffsetCompensation_GSMFR_16s},
                                         Filter{"Preemphasis",
                                                [](const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory) {
                                                  return zppsPreemphasize_GSMFR_16s(src, dst, len, words(memory));
                                                }},
                                         Filter{"Deemphasis",
                                                [](const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory) {
                                                  if (dst != src) std::copy_n(src, len, dst);
                                                  return zppsDeemphasize_GSMFR_16s_I(dst, len, words(memory));
                                                }},
                                         Filter{"Analysis",
                                                [](const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory) {
                                                  if (dst != src) std::copy_n(src, len, dst);
                                                  return zppsShortTermAnalysisFilter_GSMFR_16s_I(strongRefl.data(), dst, len,
                                                                                                 words(memory));
                                                }},
                                         Filter{"Synthesis",
                                                [](const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory) {
                                                  return zppsShortTermSynthesisFilter_GSMFR_16s(strongRefl.data(), src, dst,
                                                                                                len, words(memory));
                                                }}),
                         [](const auto& filter) { return std::string(filter.param.name); });

// The synthesis lattice undoes the analysis lattice up to the rounding of its 16 products.
TEST(Lattices, UndoEachOther) {
  const V16 refl = {-20000, 15000, -4000, 3000, -2000, 1500, -1000, 700}, src = noise(160, 4000, 8);
  V16 signal = src, analysis(8), synthesis(8);
  zppsShortTermAnalysisFilter_GSMFR_16s_I(refl.data(), signal.data(), 160, analysis.data());
  EXPECT_NE(signal, src);
  zppsShortTermSynthesisFilter_GSMFR_16s(refl.data(), signal.data(), signal.data(), 160, synthesis.data());
  for (std::size_t n = 0; n < src.size(); ++n) EXPECT_NEAR(signal[n], src[n], 32) << n;
}

// -1 times -1 is the one product that does not fit.
// Signals of every level, so that each stage comes to its limits one by one
TEST(Lattices, SaturateAtEveryStageAsTheStandardDoes) {
  const V16 shape = {32767, -12000, 0, 30000, 32767, -32768, 100, -20000, 32767, 32767, 32767, -32768};
  const V16 coefficients[] = {{-28000, 20000, -9000, 7000, -5000, 4000, -3000, 2000},
                              {32767, 0, 0, 0, 0, 0, 0, 0},
                              {0, 32767, 0, 0, 0, 0, 0, 0},
                              {-32767, 32767, 0, 0, 0, 0, 0, 0},
                              {20000, -32767, 30000, -30000, 30000, -30000, 30000, -30000},
                              {100, -100, 0, 0, 0, 0, 32767, 32767},
                              {-32700, 32000, 1000, 0, 0, 0, 0, 32767}};
  for (const V16& refl : coefficients)
    for (int level = -32768; level < 32768; level += 5) {
      V16 src(160), dst(160), expected(160), memory(8), expectedMemory(8);
      for (std::size_t n = 0; n < shape.size(); ++n) src[n] = static_cast<Zpp16s>((Zpp32s{shape[n]} * level) >> 15);
      memory[2] = expectedMemory[2] = static_cast<Zpp16s>(level / 3);
      Zpp16s emphasis = 0, expectedEmphasis = 0;
      V16 sets;
      for (int part = 0; part < 4; ++part) sets.insert(sets.end(), refl.begin(), refl.end());
      zppsSpeechSynthesis_GSMFR_16s(sets.data(), src.data(), dst.data(), memory.data(), &emphasis);
      ownSpeechSynthesis_GSMFR_16s_PX(sets.data(), src.data(), expected.data(), expectedMemory.data(), &expectedEmphasis);
      ASSERT_EQ(dst, expected) << level;
      ASSERT_EQ(memory, expectedMemory) << level;
      ASSERT_EQ(emphasis, expectedEmphasis) << level;
    }
}

TEST(Lattices, TakeTheMostNegativeCoefficient) {
  const V16 refl(8, -32768);
  V16 signal(20, -32768), memory(8, -32768);
  zppsShortTermAnalysisFilter_GSMFR_16s_I(refl.data(), signal.data(), 20, memory.data());
  EXPECT_EQ(signal[0], 32767) << "a product of 32767 a stage";
  V16 out(20, -32768), memory2(8, -32768);
  zppsShortTermSynthesisFilter_GSMFR_16s(refl.data(), out.data(), out.data(), 20, memory2.data());
  EXPECT_EQ(out[0], -32768);
}

TEST(LogAreaRatios, SurviveDecodingAndQuantisation) {
  const int widths[8] = {6, 6, 5, 5, 4, 4, 3, 3};
  for (int code = 0; code < 64; ++code) {
    V16 codes(8), lar(8), again(8), wider(8), same(8);
    for (std::size_t i = 0; i < 8; ++i) {
      codes[i] = static_cast<Zpp16s>(code & ((1 << widths[i]) - 1));
      wider[i] = static_cast<Zpp16s>(codes[i] | (-1 * (1 << widths[i])));
    }
    zppsLARDecode_GSMFR_16s(codes.data(), lar.data());
    zppsLARQuant_GSMFR_16s(lar.data(), again.data());
    EXPECT_EQ(again, codes);
    zppsLARDecode_GSMFR_16s(wider.data(), same.data());
    EXPECT_EQ(same, lar) << "bits above a code's width count";
  }
}

TEST(Pulses, ComeBackWithinAStepOfTheirAmplitude) {
  Zpp16s last = 0;
  for (int x = 0; x < 32768; ++x) {
    V16 src(40), pulses(13), decoded(40);
    Zpp16s grid = -1, amplitude = -1, maximum = -1;
    src[17] = static_cast<Zpp16s>(x % 2 == 0 ? x : -x);
    ASSERT_EQ(zppsRPEQuant_GSMFR_16s(src.data(), pulses.data(), &grid, &amplitude, &maximum), zppStsOk);
    ASSERT_EQ(maximum, x < 4 ? (x % 2 == 0 ? 0 : maximum) : x) << "below 4 no grid has energy";
    ASSERT_GE(amplitude, x < 4 ? 0 : last);
    last = amplitude;
    ASSERT_EQ(zppsRPEQuantDecode_GSMFR_16s(pulses.data(), decoded.data(), amplitude, grid), zppStsOk);
    if (x < 4) continue;
    ASSERT_EQ(grid, 2);
    ASSERT_NEAR(decoded[17], src[17], std::max(32, x / 7)) << x;
    for (std::size_t n = 0; n < 40; ++n) ASSERT_TRUE(n % 3 == 2 || decoded[n] == 0) << "off the grid";
  }
}

TEST(Pulses, TakeTheFirstOfEqualGridsAndTheMostNegativeSample) {
  V16 src(40, -32768), pulses(13);
  Zpp16s grid = -1, amplitude = -1, maximum = -1;
  zppsRPEQuant_GSMFR_16s(src.data(), pulses.data(), &grid, &amplitude, &maximum);
  EXPECT_EQ(grid, 0);
  EXPECT_EQ(amplitude, 63);
  EXPECT_EQ(maximum, 32767);
  EXPECT_EQ(pulses, V16(13, 0));
  src.assign(40, 0);
  src[39] = 400;
  zppsRPEQuant_GSMFR_16s(src.data(), pulses.data(), &grid, &amplitude, &maximum);
  EXPECT_EQ(grid, 3) << "only the last grid has the last sample";
}

}  // namespace
