// What the table of exports cannot say about the G.722.1 room: transforms in place and as a chain, the coder's extents at
// every setting, and the code tables against the decoding trees.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "codecs/g7221/tables.h"
#include "g7221/quantisation.h"
#include "g7221/tables.h"
#include "zppsc.h"

namespace {

using Frame = std::vector<Zpp16s>;

Frame noise(std::mt19937& random, int amplitude) {
  Frame frame(320);
  for (Zpp16s& x : frame)
    x = static_cast<Zpp16s>(static_cast<int>(random() % static_cast<unsigned>(2 * amplitude + 1)) - amplitude);
  return frame;
}

TEST(Transforms, WorkInPlace) {
  std::mt19937 random(1);
  for (const auto transform : {zppsDCTFwd_G722_16s, zppsDCTInv_G722_16s}) {
    const Frame src = noise(random, 9000);
    Frame apart(320), inPlace = src;
    transform(src.data(), apart.data());
    transform(inPlace.data(), inPlace.data());
    EXPECT_EQ(inPlace, apart);
  }
}

// Analysis and synthesis cancel each other's aliasing: the signal comes back one frame later, but for rounding and biases.
TEST(Transforms, GiveTheSignalBackAFrameLater) {
  std::mt19937 random(2);
  for (const int amplitude : {0, 300, 12000}) {
    Frame newer = noise(random, amplitude), older(320), oldSamples(320), overlap(160), x(320), decoded(320);
    for (int f = 0; f < 6; ++f) {
      zppsDecomposeMLTToDCT_G722_16s(newer.data(), oldSamples.data(), x.data());
      EXPECT_EQ(oldSamples, newer);
      zppsDCTFwd_G722_16s(x.data(), x.data());
      zppsDCTInv_G722_16s(x.data(), x.data());
      zppsDecomposeDCTToMLT_G722_16s(x.data(), overlap.data(), decoded.data());
      double error = 0;
      for (std::size_t n = 0; n < 320; ++n) error += std::pow(decoded[n] - older[n], 2) / 320;
      EXPECT_LT(std::sqrt(error), 18 + amplitude * 0.001) << "amplitude " << amplitude << ", frame " << f;
      older = newer;
      newer = noise(random, amplitude);
    }
  }
}

TEST(RegionCoding, WritesTheWordsOfItsBitsAtEverySetting) {
  std::mt19937 random(3);
  for (int category = 0; category < 8; ++category)
    for (int power = 0; power < 64; ++power)
      for (const int amplitude : {0, 1, 40, 1500, 32767}) {
        Frame region = noise(random, amplitude);
        region[3] = amplitude == 32767 ? -32768 : region[3];
        std::vector<Zpp32u> words(8, 0xdeadbeef);
        Zpp32s bits = -1;
        ASSERT_EQ(zppsHuffmanEncode_G722_16s32u(category, power, region.data(), words.data(), &bits), zppStsOk);
        ASSERT_LE(bits, 180);
        ASSERT_GE(bits, category < 7 ? cnstVecNumbers_G722[category] : 0);
        const auto used = static_cast<std::size_t>(std::max(1, (bits + 31) / 32));
        ASSERT_EQ(std::count(words.begin(), words.end(), 0xdeadbeef), 8 - static_cast<std::ptrdiff_t>(used));
        ASSERT_EQ(words[used], 0xdeadbeef);
        if (bits % 32 != 0 || bits == 0) {
          ASSERT_EQ(words[used - 1] << bits % 32, 0u) << "bits behind the end";
        }
      }
}

// The two lowest bits of step and dead zone, handled apart, count as if all bits were taken at once.
TEST(RegionCoding, QuantisesWithAllBitsOfStepAndDeadZone) {
  for (int category = 0; category < 7; ++category)
    for (int power = 0; power < 64; ++power) {
      const Quantiser quantiser(category, power);
      const int inverse = 4 * quantiser.inverse + quantiser.inverseLowBits;
      const int deadZone = 4 * cnstIntDeadZone_G722[category] + cnstIntDeadZone_G722_low_bits[category];
      EXPECT_EQ(inverse, (cnstStepSizeInv_G722[category] * cnstStdDeviationInv_G722[power] + 4096) >> 13);
      for (int magnitude = 0; magnitude < 5000; ++magnitude) {
        const auto level = std::min<Zpp64s>((Zpp64s{magnitude} * inverse + deadZone) >> 15, cnstMaxBin_G722[category]);
        ASSERT_EQ(quantiser(static_cast<Zpp16s>(magnitude)), level) << category << ' ' << power << ' ' << magnitude;
        ASSERT_EQ(quantiser(static_cast<Zpp16s>(-magnitude)), level) << category << ' ' << power << ' ' << -magnitude;
      }
    }
}

TEST(RegionCoding, OfAZeroRegionTakesTheShortestCodes) {
  const Frame zeros(20);
  const int expected[] = {10, 10, 10, 10, 10, 8, 4, 0};
  for (int category = 0; category < 8; ++category) {
    Zpp32u words[6];
    Zpp32s bits = -1;
    zppsHuffmanEncode_G722_16s32u(category, 30, zeros.data(), words, &bits);
    EXPECT_EQ(bits, expected[category]) << category;
  }
}

// The decoder's trees are tables of their own. Some rare vectors share a code word with another one of the same length.
TEST(RegionCoding, EveryCodeWordLeadsThroughTheDecodingTreeToItsVector) {
  const Zpp16s* lengths[] = {cnstMltSqvhBitcountCtg0_G722, cnstMltSqvhBitcountCtg1_G722, cnstMltSqvhBitcountCtg2_G722,
                             cnstMltSqvhBitcountCtg3_G722, cnstMltSqvhBitcountCtg4_G722, cnstMltSqvhBitcountCtg5_G722,
                             cnstMltSqvhBitcountCtg6_G722};
  const Zpp16u* codes[] = {cnstMltSqvhCodeCtg0_G722, cnstMltSqvhCodeCtg1_G722, cnstMltSqvhCodeCtg2_G722,
                           cnstMltSqvhCodeCtg3_G722, cnstMltSqvhCodeCtg4_G722, cnstMltSqvhCodeCtg5_G722,
                           cnstMltSqvhCodeCtg6_G722};
  const int shared[] = {15, 6, 1, 105, 47, 51, 0};
  for (int category = 0; category < 7; ++category) {
    const int vectors =
        static_cast<int>(std::lround(std::pow(cnstMaxBin_G722[category] + 1, cnstVecDimentions_G722[category])));
    int elsewhere = 0;
    for (int index = 0; index < vectors; ++index) {
      int node = 0;
      for (int bit = lengths[category][index] - 1; bit >= 0; --bit) {
        ASSERT_TRUE(node > 0 || bit == lengths[category][index] - 1) << "the tree ends before the code word";
        node = codecs::g7221::vectorTrees[category].nodes[2 * node + (codes[category][index] >> bit & 1)];
      }
      ASSERT_LE(node, 0) << "the code word ends before the tree: category " << category << ", vector " << index;
      if (-node == index) continue;
      ++elsewhere;
      ASSERT_EQ(codes[category][index], codes[category][-node]) << category << " " << index;
      ASSERT_EQ(lengths[category][index], lengths[category][-node]) << category << " " << index;
    }
    EXPECT_EQ(elsewhere, shared[category]) << category;
  }
}

}  // namespace
