// What the table of exports cannot say about G.723.1's excitation, filters and Annex A: refusals behind pointers, what
// codewords stand for, where functions meet, and arguments that no codec passes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "zppsc.h"

namespace {

using V16 = std::vector<Zpp16s>;
using V32 = std::vector<Zpp32s>;

class Noise {
 public:
  Zpp16s next() { return static_cast<Zpp16s>((state_ = state_ * 1664525u + 1013904223u) >> 16); }
  int below(int limit) { return static_cast<Zpp16u>(next()) % limit; }
  V16 samples(std::size_t count, int limit) {
    V16 v(count);
    std::generate(v.begin(), v.end(), [&] { return static_cast<Zpp16s>(next() * limit / 32768); });
    return v;
  }

 private:
  unsigned state_ = 1;
};

// A decaying impulse response, as that of a synthesis filter
V16 decay() {
  V16 h(60);
  int value = 8192;
  for (Zpp16s& x : h) x = static_cast<Zpp16s>(value), value = -value * 3 / 4;
  return h;
}

TEST(AdaptiveCodebookSearch, ChecksTheLagByTheSubframe) {
  const V16 signal(60), history(145);
  const V32 taming(5, 4);
  const auto search = [&](int lag, int subframe, ZppSpeechRate rate = ZPP_RATE_5300) {
    auto newLag = static_cast<Zpp16s>(lag);
    Zpp16s offset = 77, gain = 77;
    const ZppStatus status = zppsAdaptiveCodebookSearch_G723(signal.data(), signal.data(), history.data(), taming.data(),
                                                             &newLag, &offset, &gain, 0, subframe, rate);
    if (status != zppStsOk) {
      EXPECT_EQ(newLag, lag);
      EXPECT_EQ(offset, 77);
      EXPECT_EQ(gain, 77);
    } else {
      EXPECT_TRUE(newLag >= 18 && newLag <= 141) << newLag;
    }
    return status;
  };
  for (const int subframe : {0, 1, 2, 3}) {
    for (const int lag : {18, 19, 140, 141}) EXPECT_EQ(search(lag, subframe), zppStsOk) << lag;
    for (const int lag : {17, 143, -1, -32768, 32767}) EXPECT_EQ(search(lag, subframe), zppStsBadArgument) << lag;
    EXPECT_EQ(search(142, subframe), subframe % 2 == 0 ? zppStsOk : zppStsBadArgument);
  }
  EXPECT_EQ(search(17, 4), zppStsOutOfRange);
  EXPECT_EQ(search(17, 0, ZPP_RATE_DTX), zppStsOutOfRange);
}

// Estimates of the decoder's error close the louder rows, and so does a sine.
TEST(AdaptiveCodebookSearch, StaysWithinTheRowsThatTamingLeaves) {
  Noise noise;
  const V16 impulse = decay(), history = noise.samples(145, 3000);
  int loudest[2] = {};
  for (int round = 0; round < 200; ++round) {
    V16 target = noise.samples(60, 200), vector(60);
    // What the past gives back at twice its level asks for a loud row.
    const int delay = 30 + round % 100;
    for (std::size_t n = 0; n < 60; ++n)
      for (std::size_t k = 0; k <= n; ++k)
        target[n] = static_cast<Zpp16s>(
            std::clamp(target[n] + 2 * history[145 - static_cast<std::size_t>(delay) + k % static_cast<std::size_t>(delay)] *
                                       impulse[n - k] / 8192,
                       -32768, 32767));
    for (const bool tamed : {false, true})
      for (const bool sine : {false, true}) {
        const V32 taming(5, tamed ? (1 << 30) + 1 : 4);
        for (const auto rate : {ZPP_RATE_5300, ZPP_RATE_6300}) {
          auto lag = static_cast<Zpp16s>(delay);
          Zpp16s offset, gain;
          ASSERT_EQ(zppsAdaptiveCodebookSearch_G723(target.data(), impulse.data(), history.data(), taming.data(), &lag, &offset,
                                                    &gain, sine ? -1 : 0, 0, rate),
                    zppStsOk);
          const int rows = rate == ZPP_RATE_6300 && lag < 58 ? 51 : 93;
          if (tamed || sine) {
            ASSERT_LT(gain, rows);
          } else {
            loudest[rows == 51] = std::max<int>(loudest[rows == 51], gain);
          }
          ASSERT_EQ(offset, 1);
        }
      }
  }
  EXPECT_GE(loudest[0], 93);
  EXPECT_GE(loudest[1], 51);
}

// Each codeword of the search names pulses of its level, 6 or 5, on its grid; and the number of every combination is below that
// of all combinations.
TEST(MultiPulse, CodesWhatTheDecoderUnderstands) {
  constexpr int kPulses[] = {6, 5, 6, 5}, kCombinations[] = {593775, 142506, 593775, 142506};
  Noise noise;
  const V16 impulse = decay();
  int trains = 0;
  for (int round = 0; round < 300; ++round) {
    const int subframe = round % 4;
    const auto lag = static_cast<Zpp16s>(18 + noise.below(124));
    V16 target = noise.samples(60, 1 << (3 + round % 11)), vector(60);
    if (round % 3 == 0)  // a train asks for a train
      for (std::size_t n = 0; n < 60; ++n) target[n] = n % static_cast<std::size_t>(lag) == 4 ? Zpp16s{8000} : Zpp16s{0};
    V32 codeword(5);
    ASSERT_EQ(zppsMultiPulseSearch_G723_16s32s(target.data(), impulse.data(), codeword.data(), lag, subframe), zppStsOk);
    ASSERT_LT(codeword[3], kCombinations[subframe]);
    trains += codeword[2];
    ASSERT_TRUE(lag < 58 || codeword[2] == 0);
    codeword[2] = 0;
    ASSERT_EQ(zppsFixedCodebookDecode_G723_32s16s(codeword.data(), vector.data(), lag, 1, 0, subframe, ZPP_RATE_6300),
              zppStsOk);
    int pulses = 0;
    for (int n = 0; n < 60; ++n) {
      const int magnitude = std::abs(vector[static_cast<std::size_t>(n)]);
      if (magnitude == 0) continue;
      ++pulses;
      ASSERT_EQ(n % 2, codeword[1]);
      ASSERT_EQ(magnitude, std::abs(*std::max_element(vector.begin(), vector.end(),
                                                      [](int a, int b) { return std::abs(a) < std::abs(b); })));
    }
    ASSERT_EQ(pulses, kPulses[subframe]);
  }
  EXPECT_GT(trains, 10);
}

TEST(FixedCodebook, TakesForSilenceWhatNoEncoderSends) {
  V16 vector(60, 99);
  const V32 beyond = {20, 0, 0, 593775, 21};
  ASSERT_EQ(zppsFixedCodebookDecode_G723_32s16s(beyond.data(), vector.data(), 60, 1, 0, 0, ZPP_RATE_6300), zppStsOk);
  EXPECT_EQ(vector, V16(60, 0));
  // Positions 60 and 62 of the last two tracks, 61 and 63 of the odd grid; the first two remain.
  for (const int grid : {0, 1}) {
    const V32 outside = {20, grid, 0, 7 << 6 | 7 << 9, 15};
    ASSERT_EQ(zppsFixedCodebookDecode_G723_32s16s(outside.data(), vector.data(), 100, 1, 0, 0, ZPP_RATE_5300), zppStsOk);
    EXPECT_EQ(std::count(vector.begin(), vector.end(), 0), 58);
  }
  // Signs count by their low bits.
  V16 plain(60);
  for (const auto rate : {ZPP_RATE_5300, ZPP_RATE_6300}) {
    const V32 low = {9, 1, 0, 1234, 5}, high = {9, 1, 0, 1234, 5 - 64}, other = {9, 1, 0, 1234, 4};
    ASSERT_EQ(zppsFixedCodebookDecode_G723_32s16s(low.data(), plain.data(), 60, 1, 3, 0, rate), zppStsOk);
    ASSERT_EQ(zppsFixedCodebookDecode_G723_32s16s(high.data(), vector.data(), 60, 1, 3, 0, rate), zppStsOk);
    EXPECT_EQ(vector, plain);
    ASSERT_EQ(zppsFixedCodebookDecode_G723_32s16s(other.data(), vector.data(), 60, 1, 3, 0, rate), zppStsOk);
    EXPECT_NE(vector, plain);
  }
  for (const V32& refused : {V32{24, 0, 0, 0, 0}, V32{-1, 0, 0, 0, 0}, V32{0, 2, 0, 0, 0}, V32{0, 0, 2, 0, 0},
                             V32{0, 0, 0, -1, 0}, V32{0, 0, 0, 4096, 0}})
    EXPECT_EQ(zppsFixedCodebookDecode_G723_32s16s(refused.data(), vector.data(), 60, 1, 3, 0, ZPP_RATE_5300),
              zppStsBadCodedParam);
}

TEST(AlgebraicSearch, KeepsItsTimeAndLeavesTheGain) {
  Noise noise;
  const V16 impulse = decay();
  for (const Zpp16s start : {0, 120, 32000}) {
    const V16 target = noise.samples(60, 2000);
    V16 filtered(60);
    V32 codeword = {-7, -7, -7, -7, -7};
    Zpp16s time = start;
    ASSERT_EQ(zppsAlgebraicCodebookSearch_G723_16s32s(target.data(), impulse.data(), filtered.data(), codeword.data(), &time,
                                                      60, 1, 3),
              zppStsOk);
    EXPECT_TRUE(time >= 0 && time <= start + 120) << time;
    EXPECT_EQ(codeword[0], -7);
    // The filtered code is the decoder's vector, of level 1, behind the response in Q12.
    codeword[0] = 0;
    V16 vector(60);
    ASSERT_EQ(zppsFixedCodebookDecode_G723_32s16s(codeword.data(), vector.data(), 60, 1, 3, 0, ZPP_RATE_5300), zppStsOk);
    for (std::size_t n = 0; n < 60; ++n) {
      int sum = 0;
      for (std::size_t k = 0; k <= n; ++k) sum += vector[k] * (impulse[n - k] >> 1);
      ASSERT_EQ(filtered[n], sum);
    }
    for (const Zpp16s refused : {-1, -32768, 32001, 32767}) {
      Zpp16s wrong = refused;
      EXPECT_EQ(zppsAlgebraicCodebookSearch_G723_16s32s(target.data(), impulse.data(), filtered.data(), codeword.data(), &wrong,
                                                        60, 1, 3),
                zppStsBadArgument);
      EXPECT_EQ(wrong, refused);
    }
  }
}

TEST(GainQuant, RefusesAVectorThatItsShiftLeavesEmpty) {
  const V16 target(60, 500);
  V16 code(60, 7);
  Zpp16s level = 77;
  EXPECT_EQ(zppsGainQuant_G723_16s(target.data(), code.data(), &level), zppStsBadArgument);
  EXPECT_EQ(level, 77);
  code[59] = 8;
  EXPECT_EQ(zppsGainQuant_G723_16s(target.data(), code.data(), &level), zppStsOk);
  EXPECT_EQ(level, 23);
  code[59] = -1;  // shifted it is -1 still
  EXPECT_EQ(zppsGainQuant_G723_16s(target.data(), code.data(), &level), zppStsOk);
  EXPECT_EQ(level, 0);
}

// What subtraction takes away is what the update runs on with when nothing more comes in.
TEST(Ringing, IsSubtractedAsItGoesOn) {
  Noise noise;
  for (int round = 0; round < 50; ++round) {
    const V16 lpc = noise.samples(10, 1500), weighting = noise.samples(20, 1500), silence(60), speech = noise.samples(60, 3000);
    V16 history = noise.samples(145, 3000), memory = noise.samples(20, 3000), target = speech;
    ASSERT_EQ(
        zppsRingingSubtraction_G723_16s_I(lpc.data(), weighting.data(), history.data(), memory.data(), target.data(), 40, 0),
        zppStsOk);
    ASSERT_EQ(zppsRingingUpdate_G723_16s_I(lpc.data(), weighting.data(), silence.data(), history.data(), memory.data()),
              zppStsOk);
    for (std::size_t n = 0; n < 60; ++n) ASSERT_EQ(target[n], speech[n] - history[85 + n]);
    for (std::size_t j = 0; j < 10; ++j) ASSERT_EQ(memory[10 + j], history[144 - j]) << "newest first";
  }
}

TEST(PitchPostFilter, TouchesLoudSamplesEvenWithoutGain) {
  V16 src(60), dst(60);
  const int values[][2] = {{16384, 16384},   {16385, 16384},   {32767, 32766},
                           {-16383, -16383}, {-16384, -16383}, {-32768, -32767}};
  for (const auto& [in, out] : values) {
    src[5] = static_cast<Zpp16s>(in);
    ASSERT_EQ(zppsPitchPostFilter_G723_16s(src.data(), dst.data(), 0, 0, 32767), zppStsOk);
    EXPECT_EQ(dst[5], out) << in;
  }
}

TEST(Concealment, RepeatsMutesAndKeepsTheHistoryInStep) {
  Noise noise;
  const V16 past = noise.samples(145, 8000);
  V16 history = past, dst(240);
  Zpp16s seed = 5;
  ASSERT_EQ(zppsResidualInterpolation_G723_16s(history.data(), &seed, dst.data(), 145, 0, 1), zppStsOk);
  EXPECT_EQ(seed, 5) << "a voiced frame draws nothing";
  for (std::size_t n = 0; n < 240; ++n) ASSERT_EQ(dst[n], past[n % 145] * 3 >> 2);
  EXPECT_TRUE(std::equal(history.begin(), history.end(), dst.end() - 145));
  ASSERT_EQ(zppsResidualInterpolation_G723_16s(history.data(), &seed, dst.data(), 60, 100, 3), zppStsOk);
  EXPECT_EQ(dst, V16(240));
  EXPECT_EQ(history, V16(145));
}

// Any 16-bit values whatever: sanitizer builds see that nothing overflows and no table is left.
TEST(AnyExcitation, IsHarmless) {
  Noise noise;
  for (int round = 0; round < 1500; ++round) {
    const int kind = noise.below(4);
    const auto any = [&](std::size_t count) {
      V16 v(count);
      std::generate(v.begin(), v.end(), [&] {
        const Zpp16s x = noise.next();
        return kind < 2 ? x : kind == 2 ? static_cast<Zpp16s>(x & 3) : static_cast<Zpp16s>(x < 0 ? -32768 : 32767);
      });
      return v;
    };
    const auto any32 = [&](std::size_t count) {
      V32 v(count);
      for (Zpp32s& x : v) x = static_cast<Zpp32s>(static_cast<Zpp32u>(noise.next()) << 16 | static_cast<Zpp16u>(noise.next()));
      return v;
    };
    const auto rate = noise.below(2) == 0 ? ZPP_RATE_5300 : ZPP_RATE_6300;
    const int subframe = noise.below(4);
    auto lag = static_cast<Zpp16s>(18 + noise.below(124));
    const auto offset = static_cast<Zpp16s>(noise.below(4)), gainIndex = static_cast<Zpp16s>(noise.below(85));
    const V16 src = any(520), lpc = any(10), weighting = any(20), impulse = any(60), target = any(60);
    V16 history = any(145), memory = any(20), work = any(240), out(240);
    Zpp16s a = noise.next(), b = noise.next(), c = noise.next();
    V32 codeword(5), state = any32(5);
    const auto ok = [](ZppStatus status) { ASSERT_EQ(status, zppStsOk); };
    ok(zppsHighPassFilter_G723_16s_I(work.data(), state.data(), 240));
    ok(zppsWeightingLPC_G723_16s(lpc.data(), out.data()));
    ok(zppsWeightingFilter_G723_16s_I(weighting.data(), work.data(), memory.data()));
    ok(zppsSynthesisFilter_G723_16s_I(lpc.data(), work.data(), memory.data()));
    ok(zppsLSFInterpolation_G723_16s(lpc.data(), weighting.data(), out.data()));
    ok(zppsOpenLoopPitchSearch_G723_16s(src.data() + 142, &a));
    ok(zppsHarmonicSearch_G723_16s(src.data() + 145, &b, &c, a));
    ok(zppsHarmonicNoiseShaping_G723_16s(src.data() + 145, out.data(), b, c));
    ok(zppsImpulseResponse_G723_16s(lpc.data(), weighting.data(), out.data(), b, c));
    ok(zppsRingingSubtraction_G723_16s_I(lpc.data(), weighting.data(), history.data(), memory.data(), work.data(), b, c));
    ok(zppsRingingUpdate_G723_16s_I(lpc.data(), weighting.data(), target.data(), history.data(), memory.data()));
    ok(zppsMultiPulseSearch_G723_16s32s(target.data(), impulse.data(), codeword.data(), lag, subframe));
    ok(zppsFixedCodebookDecode_G723_32s16s(codeword.data(), out.data(), lag, offset, gainIndex, subframe, ZPP_RATE_6300));
    a = static_cast<Zpp16s>(noise.below(32001));
    ok(zppsAlgebraicCodebookSearch_G723_16s32s(target.data(), impulse.data(), work.data(), codeword.data(), &a, lag, offset,
                                               gainIndex));
    ok(zppsFixedCodebookDecode_G723_32s16s(codeword.data(), out.data(), lag, offset, gainIndex, subframe, ZPP_RATE_5300));
    const bool empty = std::all_of(work.begin(), work.begin() + 60, [](int x) { return x >> 3 == 0; });
    ASSERT_EQ(zppsGainQuant_G723_16s(target.data(), work.data(), &a), empty ? zppStsBadArgument : zppStsOk);
    ok(zppsTamingUpdate_G723_32s_I(state.data(), lag, 1, gainIndex, rate));
    ok(zppsAdaptiveCodebookSearch_G723(target.data(), impulse.data(), history.data(), state.data(), &lag, &a, &b, c, subframe,
                                       rate));
    ok(zppsTargetUpdate_G723_16s_I(target.data(), impulse.data(), work.data()));
    ok(zppsVoicingDecision_G723_16s(src.data(), &a, &b, lag));
    ok(zppsResidualInterpolation_G723_16s(history.data(), &c, out.data(), a, b, 1 + noise.below(3)));
    ok(zppsPitchPostFilterSearch_G723_16s(src.data(), &a, &b, &c, lag, subframe, rate));
    ok(zppsPitchPostFilter_G723_16s(src.data() + 145, out.data(), a, b, c));
    ok(zppsFormantPostFilter_G723_16s_I(lpc.data(), work.data(), memory.data(), &a, state.data()));
    ok(zppsGainControl_G723_16s_I(work.data(), &b, state[0]));
    state = any32(2);
    ok(zppsVAD_G723_16s(src.data(), impulse.data(), lpc.data(), state.data(), memory.data(), &a, b));
    ok(zppsAutoCorrSum_G723_16s(src.data(), target.data(), out.data(), &a, 1 + noise.below(4)));
    ok(zppsLPCAutoCorr_G723_16s(lpc.data(), out.data(), &a));
    ok(zppsLPCSimilarity_G723_16s(src.data(), target.data(), &b, a, c));
    ok(zppsSIDGainQuant_G723_16s(src.data(), target.data(), &a, noise.below(4)));
    ASSERT_TRUE(a >= 0 && a <= 63) << a;
    ok(zppsSIDGainDecode_G723_16s(a, &b));
    ok(zppsComfortNoise_G723_16s(history.data(), &c, out.data(), memory.data(), work.data(), b));
  }
}

}  // namespace
