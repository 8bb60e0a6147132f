// What the table of exports cannot say about AMR-WB's filters, pitch and voice activity: functions with a state over sequences
// of calls, blocks cut differently, and bounds of the faster paths.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "support/golden.h"
#include "zppsc.h"

namespace {

using V16 = std::vector<Zpp16s>;
using V32 = std::vector<Zpp32s>;

std::vector<test::GoldenCase> sequences(const char* function) {
  return test::readGolden(std::string(TEST_DATA_DIR) + "/amrwb/" + function + ".seq");
}
V16 as16(const std::vector<double>& values) { return V16(values.begin(), values.end()); }

// A state block at an odd address
class State {
 public:
  explicit State(std::size_t bytes) : memory_(bytes + 1, 0x5a) {}
  void* get() { return memory_.data() + 1; }

 private:
  std::vector<unsigned char> memory_;
};

TEST(HighPassFilter, KeepsItsHistoryOverBlocksAndRescaling) {
  for (const auto& golden : sequences("zppsHighPassFilter_AMRWB_16s_I")) {
    const V16 coef = as16(golden.in.at("coef"));
    const auto shift = static_cast<int>(golden.in.at("shift")[0]), order = static_cast<int>(golden.in.at("order")[0]);
    V16 samples = as16(golden.in.at("src"));
    State state(40);
    ASSERT_EQ(zppsHighPassFilterInit_AMRWB_16s(coef.data(), order, state.get()), zppStsOk);
    Zpp16s* block = samples.data();
    for (std::size_t i = 0; i < golden.in.at("lens").size(); ++i) {
      const auto len = static_cast<int>(golden.in.at("lens")[i]), scale = static_cast<int>(golden.in.at("scale")[i]);
      if (scale != 0) {
        ASSERT_EQ(zppsHighPassFilterScale_AMRWB_16s(scale, state.get()), zppStsOk);
      }
      ASSERT_EQ(zppsHighPassFilter_AMRWB_16s_I(block, len, shift, state.get()), zppStsOk);
      block += len;
    }
    EXPECT_EQ(samples, as16(golden.out.at("dst"))) << golden.label;
  }
}

TEST(VoiceActivity, DecidesAsTheStandardOverFrames) {
  for (const auto& golden : sequences("zppsVAD_AMRWB_16s")) {
    const V16 speech = as16(golden.in.at("src"));
    V16 tone = as16(golden.in.at("tone")), active(tone.size());
    State state(148);
    ASSERT_EQ(zppsVADInit_AMRWB_16s(state.get()), zppStsOk);
    for (std::size_t frame = 0; frame < tone.size(); ++frame)
      ASSERT_EQ(zppsVAD_AMRWB_16s(speech.data() + 256 * frame, &tone[frame], &active[frame], state.get()), zppStsOk);
    EXPECT_EQ(active, as16(golden.out.at("vad"))) << golden.label;
    EXPECT_EQ(tone, as16(golden.out.at("toneOut"))) << golden.label;
  }
}

TEST(AdaptiveCodebookDecoding, FollowsLagsAndConcealsThem) {
  for (const auto& golden : sequences("zppsAdaptiveCodebookDecode_AMRWB_16s")) {
    const auto at = [&](const char* name, std::size_t i) { return static_cast<int>(golden.in.at(name)[i]); };
    const V16 gains = as16(golden.in.at("gainHistory"));
    V16 excitation = as16(golden.in.at("excitation")), vectors, lags, fractions;
    State state(24);
    ASSERT_EQ(zppsAdaptiveCodebookDecodeInit_AMRWB_16s(state.get()), zppStsOk);
    for (std::size_t i = 0; i < golden.in.at("index").size(); ++i) {
      if (at("reset", i) != 0) {
        ASSERT_EQ(zppsAdaptiveCodebookDecodeReset_AMRWB_16s(state.get()), zppStsOk);
      }
      excitation.resize(248 + 65);
      Zpp16s lag = 0, fraction = 0;
      ASSERT_EQ(
          zppsAdaptiveCodebookDecode_AMRWB_16s(static_cast<Zpp16s>(at("index", i)), gains.data() + 5 * i,
                                               excitation.data() + 248, &lag, &fraction, at("subframe", i), at("badFrame", i),
                                               at("unusable", i), state.get(), static_cast<ZppSpeechRate>(at("rate", 0))),
          zppStsOk);
      vectors.insert(vectors.end(), excitation.begin() + 248, excitation.end());
      lags.push_back(lag);
      fractions.push_back(fraction);
      excitation.erase(excitation.begin(), excitation.begin() + 64);
      excitation.resize(248);
    }
    EXPECT_EQ(lags, as16(golden.out.at("lag"))) << golden.label;
    EXPECT_EQ(fractions, as16(golden.out.at("fraction"))) << golden.label;
    EXPECT_EQ(vectors, as16(golden.out.at("vector"))) << golden.label;
  }
}

// Every index of a subframe with its own lag stands for another lag, in ascending order; fractions only where the standard has
// them, and the relative range lies around it wherever the 16 lags fit.
TEST(AdaptiveCodebookDecoding, OrdersTheLagsOfAllIndices) {
  for (const auto& [rate, indices] : {std::pair{ZPP_RATE_8850, 256}, std::pair{ZPP_RATE_12650, 512}}) {
    const V16 gains(5, 9000);
    V16 excitation(248 + 65);
    int previous = 4 * 34 - 1;
    for (int index = 0; index < indices; ++index) {
      State state(24);
      zppsAdaptiveCodebookDecodeInit_AMRWB_16s(state.get());
      const auto decode = [&, rate = rate](int coded, int subframe) {  // Clang does not capture it by itself
        Zpp16s lag = 0, fraction = 0;
        zppsAdaptiveCodebookDecode_AMRWB_16s(static_cast<Zpp16s>(coded), gains.data(), excitation.data() + 248, &lag, &fraction,
                                             subframe, 0, 0, state.get(), rate);
        return 4 * lag + fraction;
      };
      const int lag = decode(index, 0);
      ASSERT_GT(lag, previous) << index;
      previous = lag;
      EXPECT_EQ(decode(0, 1), 4 * std::clamp(lag / 4 - 8, 34, 216)) << index;
    }
    EXPECT_EQ(previous, 4 * 231);
  }
}

// The memories carry the filters over any cut of the signal.
TEST(Filters, DoNotDependOnHowTheSignalIsCut) {
  V16 speech(320);
  for (std::size_t n = 0; n < speech.size(); ++n) speech[n] = static_cast<Zpp16s>((n * 7919 + n * n * 31) % 20011 - 10005);
  const auto cut = [&](const std::vector<int>& lengths, auto filter) {
    V16 result;
    std::size_t at = 0;
    for (const int len : lengths) {
      const V16 out =
          filter(V16(speech.begin() + static_cast<std::ptrdiff_t>(at), speech.begin() + static_cast<std::ptrdiff_t>(at) + len));
      result.insert(result.end(), out.begin(), out.end());
      at += static_cast<std::size_t>(len);
    }
    return result;
  };
  const auto compare = [&](const std::vector<int>& one, const std::vector<int>& other, auto makeFilter) {
    EXPECT_EQ(cut(one, makeFilter()), cut(other, makeFilter()));
  };
  compare({320}, {5, 10, 305}, [] {
    return [mem = V16(30)](V16 x) mutable {
      V16 y(x.size() * 4 / 5);
      zppsDownSampling_AMRWB_16s(x.data(), y.data(), static_cast<int>(x.size()), mem.data());
      return y;
    };
  });
  compare({256}, {4, 8, 244}, [] {
    return [mem = V16(24)](V16 x) mutable {
      V16 y(x.size() * 5 / 4);
      zppsUpSampling_AMRWB_16s(x.data(), y.data(), static_cast<int>(x.size()), mem.data());
      return y;
    };
  });
  for (const int band : {0, 1})
    compare({320}, {1, 2, 80, 7, 230}, [band] {
      return [band, mem = V16(30)](V16 x) mutable {
        zppsHighBandFilter_AMRWB_16s_I(x.data(), static_cast<int>(x.size()), band, mem.data());
        return x;
      };
    });
  for (const int order : {16, 20})
    compare({320}, {1, 3, 17, 20, 279}, [order] {
      return [order, mem = V16(static_cast<std::size_t>(order))](V16 x) mutable {
        V16 lpc(static_cast<std::size_t>(order) + 1, 97);
        lpc[0] = 4096;
        lpc[1] = -3300;
        zppsSynthesisFilter_AMRWB_16s_I(lpc.data(), x.data(), static_cast<int>(x.size()), order, mem.data());
        return x;
      };
    });
  compare({320}, {1, 3, 17, 20, 279}, [] {
    return [past = V32(16)](V16 x) mutable {
      V16 lpc(17, 97);
      lpc[0] = 4096;
      lpc[1] = -3300;
      V32 y = past;
      y.resize(16 + x.size());
      zppsSynthesisFilter_AMRWB_16s32s(lpc.data(), x.data(), y.data() + 16, static_cast<int>(x.size()), 2);
      past.assign(y.end() - 16, y.end());
      V16 upper;
      for (std::size_t n = 16; n < y.size(); ++n) upper.push_back(static_cast<Zpp16s>(y[n] % 30011));
      return upper;
    };
  });
}

// A full-scale signal that follows the signs of the taps drives the sum of a resampling filter to its bound: the up-sampling
// filter's partial sums then saturate, the down-sampling filter's cannot.
TEST(Resampling, SaturatesOnlyWhereTheTapsAddUpToMore) {
  const V16 signs = {-1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1, 1, -1};
  const auto largest = [&](Zpp16s level) {
    Zpp16s most = 0;
    V16 signal(48), mem(24), out(60);
    for (std::size_t n = 0; n < signs.size(); ++n) signal[n + 14] = static_cast<Zpp16s>(signs[n] * level);
    zppsUpSampling_AMRWB_16s(signal.data(), out.data(), 48, mem.data());
    for (const Zpp16s x : out) most = std::max(most, x);
    return most;
  };
  EXPECT_EQ(largest(32767), 32767);
  EXPECT_EQ(largest(100), 227);  // 37140 / 16384
}

// A scale that no signal has is limited before it is calculated with.
TEST(Scale, BeyondSixteenBitsCountsAsTheNearest) {
  V16 signal(64), code(64);
  for (std::size_t n = 0; n < signal.size(); ++n) {
    signal[n] = static_cast<Zpp16s>(static_cast<int>(n * 7919 % 4001) - 2000);
    code[n] = static_cast<Zpp16s>(static_cast<int>(n * 104729 % 1025) - 512);
  }
  const auto results = [&](int scale) {
    const V16 coef = {20000, 3, 15000, 2};
    V16 mem(4, -14336), noise(80);
    Zpp16s gainPitch = 9000, index = 0, factor = 0, seed = 5;
    Zpp32s gainCode = 0;
    EXPECT_EQ(zppsGainQuant_AMRWB_16s(signal.data(), code.data(), code.data(), code.data(), coef.data(), &gainPitch, &gainCode,
                                      &index, mem.data(), scale, 0, ZPP_RATE_12650),
              zppStsOk);
    EXPECT_EQ(zppsVoiceFactor_AMRWB_16s(signal.data(), code.data(), scale, 9000, 77, &factor), zppStsOk);
    EXPECT_EQ(zppsHighBandNoise_AMRWB_16s(signal.data(), noise.data(), scale, &seed), zppStsOk);
    noise.insert(noise.end(), {gainPitch, index, factor, seed});
    return noise;
  };
  EXPECT_EQ(results(INT32_MAX), results(32767));
  EXPECT_EQ(results(INT32_MIN), results(-32768));
  EXPECT_NE(results(32767), results(-32768));
  EXPECT_NE(results(3), results(4));
}

}  // namespace
