// What the table of exports cannot say about the single-precision LP analysis and LSP quantisation of G.729.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "zppsc.h"

namespace {

using Ten = std::array<Zpp32f, 10>;
using Eleven = std::array<Zpp32f, 11>;
using Memory = std::array<Zpp32f, 40>;

constexpr Zpp32f kNaN = std::numeric_limits<Zpp32f>::quiet_NaN(), kInfinity = std::numeric_limits<Zpp32f>::infinity();

class Lsp32f : public testing::Test {
 protected:
  Zpp32f between(double lowest, double highest) {
    return static_cast<Zpp32f>(std::uniform_real_distribution<double>(lowest, highest)(random));
  }
  Zpp16s word(int lowest, int highest) {
    return static_cast<Zpp16s>(std::uniform_int_distribution<int>(lowest, highest)(random));
  }
  // Ascending LSFs at least `gap` apart
  Ten lsfs(double gap) {
    Ten lsf;
    for (auto& f : lsf) f = between(0.05, 3.05 - 10 * gap);
    std::sort(lsf.begin(), lsf.end());
    for (std::size_t i = 0; i < 10; ++i) lsf[i] += static_cast<Zpp32f>(gap * static_cast<double>(i));
    return lsf;
  }
  static Ten lsps(const Ten& lsf) {
    Ten lsp;
    std::transform(lsf.begin(), lsf.end(), lsp.begin(), [](Zpp32f f) { return std::cos(f); });
    return lsp;
  }
  static Memory flatMemory() {
    Memory m;
    for (std::size_t i = 0; i < 40; ++i) m[i] = 0.285599f * static_cast<Zpp32f>(i % 10 + 1);
    return m;
  }

  std::mt19937 random{1};
};

TEST_F(Lsp32f, QuantiserOfAnnexEAndDecoderKeepTheSameMemory) {
  Memory encoder = flatMemory(), decoder = encoder;
  double error = 0;
  for (int frame = 0; frame < 300; ++frame) {
    const Ten lsf = lsfs(0.08);
    Ten residual, quantLsp, decoded;
    std::array<Zpp16s, 2> code;
    ASSERT_EQ(zppsLSPQuant_G729E_32f(lsps(lsf).data(), encoder.data(), residual.data(), quantLsp.data(), code.data()), 0);
    std::copy_backward(encoder.begin(), encoder.begin() + 30, encoder.end());
    std::copy(residual.begin(), residual.end(), encoder.begin());
    const std::array<Zpp16s, 4> idx = {static_cast<Zpp16s>(code[0] >> 7), static_cast<Zpp16s>(code[0] & 127),
                                       static_cast<Zpp16s>(code[1] >> 5), static_cast<Zpp16s>(code[1] & 31)};
    ASSERT_GE(zppsLSFDecode_G729_32f(idx.data(), decoder.data(), decoded.data()), 0);
    ASSERT_EQ(encoder, decoder);
    for (std::size_t i = 0; i < 10; ++i) {
      EXPECT_NEAR(quantLsp[i], std::cos(decoded[i]), 1e-6);
      error += std::fabs(decoded[i] - lsf[i]) / 3000;
    }
  }
  EXPECT_LT(error, 0.15);  // radians on average: independent frames are hard to predict
}

// What an erased frame shifts in is the code vector from which the next prediction would have composed the last good LSFs: a
// decoder that had received it, with the same memory before, would have put them out.
TEST_F(Lsp32f, ErasedFrameExtractsWhatTheDecoderComposed) {
  int compared = 0;
  for (int frame = 0; frame < 300; ++frame) {
    Memory before = flatMemory();
    for (auto& m : before) m += between(-0.1, 0.1);
    const std::array<Zpp16s, 4> idx = {word(0, 3), word(0, 127), word(0, 31), word(0, 31)};
    Memory decoded = before, erased = before;
    Ten lsf;
    if (zppsLSFDecode_G729_32f(idx.data(), decoded.data(), lsf.data()) != zppStsOk) continue;
    const bool moved = [&] {  // by the stability step
      for (std::size_t i = 1; i < 10; ++i)
        if (lsf[i] - lsf[i - 1] < 0.0393f || decoded[i] < decoded[i - 1]) return true;
      return false;
    }();
    if (moved) continue;
    ++compared;
    ASSERT_EQ(zppsLSFDecodeErased_G729_32f(idx[0], erased.data(), lsf.data()), zppStsOk);
    EXPECT_TRUE(std::equal(before.begin(), before.begin() + 30, erased.begin() + 10));
    for (std::size_t i = 0; i < 10; ++i) EXPECT_NEAR(erased[i], decoded[i], 5e-6);
  }
  EXPECT_GT(compared, 100);
}

TEST_F(Lsp32f, IndexFieldsBeyondTheirWidthCountByTheirLowBits) {
  for (int n = 0; n < 500; ++n) {
    const std::array<Zpp16s, 4> wild = {word(0, 3), word(-32768, 32767), word(-32768, 32767), word(-32768, 32767)};
    const std::array<Zpp16s, 4> idx = {static_cast<Zpp16s>(wild[0] & 1), static_cast<Zpp16s>(wild[1] & 127),
                                       static_cast<Zpp16s>(wild[2] & 31), static_cast<Zpp16s>(wild[3] & 31)};
    Memory memory1 = flatMemory(), memory2 = memory1;
    Ten lsf1, lsf2;
    EXPECT_EQ(zppsLSFDecode_G729_32f(wild.data(), memory1.data(), lsf1.data()),
              zppsLSFDecode_G729_32f(idx.data(), memory2.data(), lsf2.data()));
    EXPECT_EQ(lsf1, lsf2);
    EXPECT_EQ(memory1, memory2);

    const std::array<Zpp16s, 3> sidWild = {wild[3], wild[1], wild[2]},
                                sid = {static_cast<Zpp16s>(wild[3] & 1), static_cast<Zpp16s>(wild[1] & 31),
                                       static_cast<Zpp16s>(wild[2] & 15)};
    EXPECT_EQ(zppsLSFDecode_G729B_32f(sidWild.data(), memory1.data(), lsf1.data()),
              zppsLSFDecode_G729B_32f(sid.data(), memory2.data(), lsf2.data()));
    EXPECT_EQ(lsf1, lsf2);
    EXPECT_EQ(memory1, memory2);
  }
}

TEST_F(Lsp32f, RefusedModesLeaveTheMemoryAlone) {
  for (const Zpp16s mode : {-32768, -1, 4, 32767}) {
    const std::array<Zpp16s, 4> idx = {mode, 0, 0, 0};
    Memory memory = flatMemory();
    Ten lsf = {}, untouched = {};
    EXPECT_EQ(zppsLSFDecode_G729_32f(idx.data(), memory.data(), lsf.data()), zppStsBadCodedParam);
    EXPECT_EQ(memory, flatMemory());
    EXPECT_EQ(lsf, untouched);
  }
}

TEST_F(Lsp32f, RootSearchFindsTheLspsOfAFilter) {
  int searches = 0;
  for (int n = 0; n < 500; ++n) {
    const Ten lsp = lsps(lsfs(0.12)), none = {};
    Ten found, foundA;
    Eleven a;
    zppsLSPToLPC_G729_32f(lsp.data(), a.data());
    zppsLPCToLSP_G729_32f(a.data(), none.data(), found.data());
    zppsLPCToLSP_G729A_32f(a.data(), none.data(), foundA.data());
    if (found == none || foundA == none) continue;  // two roots within one interval of the grid
    ++searches;
    for (std::size_t i = 0; i < 10; ++i) {
      EXPECT_NEAR(found[i], lsp[i], 1e-3) << n;
      EXPECT_NEAR(foundA[i], lsp[i], 5e-3) << n;
    }
  }
  EXPECT_GT(searches, 450);
}

// Neither the filter nor its reflection coefficients depend on the scale of the signal, down to denormals; a is a power of two
// apart there, so that every step rounds alike.
TEST_F(Lsp32f, LevinsonDurbinTakesEveryScale) {
  const Eleven r = {500, 300, 120, -40, -70, 15, 33, -4, 8, -60, 7};
  Eleven expected = {};
  Ten expectedRefl = {};
  Zpp32f expectedEnergy = 0;
  ASSERT_EQ(zppsLevinsonDurbin_G729_32f(r.data(), 10, expected.data(), expectedRefl.data(), &expectedEnergy), zppStsOk);
  for (const int exponent : {-149, -140, -60, 60, 115}) {
    Eleven scaled, a = {};
    Ten refl = {};
    Zpp32f energy = 0;
    for (std::size_t i = 0; i < 11; ++i) scaled[i] = std::ldexp(r[i], exponent);
    ASSERT_EQ(zppsLevinsonDurbin_G729_32f(scaled.data(), 10, a.data(), refl.data(), &energy), zppStsOk);
    EXPECT_EQ(a, expected) << exponent;
    EXPECT_EQ(refl, expectedRefl) << exponent;
    EXPECT_EQ(energy, std::ldexp(expectedEnergy, exponent));
  }
}

TEST_F(Lsp32f, LevinsonDurbinWritesNothingOnAWarning) {
  for (const Eleven& r : {Eleven{0}, Eleven{-1, 0.5f}, Eleven{kNaN}, Eleven{1, kNaN}, Eleven{1, 0, kNaN}, Eleven{1, 1, 1},
                          Eleven{1, 0, 0.9995f}, Eleven{1, 0, kInfinity}, Eleven{kInfinity, kInfinity}}) {
    Eleven a = {7};
    Ten refl = {7};
    Zpp32f energy = 7;
    EXPECT_EQ(zppsLevinsonDurbin_G729_32f(r.data(), 10, a.data(), refl.data(), &energy), zppStsOverflowWarn);
    EXPECT_EQ(a, Eleven{7});
    EXPECT_EQ(refl, Ten{7});
    EXPECT_EQ(energy, 7);
  }
}

// No autocorrelation of a signal, but rounding leads there: the prediction error starts anew from its floor.
TEST_F(Lsp32f, LevinsonDurbinReplacesANegativeError) {
  const std::array<Zpp32f, 3> r = {1, -1.25f, 1.5f};
  std::array<Zpp32f, 3> a;
  std::array<Zpp32f, 2> refl;
  Zpp32f energy = 0;
  ASSERT_EQ(zppsLevinsonDurbin_G729_32f(r.data(), 2, a.data(), refl.data(), &energy), zppStsOk);
  EXPECT_EQ(energy, 0.001f);
}

TEST_F(Lsp32f, DenormalsSteerNothing) {
  Eleven a = {1}, tiny = {1};
  for (std::size_t i = 1; i < 11; ++i) tiny[i] = std::ldexp(i % 3 ? 1.0f : -1.0f, -149);
  const Ten none = {};
  Ten lsp, lspOfTiny;
  for (const auto search : {zppsLPCToLSP_G729_32f, zppsLPCToLSP_G729A_32f}) {
    search(a.data(), none.data(), lsp.data());
    search(tiny.data(), none.data(), lspOfTiny.data());
    for (std::size_t i = 0; i < 10; ++i) {
      EXPECT_NEAR(lsp[i], std::cos(3.14159265 * static_cast<double>(i + 1) / 11), 1e-3);  // a flat spectrum
      EXPECT_EQ(lsp[i], lspOfTiny[i]);
    }
  }
}

TEST_F(Lsp32f, NaNWinsNoSearch) {
  Ten nan, residual, quant;
  nan.fill(kNaN);
  Memory memory = flatMemory();
  std::array<Zpp16s, 2> code = {-1, -1};
  std::array<Zpp16s, 3> sid = {-1, -1, -1};
  zppsLSPQuant_G729E_32f(nan.data(), memory.data(), residual.data(), quant.data(), code.data());
  zppsLSFQuant_G729B_32f(nan.data(), memory.data(), quant.data(), sid.data());
  EXPECT_EQ(code, (std::array<Zpp16s, 2>{}));
  EXPECT_EQ(sid, (std::array<Zpp16s, 3>{}));
}

// Whatever goes in, indices are those of the codebooks, and the memory that the decoder shifts in is that of its indices.
TEST_F(Lsp32f, QuantisersOfUselessNumbersKeepTheirIndicesInRange) {
  for (const Zpp32f useless : {kNaN, kInfinity, -kInfinity, 3e38f, -3e38f, 1e-45f}) {
    for (const std::size_t from : {0u, 9u}) {
      Ten input = lsps(lsfs(0.1)), residual, quant;
      std::fill(input.begin() + static_cast<std::ptrdiff_t>(from), input.end(), useless);
      for (const bool uselessMemory : {false, true}) {
        Memory memory = flatMemory();
        if (uselessMemory) memory.fill(useless);
        std::array<Zpp16s, 2> code = {-1, -1};
        ASSERT_EQ(zppsLSPQuant_G729E_32f(input.data(), memory.data(), residual.data(), quant.data(), code.data()), zppStsOk);
        EXPECT_EQ(code[0] & ~255, 0);
        EXPECT_EQ(code[1] & ~1023, 0);
        for (const Zpp32f v : residual) EXPECT_TRUE(v > 0 && v < 3.2f);
        for (const Zpp32f lsp : quant) EXPECT_LE(std::fabs(lsp), 1);

        std::array<Zpp16s, 3> sid = {-1, -1, -1};
        ASSERT_GE(zppsLSFQuant_G729B_32f(input.data(), memory.data(), quant.data(), sid.data()), zppStsOk);
        EXPECT_EQ(sid[0] & ~1, 0);
        EXPECT_EQ(sid[1] & ~31, 0);
        EXPECT_EQ(sid[2] & ~15, 0);
        EXPECT_TRUE(std::all_of(memory.begin(), memory.begin() + 10, [](Zpp32f v) { return v > 0 && v < 3.2f; }));
      }
    }
  }
}

}  // namespace
