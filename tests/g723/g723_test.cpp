// What the table of exports cannot say about G.723.1: the spectral chain on speech, calls in place, coded parameters at their
// limits and arguments that no codec passes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/fixed_point.h"
#include "g723/lsf/root_search.h"
#include "g723/tables.h"
#include "support/golden.h"
#include "support/guarded.h"

namespace {

using V16 = std::vector<Zpp16s>;

std::vector<test::GoldenCase> cases(const char* name) { return test::readGolden(std::string(TEST_DATA_DIR) + "/g723/" + name); }

V16 as16(const std::vector<double>& values) { return V16(values.begin(), values.end()); }

V16 unpacked(Zpp32s index) {
  return {static_cast<Zpp16s>(index >> 16), static_cast<Zpp16s>(index >> 8 & 255), static_cast<Zpp16s>(index & 255)};
}

const V16 meanLsf = {3131, 4721, 7690, 10806, 13872, 16495, 19752, 22260, 25484, 27718};

// The encoder's LSF indices for official input, from windowed blocks to the 24 bits in the stream, and back to LPC.
TEST(SpectralChain, GivesTheIndicesOfTheOfficialStream) {
  for (const auto& golden : cases("lsf_chain.cases")) {
    const V16 speech = as16(golden.in.at("speech"));
    V16 previous = as16(golden.in.at("prevLsf"));
    const auto& wanted = golden.out.at("index");
    Zpp16s sineDetector = 0;
    for (std::size_t frame = 0; frame < wanted.size(); ++frame) {
      Zpp16s exponent, energy;
      V16 autocorr(11), lpc(10), lsf(10), decoded(10), back(10);
      zppsAutoCorr_G723_16s(speech.data() + 240 * frame + 180, &exponent, autocorr.data());
      zppsLevinsonDurbin_G723_16s(autocorr.data(), &sineDetector, &energy, lpc.data());
      zppsLPCToLSF_G723_16s(lpc.data(), previous.data(), lsf.data());
      Zpp32s index = -1;
      zppsLSFQuant_G723_16s32s(lsf.data(), previous.data(), &index);
      ASSERT_EQ(index, wanted[frame]) << "frame " << frame;
      ASSERT_EQ(zppsLSFDecode_G723_16s(unpacked(index).data(), previous.data(), 0, decoded.data()), zppStsOk);
      previous = decoded;
      zppsLSFToLPC_G723_16s(decoded.data(), lpc.data());
      ASSERT_EQ(_zppsLPCToLSF_Norm_G723_16s(lpc.data(), back.data()), 0);
      for (std::size_t j = 0; j < 10; ++j)
        EXPECT_NEAR(back[j], decoded[j], 512) << "the bandwidth expansion moves them a little";
    }
  }
}

// Lag 1 of this block saturates after three products and comes back with the next one: the order of the steps shows.
TEST(Autocorrelation, SaturatesStepByStepInTimeOrder) {
  V16 block(180);
  std::fill_n(block.begin(), 4, 32767);
  block[4] = -32767;
  V16 autocorr(11);
  Zpp32s norm = -1;
  ASSERT_EQ(zppsAutoCorr_NormE_G723_16s(block.data(), autocorr.data(), &norm), zppStsOk);
  EXPECT_EQ(norm, 0);
  EXPECT_EQ(autocorr[0], 32767);
  EXPECT_EQ(autocorr[1], 16375) << "an exact sum gives 32747";
}

// Blocks with energies around 2^31 whose lags grow and then shrink
TEST(Autocorrelation, SaturatesFromAnEnergyOf31BitsOn) {
  for (const Zpp16s level : {1000, 3453, 3454, 3455, 3456, 3700, 4300, 4900, 9000}) {
    V16 block(180), autocorr(11), wanted(11);
    for (std::size_t n = 0; n < 180; ++n) block[n] = static_cast<Zpp16s>(n < 120 || n % 2 == 0 ? level : -level);
    const auto lag = [&block](std::size_t k) {
      Zpp32s sum = 0;
      for (std::size_t j = k; j < 180; ++j) sum = zpp::addSat32(sum, block[j] * block[j - k]);
      return sum;
    };
    const Zpp32s energy = zpp::addSat32(lag(0), lag(0) >> 10);
    const int shift = zpp::norm32(energy);
    wanted[0] = zpp::roundHigh16(zpp::shlSat32(energy, shift));
    for (std::size_t k = 1; k < 11; ++k)
      wanted[k] = zpp::roundHigh16(zpp::mul32Q15(zpp::shlSat32(lag(k), shift), BinomWindowCoeffTbl_G723[k]));
    Zpp32s norm = -1;
    ASSERT_EQ(zppsAutoCorr_NormE_G723_16s(block.data(), autocorr.data(), &norm), zppStsOk);
    EXPECT_EQ(norm, shift) << level;
    EXPECT_EQ(autocorr, wanted) << level;
  }
}

TEST(Autocorrelation, TakesTheMostNegativeBlock) {
  V16 low(180, -32768), high(180, 32767), autocorr(11), other(11);
  Zpp16s exponent = 0;
  Zpp32s norm = -1;
  ASSERT_EQ(zppsAutoCorr_G723_16s(low.data(), &exponent, autocorr.data()), zppStsOk);
  EXPECT_EQ(exponent, -6);
  ASSERT_EQ(zppsAutoCorr_G723_16s(high.data(), &exponent, other.data()), zppStsOk);
  for (std::size_t k = 0; k < 11; ++k) EXPECT_NEAR(autocorr[k], other[k], 16) << "blocks of opposite sign, lag " << k;
  ASSERT_EQ(zppsAutoCorr_NormE_G723_16s(low.data(), autocorr.data(), &norm), zppStsOk);
  EXPECT_EQ(autocorr[0], 32767);
}

TEST(RootSearch, InterpolatesWithinTheRange) {
  EXPECT_EQ(interpolateRoot(256, -1000, 0), 32767) << "a root at the Nyquist frequency";
  EXPECT_EQ(interpolateRoot(1, 0, -5), 0);
  EXPECT_EQ(interpolateRoot(3, zpp::kMin32, 5), 384) << "the magnitude and the sum saturate";
}

// One buffer as source and destination: a failed search must not have overwritten the previous set.
TEST(Lsf, ConvertsAndDecodesInPlace) {
  int failed = 0;
  for (const auto& golden : cases("zppsLPCToLSF_G723_16s.vec")) {
    const V16 lpc = as16(golden.in.at("lpc")), previous = as16(golden.in.at("prevLsf")), wanted = as16(golden.out.at("lsf"));
    V16 overPrevious = previous, overLpc = lpc;
    ASSERT_EQ(zppsLPCToLSF_G723_16s(lpc.data(), overPrevious.data(), overPrevious.data()), zppStsOk);
    ASSERT_EQ(zppsLPCToLSF_G723_16s(overLpc.data(), previous.data(), overLpc.data()), zppStsOk);
    EXPECT_EQ(overPrevious, wanted) << golden.label;
    EXPECT_EQ(overLpc, wanted) << golden.label;
    failed += wanted == previous;
  }
  EXPECT_GT(failed, 0) << "the vectors hold failed searches";
  for (const auto& golden : cases("zppsLSFDecode_G723_16s.vec")) {
    V16 lsf = as16(golden.in.at("prevLsf"));
    const auto erased = static_cast<Zpp32s>(golden.in.at("erased").at(0));
    EXPECT_EQ(zppsLSFDecode_G723_16s(as16(golden.in.at("index")).data(), lsf.data(), erased, lsf.data()), golden.status);
    EXPECT_EQ(lsf, as16(golden.out.at("lsf"))) << golden.label;
  }
}

TEST(LsfDecoder, TakesTheLowEightBitsOfAnIndex) {
  for (const int high : {256, 0x7f00, -32768, -256}) {
    const V16 plain = {17, 200, 255},
              wide = {static_cast<Zpp16s>(17 + high), static_cast<Zpp16s>(200 + high), static_cast<Zpp16s>(255 + high)};
    V16 wanted(10), got(10);
    EXPECT_EQ(zppsLSFDecode_G723_16s(wide.data(), meanLsf.data(), 0, got.data()),
              zppsLSFDecode_G723_16s(plain.data(), meanLsf.data(), 0, wanted.data()));
    EXPECT_EQ(got, wanted) << high;
  }
}

TEST(LsfDecoder, DoesNotReadTheIndicesOfALostFrame) {
  test::Guarded memory(64);
  const auto* unreadable = reinterpret_cast<const Zpp16s*>(memory.claim(0, {}, 2));
  V16 lsf(10), same(10);
  ASSERT_EQ(zppsLSFDecode_G723_16s(unreadable, meanLsf.data(), -1, lsf.data()), zppStsOk);
  EXPECT_EQ(lsf, meanLsf) << "the mean predicts itself";
}

class AdaptiveVector : public testing::Test {
 protected:
  // History at the start of its memory, so that reading before it faults, or at the end.
  ZppStatus decode(int lag, int offset, int gainIndex, ZppSpeechRate rate, test::Place place = {test::Place::Kind::start}) {
    auto* history = reinterpret_cast<Zpp16s*>(memory.claim(145 * sizeof(Zpp16s), place, sizeof(Zpp16s)));
    for (int n = 0; n < 145; ++n) history[n] = static_cast<Zpp16s>(1000 + n);
    std::fill(dst.begin(), dst.end(), Zpp16s{12345});
    return zppsDecodeAdaptiveVector_G723_16s(static_cast<Zpp16s>(lag), static_cast<Zpp16s>(offset),
                                             static_cast<Zpp16s>(gainIndex), history, dst.data(), rate);
  }
  test::Guarded memory{512};
  V16 dst = V16(60);
};

TEST_F(AdaptiveVector, AcceptsEveryLagAndGainOfItsChecks) {
  for (int lag = 18; lag <= 146; ++lag)
    for (int offset = 0; offset <= 3; ++offset)
      for (int gain = 0; gain < 170; ++gain)
        for (const auto rate : {ZPP_RATE_5300, ZPP_RATE_6300}) {
          const bool coded = lag + offset <= 146 && (rate == ZPP_RATE_5300 || lag >= 58 || gain <= 85);
          const auto place = gain % 2 == 0 ? test::Place::Kind::start : test::Place::Kind::end;
          ASSERT_EQ(decode(lag, offset, gain, rate, {place}), coded ? zppStsOk : zppStsBadCodedParam)
              << lag << " " << offset << " " << gain << " " << rate;
          ASSERT_TRUE(coded || dst == V16(60, 12345));
        }
}

TEST_F(AdaptiveVector, HasASilentSpareRowBehindTheHighRateTable) {
  ASSERT_EQ(decode(57, 1, 85, ZPP_RATE_6300), zppStsOk);
  EXPECT_EQ(dst, V16(60, 0));
}

TEST_F(AdaptiveVector, ChoosesItsTableByTheLagWithoutTheOffset) {
  ASSERT_EQ(decode(57, 3, 40, ZPP_RATE_6300), zppStsOk);
  const V16 shortLag = dst;
  ASSERT_EQ(decode(59, 1, 40, ZPP_RATE_6300), zppStsOk);
  EXPECT_NE(dst, shortLag);
  const V16 longLag = dst;
  ASSERT_EQ(decode(57, 3, 40, ZPP_RATE_5300), zppStsOk);
  EXPECT_EQ(dst, longLag) << "the same delay from the same table";
}

TEST_F(AdaptiveVector, CountsWhatLiesBeforeTheHistoryAsZero) {
  V16 history(145), work(64);
  for (std::size_t n = 0; n < history.size(); ++n) history[n] = static_cast<Zpp16s>(1000 + n);
  for (const int delay : {143, 144, 145}) {
    ASSERT_EQ(_zppsExcitationDelay_G723_16s(history.data(), work.data(), delay), zppStsOk);
    for (int n = 0; n < 64; ++n) {
      const int at = 143 - delay + n;
      EXPECT_EQ(work[static_cast<std::size_t>(n)], at < 0 ? 0 : 1000 + at) << "delay " << delay << ", sample " << n;
    }
  }
}

// Any 16-bit values whatever: nothing beyond the buffers is touched (nor beyond the tables, as sanitizer builds see), the
// results stay in range, and the same call gives the same result.
TEST(AnyArguments, AreHarmless) {
  unsigned noise = 1;
  const auto next = [&noise] { return static_cast<Zpp16s>((noise = noise * 1664525u + 1013904223u) >> 16); };
  test::Guarded memory[4] = {test::Guarded(512), test::Guarded(512), test::Guarded(512), test::Guarded(512)};
  test::Place place;
  const auto buffer = [&](int which, std::size_t elements) {
    auto* p = reinterpret_cast<Zpp16s*>(memory[which].claim(elements * sizeof(Zpp16s), place, sizeof(Zpp16s)));
    const int kind = next() & 3;  // noise, low bits, extremes
    std::generate_n(p, elements, [&] {
      const Zpp16s v = next();
      return kind < 2 ? v : kind == 2 ? static_cast<Zpp16s>(v & 3) : static_cast<Zpp16s>(v < 0 ? -32768 : 32767);
    });
    return p;
  };
  for (int round = 0; round < 3000; ++round) {
    place = {round % 2 == 0 ? test::Place::Kind::end : test::Place::Kind::start};
    Zpp16s exponent, energy, detector = next();
    Zpp32s index = -1, norm = -1;
    const Zpp16s* block = buffer(0, 180);
    Zpp16s* autocorr = buffer(1, 11);
    Zpp16s* lpc = buffer(2, 10);
    Zpp16s* lsf = buffer(3, 10);
    ASSERT_EQ(zppsLevinsonDurbin_G723_16s(autocorr, &detector, &energy, lpc), zppStsOk);
    ASSERT_EQ(zppsAutoCorr_G723_16s(block, &exponent, autocorr), zppStsOk);
    ASSERT_EQ(zppsAutoCorr_NormE_G723_16s(block, autocorr, &norm), zppStsOk);
    ASSERT_TRUE(autocorr[0] == 0 || autocorr[0] >= 16384) << autocorr[0];
    ASSERT_EQ(zppsLSFQuant_G723_16s32s(lsf, lpc, &index), zppStsOk);
    ASSERT_TRUE(index >= 0 && index <= 0xffffff) << index;
    ASSERT_EQ(zppsLPCToLSF_G723_16s(lpc, lsf, autocorr), zppStsOk);
    const ZppStatus status = zppsLSFDecode_G723_16s(lpc, lsf, round % 3 == 0, autocorr);
    ASSERT_TRUE(status == zppStsOk || status == zppStsLSFLowClamped) << status;
    ASSERT_EQ(zppsLSFToLPC_G723_16s(lsf, lpc), zppStsOk);
    ASSERT_EQ(zppsLSFToLPC_G723_16s_I(lsf), zppStsOk);
    ASSERT_EQ(std::memcmp(lsf, lpc, 10 * sizeof(Zpp16s)), 0);
    for (auto& m : memory) ASSERT_TRUE(m.canariesIntact());
  }
}

}  // namespace
