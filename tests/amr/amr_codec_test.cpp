// The steps of the whole GSM-AMR codec: what a row of the table of exports cannot say, since it takes several calls or a state.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "amr/arithmetic.h"
#include "amr/lsp/tables.h"
#include "support/golden.h"
#include "zppsc.h"

namespace test {
namespace {

using Words = std::vector<Zpp16s>;

Words wordsOf(const std::vector<double>& values) {
  Words words;
  for (const double v : values) words.push_back(static_cast<Zpp16s>(v));
  return words;
}

constexpr ZppSpeechRate kRates[] = {ZPP_RATE_4750, ZPP_RATE_5150, ZPP_RATE_5900,  ZPP_RATE_6700,
                                    ZPP_RATE_7400, ZPP_RATE_7950, ZPP_RATE_10200, ZPP_RATE_12200};

// Golden sequences from Init; files of their own, as no single call repeats them
TEST(VoiceActivity, FollowsTheReference) {
  for (const auto& golden : readGolden(TEST_DATA_DIR "/amr/vad1.sequences")) {
    Words speech = wordsOf(golden.in.at("speech")), mem = wordsOf(golden.in.at("vadMem")), flags, registers;
    std::array<unsigned char, 117> block;  // at an odd address
    ASSERT_EQ(zppsVAD1Init_GSMAMR_16s(block.data() + 1), zppStsOk);
    for (std::size_t n = 0; n < mem.size() / 5; ++n) {
      Zpp16s flag = -1;
      zppsVAD1_GSMAMR_16s(speech.data() + 40 + 160 * n, mem.data() + 5 * n, &flag, block.data() + 1);
      flags.push_back(flag);
      registers.push_back(mem[5 * n + 2]);
    }
    EXPECT_EQ(flags, wordsOf(golden.out.at("flag"))) << golden.label;
    EXPECT_EQ(registers, wordsOf(golden.out.at("pitchRegister"))) << golden.label;
  }
  for (const auto& golden : readGolden(TEST_DATA_DIR "/amr/vad2.sequences")) {
    const Words speech = wordsOf(golden.in.at("speech")), ltpFlag = wordsOf(golden.in.at("ltpFlag"));
    Words flags;
    std::array<unsigned char, 189> block;
    ASSERT_EQ(zppsVAD2Init_GSMAMR_16s(block.data() + 1), zppStsOk);
    for (std::size_t n = 0; n < ltpFlag.size(); ++n) {
      Zpp16s flag = -1;
      zppsVAD2_GSMAMR_16s(speech.data() + 160 * n, ltpFlag[n], &flag, block.data() + 1);
      flags.push_back(flag);
    }
    EXPECT_EQ(flags, wordsOf(golden.out.at("flag"))) << golden.label;
  }
}

// Blocks of rubbish instead of states, signals of full scale: results are free, but nothing may be read or computed out of
// bounds.
TEST(States, MayHoldAnything) {
  std::mt19937 random(26094);
  for (int run = 0; run < 300; ++run) {
    std::array<unsigned char, 416> block;
    std::array<Zpp16s, 5> mem, sid;
    std::array<Zpp16s, 10> residual, lsf, synth, lsp;
    std::array<Zpp16s, 8> gains;
    std::array<Zpp16s, 44> a;
    Words speech(200);
    const auto fill = [&](auto& values) {
      for (auto& v : values) v = static_cast<std::remove_reference_t<decltype(v)>>(run % 3 == 0 ? 0x8000 : random());
    };
    fill(block), fill(mem), fill(sid), fill(residual), fill(lsf), fill(synth), fill(gains), fill(speech);
    Zpp16s flag = -1, state = -1;
    ASSERT_EQ(zppsVAD1_GSMAMR_16s(speech.data() + 40, mem.data(), &flag, block.data()), zppStsOk);
    ASSERT_TRUE(flag == 0 || flag == 1);
    fill(block);
    ASSERT_EQ(zppsVAD2_GSMAMR_16s(speech.data(), 0, &flag, block.data()), zppStsOk);
    ASSERT_TRUE(flag == 0 || flag == 1);
    fill(block);
    ASSERT_EQ(zppsDTXReceive_GSMAMR_16s(static_cast<Zpp16s>(run % 8), static_cast<Zpp16s>(run % 3), &state, block.data()),
              zppStsOk);
    ASSERT_EQ(zppsComfortNoise_GSMAMR_16s(sid.data(), static_cast<Zpp16s>(run % 3), static_cast<Zpp16s>(1 + run % 2),
                                          residual.data(), lsf.data(), gains.data(), synth.data(), speech.data(), a.data(),
                                          lsp.data(), block.data(), kRates[run % 8]),
              zppStsOk);
    ASSERT_EQ(zppsComfortNoiseUpdate_GSMAMR_16s(speech.data(), lsf.data(), block.data()), zppStsOk);
  }
}

// Comfort noise as the frame types ask for it: from the first descriptor until speech, fading when no update comes.
TEST(ComfortNoise, ComesAndGoesWithTheFrameTypes) {
  std::array<unsigned char, 416> block;
  zppsComfortNoiseInit_GSMAMR_16s(block.data());
  Zpp16s state = 0;
  const auto receive = [&](int type) {
    zppsDTXReceive_GSMAMR_16s(static_cast<Zpp16s>(type), state, &state, block.data());
    return state;
  };
  EXPECT_EQ(receive(0), 0);
  EXPECT_EQ(receive(7), 0);  // lost speech
  EXPECT_EQ(receive(4), 1);
  EXPECT_EQ(receive(7), 1);
  EXPECT_EQ(receive(3), 1);
  EXPECT_EQ(receive(1), 0);
  EXPECT_EQ(receive(5), 1);
  int frames = 0;
  while (receive(7) == 1) ASSERT_LT(++frames, 100);
  EXPECT_EQ(frames, 49);  // more than 50 frames since speech
  EXPECT_EQ(receive(6), 2);
  EXPECT_EQ(receive(5), 1);
}

// The quantiser's LSPs are those that its indices decode to, frame after frame.
TEST(Lsp, DecodesToWhatWasQuantised) {
  std::mt19937 random(26090);
  for (const ZppSpeechRate rate : kRates) {
    std::array<Zpp16s, 10> encoderMem = {}, decoderMem = {}, lsf;
    std::copy_n(meanLsf5, 10, lsf.begin());
    for (int frame = 0; frame < 200; ++frame) {
      std::array<Zpp16s, 20> lsp, quantised = {}, decoded = {};
      for (int i = 0; i < 20; ++i)
        lsp[static_cast<std::size_t>(i)] =
            static_cast<Zpp16s>(29250 - 6500 * (i % 10) + static_cast<int>(random() % 6001) - 3000);
      std::array<Zpp16s, 5> idx = {};
      zppsLSPQuant_GSMAMR_16s(lsp.data(), encoderMem.data(), quantised.data(), idx.data(), rate);
      zppsLSPDecode_GSMAMR_16s(idx.data(), 0, decoderMem.data(), lsf.data(), decoded.data(), rate);
      ASSERT_EQ(quantised, decoded) << rate;
      ASSERT_EQ(encoderMem, decoderMem) << rate;
      for (std::size_t i = 1; i < 10; ++i) ASSERT_GE(lsf[i] - lsf[i - 1], 205) << rate;
    }
  }
}

// Indices beyond their widths, LSFs beyond 4000 Hz
TEST(Lsp, TakesAnyIndexAndAnyFrequency) {
  for (const ZppSpeechRate rate : {ZPP_RATE_5150, ZPP_RATE_7950, ZPP_RATE_12200, ZPP_RATE_DTX})
    for (const int beyond : {0, 512, 4096, -32768})
      for (const int bad : {0, 1}) {
        std::array<Zpp16s, 5> idx = {3, 100, 57, 33, 9}, wide = idx;
        for (Zpp16s& i : wide) i = static_cast<Zpp16s>(i | beyond);
        std::array<Zpp16s, 10> mem[2] = {}, lsf[2];
        std::array<Zpp16s, 20> lsp[2] = {};
        for (int k = 0; k < 2; ++k) {
          lsf[k].fill(32767);
          mem[k].fill(-32768);
          zppsLSPDecode_GSMAMR_16s(k == 0 ? idx.data() : wide.data(), static_cast<Zpp16s>(bad), mem[k].data(), lsf[k].data(),
                                   lsp[k].data(), rate);
        }
        EXPECT_EQ(lsp[0], lsp[1]) << rate << ' ' << beyond;
        EXPECT_EQ(mem[0], mem[1]) << rate << ' ' << beyond;
      }
}

// The filter without saturation stands in for the one with it where its bound holds: just inside, outside and far beyond.
TEST(SynthesisFilter, SaturatesAtEveryStep) {
  std::mt19937 random(26073);
  int warnings = 0, silent = 0;
  for (int run = 0; run < 4000; ++run) {
    std::array<Zpp16s, 11> a;
    std::array<Zpp16s, 10> hist;
    const int size = 1 << (run % 8 + 8), level = 1 << (run / 8 % 8 + 8), len = 1 + run % 100;
    const auto draw = [&](int limit) {
      return static_cast<Zpp16s>(static_cast<int>(random() % static_cast<unsigned>(2 * limit)) - limit);
    };
    for (auto& c : a) c = draw(size);
    if (run % 2 == 0) a[0] = 4096;
    for (auto& y : hist) y = draw(level);
    Words src(static_cast<std::size_t>(len)), want, got(src.size());
    for (auto& x : src) x = run % 16 == 3 ? Zpp16s{-32768} : draw(level);

    bool saturated = false;
    const auto limited = [&](Zpp64s v) {
      const Zpp64s clamped = std::clamp<Zpp64s>(v, INT32_MIN, INT32_MAX);
      saturated |= clamped != v;
      return clamped;
    };
    Words past(hist.begin(), hist.end());
    for (const Zpp16s x : src) {
      Zpp64s sum = limited(Zpp64s{2} * x * a[0]);
      for (std::size_t i = 1; i <= 10; ++i) sum = limited(sum - limited(Zpp64s{2} * a[i] * past[past.size() - i]));
      past.push_back(static_cast<Zpp16s>(limited(limited(8 * sum) + 0x8000) >> 16));
    }
    want.assign(past.begin() + 10, past.end());
    const ZppStatus status = zppsSynthesisFilter_GSMAMR_16s(a.data(), src.data(), got.data(), len, hist.data());
    ASSERT_EQ(got, want) << run;
    ASSERT_EQ(status, saturated ? zppStsOverflowWarn : zppStsOk) << run;
    ++(saturated ? warnings : silent);
    zppsSynthesisFilter_GSMAMR_16s(a.data(), src.data(), src.data(), len, hist.data());
    ASSERT_EQ(src, want) << "in place " << run;
  }
  EXPECT_GT(warnings, 500);
  EXPECT_GT(silent, 500);
}

TEST(Arithmetic, RootsAndMedians) {
  using namespace zpp::amr;
  std::mt19937 random(1);
  for (int run = 0; run < 2000; ++run) {
    const auto x = static_cast<Zpp32s>(random() >> (run % 31 + 1));
    const Root root = squareRoot(x);
    EXPECT_EQ(root.shift % 2, 0);
    const double scaled = root.value / 65536.0 / 32768.0, wanted = std::sqrt(std::ldexp(x, root.shift) / 2147483648.0);
    EXPECT_NEAR(scaled, wanted, 1e-4) << x;

    std::array<Zpp16s, 9> values, sorted;
    for (auto& v : values) v = static_cast<Zpp16s>(random() % (run % 2 == 0 ? 3u : 65536u));
    for (const int count : {5, 9}) {
      sorted = values;
      std::sort(sorted.begin(), sorted.begin() + count);
      EXPECT_EQ(median(values.data(), count), sorted[static_cast<std::size_t>(count / 2)]);
    }
  }
}

}  // namespace
}  // namespace test
