// What the table of exports cannot say about the GSM-AMR room: codewords and indices that no encoder sends, coding of every
// lag, the rule of erased frames, and the parts of the correlation matrix.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <random>

#include "amr/fixed_codebook/kernels.h"
#include "amr/lsp/kernels.h"
#include "amr/pitch/kernels.h"
#include "amr/pitch/lag_coding.h"
#include "core/fixed_point.h"
#include "lpc/tables.h"
#include "support/golden.h"
#include "support/guarded.h"
#include "zppsc.h"

namespace {

constexpr ZppSpeechRate kRates[] = {ZPP_RATE_4750, ZPP_RATE_5150, ZPP_RATE_5900,  ZPP_RATE_6700,
                                    ZPP_RATE_7400, ZPP_RATE_7950, ZPP_RATE_10200, ZPP_RATE_12200};

int wordsOf(ZppSpeechRate rate) { return rate < ZPP_RATE_10200 ? 2 : rate == ZPP_RATE_10200 ? 7 : 10; }
int pulsesOf(ZppSpeechRate rate) {
  return rate <= ZPP_RATE_5900 ? 2 : rate == ZPP_RATE_6700 ? 3 : rate <= ZPP_RATE_7950 ? 4 : rate == ZPP_RATE_10200 ? 8 : 10;
}

// Guarded memory for elements that end at an unreadable page
template <class T>
class Buffer {
 public:
  explicit Buffer(std::size_t count) : memory_(count * sizeof(T)) {
    data_ = reinterpret_cast<T*>(memory_.claim(count * sizeof(T), {}, sizeof(T)));
    std::fill_n(data_, count, T{});
  }
  T* get() { return data_; }
  T& operator[](std::size_t i) { return data_[i]; }
  bool intact() const { return memory_.canariesIntact(); }

 private:
  test::Guarded memory_;
  T* data_;
};

TEST(FixedCodebook, DecodesAnyBitsWithinTheSubframe) {
  std::mt19937 random(1);
  for (const ZppSpeechRate rate : kRates) {
    Buffer<Zpp16s> codeword(static_cast<std::size_t>(wordsOf(rate))), code(40);
    const int amplitude = rate == ZPP_RATE_12200 ? 4096 : 8192;
    for (int repeat = 0; repeat < 4000; ++repeat) {
      for (int i = 0; i < wordsOf(rate); ++i) codeword[static_cast<std::size_t>(i)] = static_cast<Zpp16s>(random());
      ASSERT_EQ(zppsFixedCodebookDecode_GSMAMR_16s(codeword.get(), code.get(), static_cast<Zpp16s>(repeat % 4), rate),
                zppStsOk);
      ASSERT_TRUE(code.intact());
      int total = 0;
      for (int n = 0; n < 40; ++n) total += std::abs(code[static_cast<std::size_t>(n)]);
      ASSERT_GT(total, 0);
      ASSERT_LE(total, pulsesOf(rate) * amplitude);
    }
  }
}

// The encoder's vector must come back from its codeword in every mode and subframe: with a lag beyond the subframe nothing is
// sharpened, and both are the plain pulses.
TEST(FixedCodebook, DecodesWhatTheSearchWrites) {
  std::mt19937 random(2);
  for (const ZppSpeechRate rate : kRates)
    for (int repeat = 0; repeat < 200; ++repeat) {
      std::array<Zpp16s, 40> target, residual, impulse, code, filtered, decoded;
      std::array<Zpp16s, 10> codeword;
      double decay = 4096;
      for (std::size_t n = 0; n < 40; ++n) {
        target[n] = static_cast<Zpp16s>(random() % 4001) - 2000;
        residual[n] = static_cast<Zpp16s>(random() % 4001) - 2000;
        impulse[n] = static_cast<Zpp16s>(n == 0 ? 4096 : decay * (static_cast<double>(random() % 201) / 100 - 1));
        decay *= 0.8;
      }
      const auto subframe = static_cast<Zpp16s>(repeat % 4);
      ASSERT_EQ(zppsAlgebraicCodebookSearch_GSMAMR_16s(40, 16000, target.data(), residual.data(), impulse.data(), code.data(),
                                                       filtered.data(), codeword.data(), subframe, rate),
                zppStsOk);
      ASSERT_EQ(zppsFixedCodebookDecode_GSMAMR_16s(codeword.data(), decoded.data(), subframe, rate), zppStsOk);
      ASSERT_EQ(decoded, code) << rate << " subframe " << subframe;
    }
}

// At the two highest rates the pulses take the signs of target and residual, each over its norm. A loud residual counts as one
// whose doubled energy is 2^31 - 1; where the target is the stronger, the signs are still its own.
TEST(FixedCodebook, TakesTheSignsOfTheTargetBesideALoudResidual) {
  std::array<Zpp16s, 40> impulse = {4096};
  for (const ZppSpeechRate rate : {ZPP_RATE_10200, ZPP_RATE_12200})
    for (const int level : {100, 5000, 6000, 8000, 12000}) {
      std::array<Zpp16s, 40> target = {}, residual, code, filtered;
      std::array<Zpp16s, 10> codeword;
      residual.fill(static_cast<Zpp16s>(level));
      const std::size_t tracks = rate == ZPP_RATE_10200 ? 4 : 5;
      std::fill_n(target.begin(), tracks, Zpp16s{-1000});
      ASSERT_EQ(zppsAlgebraicCodebookSearch_GSMAMR_16s(40, 0, target.data(), residual.data(), impulse.data(), code.data(),
                                                       filtered.data(), codeword.data(), 0, rate),
                zppStsOk);
      for (std::size_t n = 0; n < tracks; ++n) EXPECT_LT(code[n], 0) << rate << ", residual " << level << ", sample " << n;
    }
}

// Every lag that the searches can find has an index of its own that decodes to it.
TEST(LagCoding, RoundTrip) {
  const auto isLast = [](int resolution, int fraction) { return fraction == (resolution == 3 ? 1 : 3); };
  for (const int resolution : {3, 6}) {
    const int first = resolution == 3 ? -1 : -2, last = resolution == 3 ? 1 : 3, minLag = resolution == 3 ? 20 : 18;
    const int maxFractional = resolution == 3 ? 84 : 94;
    const auto check = [&](PitchLag lag, LagCoding coding, LagRange range, int indices) {
      const int index = resolution == 3 ? ownEncLag3(lag, coding, range) : ownEncLag6(lag, coding, range);
      const PitchLag back = resolution == 3 ? ownDecLag3(index, coding, range) : ownDecLag6(index, coding, range);
      ASSERT_GE(index, 0);
      ASSERT_LT(index, indices);
      ASSERT_EQ(back.samples, lag.samples) << index;
      ASSERT_EQ(back.fraction, lag.fraction) << index;
    };
    for (int samples = minLag - 1; samples <= kMaxLag; ++samples)
      for (int fraction = first; fraction <= last; ++fraction) {
        if (samples == minLag - 1 && !isLast(resolution, fraction)) continue;
        if (samples > maxFractional && fraction != 0 && !(samples == maxFractional + 1 && fraction < 0 && resolution == 3))
          continue;
        check({samples, fraction}, LagCoding::absolute, {}, resolution == 3 ? 256 : 512);
      }
    for (int previous = minLag; previous <= kMaxLag; ++previous) {
      const LagRange near = getRange(previous, 5, 9, minLag), wide = getRange(previous, 10, 19, minLag);
      ASSERT_EQ(near.max - near.min, 9);
      for (int samples = near.min; samples <= near.max; ++samples)
        for (int fraction = first; fraction <= last; ++fraction)
          check({samples, fraction}, LagCoding::delta, near, resolution == 3 ? 32 : 61);
      if (resolution == 6) continue;
      for (int samples = wide.min; samples <= wide.max; ++samples)
        for (int fraction = first; fraction <= last; ++fraction) check({samples, fraction}, LagCoding::delta, wide, 64);
      const int centre = centreOf(near);
      for (int samples = near.min; samples <= near.max; ++samples)
        for (int fraction = first; fraction <= last; ++fraction) {
          const int thirds = 3 * (samples - centre) + fraction;
          if (fraction == 0 || (thirds > -6 && thirds < 3)) check({samples, fraction}, LagCoding::delta4, near, 16);
        }
    }
  }
}

// Sums that saturate half-way and come back: with 32767 as excitation from a response of magnitudes 32768 on
TEST(AdaptiveCodebook, FiltersTheExcitationWithSaturatingSums) {
  std::mt19937 random(6);
  for (const int total : {30000, 32767, 32768, 32769, 32780, 40000, 65536, 131072, 400000})
    for (int repeat = 0; repeat < 20; ++repeat) {
      std::array<Zpp16s, 80> past;
      std::array<Zpp16s, 40> impulse, filtered, wanted;
      for (Zpp16s& x : past) x = repeat % 2 == 0 ? Zpp16s{32767} : static_cast<Zpp16s>(random() % 3 == 0 ? 32767 : -32768);
      int left = total;
      for (std::size_t n = 0; n < 40; ++n) {
        const int magnitude =
            std::min({left, 32767, n == 39 ? left : static_cast<int>(random() % static_cast<unsigned>(total / 8))});
        impulse[n] = static_cast<Zpp16s>(n < 12 ? magnitude : -magnitude);
        left -= magnitude;
      }
      for (std::size_t n = 0; n < 40; ++n) {
        Zpp32s sum = 0;
        for (std::size_t i = 0; i <= n; ++i) sum = zpp::macDbl(sum, past[i], impulse[n - i]);
        wanted[n] = zpp::high16(zpp::shlSat32(sum, 3));
      }
      ownFilteredExcitation_GSMAMR_16s(past.data() + 20, 20, impulse.data(), filtered.data());
      ASSERT_EQ(filtered, wanted) << total << ' ' << repeat;
    }
}

struct Decoded {
  Zpp16s lastGoodLag, decodedLag = -1, lag;
  bool sound;  // the past untouched, the vector in both places, nothing else written
};

Decoded decode(ZppSpeechRate rate, int subframe, int index, int lastGoodLag, int lag, int badFrame = 0, int noise = 0,
               int hangover = 0) {
  static Buffer<Zpp16s> excitation(194), vector(40);
  Decoded d{static_cast<Zpp16s>(lastGoodLag), -1, static_cast<Zpp16s>(lag), true};
  for (std::size_t n = 0; n < 194; ++n) excitation[n] = static_cast<Zpp16s>(n * n * 37 % 4001);
  EXPECT_EQ(
      zppsAdaptiveCodebookDecode_GSMAMR_16s(static_cast<Zpp16s>(index), &d.lastGoodLag, &d.decodedLag, excitation.get(), &d.lag,
                                            vector.get(), static_cast<Zpp16s>(subframe), static_cast<Zpp16s>(badFrame),
                                            static_cast<Zpp16s>(noise), static_cast<Zpp16s>(hangover), rate),
      zppStsOk);
  d.sound = excitation.intact() && vector.intact() && std::equal(vector.get(), vector.get() + 40, excitation.get() + 154);
  for (std::size_t n = 0; n < 154; ++n) d.sound = d.sound && excitation[n] == static_cast<Zpp16s>(n * n * 37 % 4001);
  return d;
}

TEST(AdaptiveCodebook, DecodesAnyIndexAndLagWithinTheBuffer) {
  constexpr int kLags[] = {-32768, -1, 0, 17, 20, 100, 143, 144, 200, 32767};
  for (int subframe = 0; subframe < 4; ++subframe)
    for (const int previous : kLags)
      for (const int badFrame : {0, 1}) {
        for (const ZppSpeechRate rate : kRates)
          for (int index = 0; index < 512; index += rate == ZPP_RATE_12200 || badFrame ? 61 : 1) {
            const Decoded d = decode(rate, subframe, index, previous, previous, badFrame);
            ASSERT_TRUE(d.sound) << rate << ' ' << subframe << ' ' << index << ' ' << previous;
            ASSERT_GE(d.lag, 17);
            ASSERT_LE(d.lag, 144);
          }
        for (int index = -32768; index < 32768; index += 257)
          ASSERT_TRUE(decode(ZPP_RATE_12200, subframe, index, previous, previous, badFrame).sound) << index << ' ' << previous;
      }
  EXPECT_EQ(decode(ZPP_RATE_7950, 0, 256, 50, 50).lag, 143);
  EXPECT_EQ(decode(ZPP_RATE_7950, 0, 256, 50, 50).decodedLag, 144);
}

TEST(AdaptiveCodebook, SubstitutesTheLagOfErasedFrames) {
  // Index 100 of subframe 0 is lag 53 less a third, at 12.2 kbit/s 34 and a sixth.
  for (const ZppSpeechRate rate : {ZPP_RATE_4750, ZPP_RATE_5900, ZPP_RATE_6700, ZPP_RATE_7950, ZPP_RATE_10200, ZPP_RATE_DTX}) {
    Decoded d = decode(rate, 0, 100, 60, 0, 1);
    EXPECT_EQ(std::tuple(d.lag, d.lastGoodLag, d.decodedLag), std::tuple(61, 61, 53)) << rate;
    d = decode(rate, 0, 100, 143, 0, 1);
    EXPECT_EQ(std::tuple(d.lag, d.lastGoodLag), std::tuple(143, 143)) << rate;
    // 144, which a delta subframe can have, is repeated; nothing beyond it is.
    EXPECT_EQ(decode(rate, 0, 100, 144, 0, 1).lag, 144) << rate;
    EXPECT_EQ(decode(rate, 0, 100, 145, 0, 1).lag, 143) << rate;
    // Long voiced hangover in background noise: the lower rates keep the decoded lag, and count on.
    d = decode(rate, 0, 100, 60, 0, 1, 1, 5);
    EXPECT_EQ(std::tuple(d.lag, d.lastGoodLag), std::tuple(rate <= ZPP_RATE_5900 ? 53 : 61, 61)) << rate;
    EXPECT_EQ(decode(rate, 0, 100, 60, 0, 1, 1, 4).lag, 61) << rate;
    EXPECT_EQ(decode(rate, 0, 100, 60, 0, 1, 0, 5).lag, 61) << rate;
    d = decode(rate, 0, 100, 60, 0, 0, 1, 5);
    EXPECT_EQ(std::tuple(d.lag, d.lastGoodLag, d.decodedLag), std::tuple(53, 60, 53)) << rate;
  }
  for (const int subframe : {0, 1}) {
    const Decoded d = decode(ZPP_RATE_12200, subframe, 20, 60, 50, 1);
    EXPECT_EQ(std::tuple(d.lag, d.lastGoodLag, d.decodedLag), std::tuple(60, 60, subframe == 0 ? 21 : 48));
  }
  for (const int index : {60, 61, 63}) {
    const Decoded d = decode(ZPP_RATE_12200, 1, index, 60, 50);
    EXPECT_EQ(d.lag, index == 60 ? 54 : 60);
    EXPECT_EQ(d.lastGoodLag, 60);
  }
}

TEST(ToeplizMatrix, WritesThePairsOfTracksOfTheMode) {
  constexpr double kAny = 99999;  // of the golden vectors: not prescribed
  const auto check = [](const char* name, auto call) {
    for (const auto& golden : test::readGolden(std::string(TEST_DATA_DIR) + "/amr/" + name + ".cases")) {
      const auto& response = golden.in.at("impulse");
      const auto& signs = golden.in.at("sign");
      const std::vector<Zpp16s> impulse(response.begin(), response.end()), sign(signs.begin(), signs.end());
      Buffer<Zpp32s> matrix(1600);
      const auto subframe = golden.in.find("subframe");
      call(impulse.data(), sign.data(), matrix.get(),
           static_cast<Zpp16s>(subframe == golden.in.end() ? 0 : subframe->second.at(0)));
      const auto& want = golden.out.at("matrix");
      for (std::size_t i = 0; i < 1600; ++i)
        ASSERT_TRUE(want[i] == kAny || want[i] == matrix[i]) << name << ' ' << i / 40 << ' ' << i % 40;
    }
  };
#define WITHOUT_SUBFRAME(f) #f, [](auto impulse, auto sign, auto matrix, Zpp16s) { f(impulse, sign, matrix); }
  check(WITHOUT_SUBFRAME(_zppsToeplizMatrix_GSMAMR_r74_16s32s));
  check(WITHOUT_SUBFRAME(_zppsToeplizMatrix_r67_GSMAMR_16s32s));
  check(WITHOUT_SUBFRAME(_zppsToeplizMatrix_r59_GSMAMR_16s32s));
  check("_zppsToeplizMatrix_r515_GSMAMR_16s32s", _zppsToeplizMatrix_r515_GSMAMR_16s32s);
#undef WITHOUT_SUBFRAME
}

// Of pairs of pulses with equal quotients but different squares and energies the first counts, and the pairs that follow are
// built on its energy. Small correlations and coarse energies make such ties.
TEST(PulseSearch, GoesOnWithTheFirstOfEqualQuotients) {
  std::mt19937 random(1);
  const auto below = [&random](int count) { return static_cast<Zpp16s>(random() % static_cast<unsigned>(count)); };
  for (int run = 0; run < 3000; ++run) {
    const int tracks = 4 + run % 2, perTrack = kSubframe / tracks, pulses = 2 * tracks;
    std::array<Zpp16s, kSubframe> corr;
    std::array<Zpp16s, kSubframe * kSubframe> matrix;
    for (Zpp16s& c : corr) c = below(251);
    for (Zpp16s& entry : matrix) entry = static_cast<Zpp16s>(8000 * (1 + below(3)));
    std::array<Zpp16s, 5> trackBest{};
    std::array<Zpp16s, 10> trackOrder{}, expected{}, slots{};
    for (int t = 0; t < tracks; ++t) trackBest[static_cast<unsigned>(t)] = static_cast<Zpp16s>(t * perTrack + below(perTrack));
    for (int k = 0; k < pulses; ++k) trackOrder[static_cast<unsigned>(k)] = static_cast<Zpp16s>((run + k) % tracks);
    ownSearchOptimalPulsePos_M102M122_GSMAMR_16s_PX(corr.data(), matrix.data(), trackBest.data(), trackOrder.data(),
                                                    expected.data(), pulses, tracks);
    ownSearchOptimalPulsePos_M102M122_GSMAMR_16s(corr.data(), matrix.data(), trackBest.data(), trackOrder.data(), slots.data(),
                                                 pulses, tracks);
    ASSERT_EQ(slots, expected) << "run " << run;
  }
}

// The standard walks down from the interval of the LSP before, and so never back up where LSPs are out of order.
TEST(Lsf, ComesOfTheIntervalThatAWalkFinds) {
  std::mt19937 random(7);
  const auto number = [&](int least, int most) { return std::uniform_int_distribution<int>(least, most)(random); };
  for (int run = 0; run < 20000; ++run) {
    Zpp16s lsp[10], lsf[10];
    for (Zpp16s& x : lsp)
      x = static_cast<Zpp16s>(run % 3 == 0 ? std::clamp(cos15[number(0, 64)] + number(-1, 1), -32768, 32767)
                                           : number(-32768, 32767));
    if (run % 2 == 0) std::sort(lsp, lsp + 10, std::greater<>());
    ownLSPToLSF_GSMAMR_16s(lsp, lsf);
    for (int i = 9, interval = 63; i >= 0; --i) {
      while (cos15[interval] < lsp[i]) --interval;
      const Zpp16s offset = zpp::subSat16(lsp[i], cos15[interval]);
      const Zpp32s steps = zpp::shlSat32(zpp::mulDbl(offset, acos12[interval]), 3);
      ASSERT_EQ(lsf[i], zpp::addSat16(zpp::roundHigh16(steps), interval * 256)) << i;
    }
  }
}

}  // namespace
