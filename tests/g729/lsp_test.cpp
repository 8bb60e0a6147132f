// What the table of exports cannot say about the LP analysis and LSP quantisation of G.729: how its functions fit together.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"
#include "lpc/chebyshev.h"
#include "lpc/tables.h"

namespace {

using namespace zpp;
using Ten = std::array<Zpp16s, 10>;
using Memory = std::array<Zpp16s, 40>;

class Lsp : public testing::Test {
 protected:
  Zpp16s between(int lowest, int highest) {
    return static_cast<Zpp16s>(std::uniform_int_distribution<int>(lowest, highest)(random));
  }
  // Ascending LSFs at least `gap` apart
  Ten lsfs(int gap) {
    Ten lsf;
    for (auto& f : lsf) f = between(200, 25000 - 10 * gap);
    std::sort(lsf.begin(), lsf.end());
    for (int i = 0; i < 10; ++i) lsf[static_cast<std::size_t>(i)] += static_cast<Zpp16s>(gap * i);
    return lsf;
  }
  static Memory flatMemory() {
    Memory m;
    for (std::size_t i = 0; i < 40; ++i) m[i] = static_cast<Zpp16s>(2339 * (i % 10 + 1));
    return m;
  }

  std::mt19937 random{1};
};

TEST_F(Lsp, QuantisersAndDecoderKeepTheSameMemory) {
  Memory lsfSide = flatMemory(), lspSide = lsfSide, annexE = lsfSide, decoder = lsfSide;
  for (int frame = 0; frame < 300; ++frame) {
    Ten lsp, lsf, quantLsf, quantLsp, decoded, decodedLsp, residual, annexELsp;
    std::array<Zpp16s, 4> idx;
    std::array<Zpp16s, 2> code, annexECode;
    zppsLSFToLSP_G729_16s(lsfs(frame % 2 ? 400 : 0).data(), lsp.data());
    zppsLSPToLSF_G729_16s(lsp.data(), lsf.data());
    const ZppStatus status = zppsLSFQuant_G729_16s(lsf.data(), lsfSide.data(), quantLsf.data(), idx.data());
    zppsLSPQuant_G729_16s(lsp.data(), lspSide.data(), quantLsp.data(), code.data());
    zppsLSPQuant_G729E_16s(lsp.data(), annexE.data(), residual.data(), annexELsp.data(), annexECode.data());
    std::copy_backward(annexE.begin(), annexE.begin() + 30, annexE.end());
    std::copy(residual.begin(), residual.end(), annexE.begin());
    EXPECT_EQ(zppsLSFDecode_G729_16s(idx.data(), decoder.data(), decoded.data()), status);
    zppsLSFToLSP_G729_16s(decoded.data(), decodedLsp.data());

    EXPECT_EQ(code,
              (std::array<Zpp16s, 2>{static_cast<Zpp16s>(idx[0] << 7 | idx[1]), static_cast<Zpp16s>(idx[2] << 5 | idx[3])}));
    EXPECT_EQ(annexECode, code);
    EXPECT_EQ(decoded, quantLsf);
    EXPECT_EQ(quantLsp, decodedLsp);
    EXPECT_EQ(annexELsp, decodedLsp);
    ASSERT_EQ(lsfSide, decoder);
    ASSERT_EQ(lspSide, decoder);
    ASSERT_EQ(annexE, decoder);
  }
}

// What an erased frame shifts in is the code vector from which the next prediction would have composed the last good LSFs.
TEST_F(Lsp, ErasedFrameExtractsWhatTheDecoderComposes) {
  for (int frame = 0; frame < 200; ++frame) {
    Memory memory = flatMemory();
    for (auto& m : memory) m = static_cast<Zpp16s>(m + between(-1500, 1500));
    const Memory before = memory;
    Ten lsf;
    for (std::size_t i = 0; i < 10; ++i) lsf[i] = static_cast<Zpp16s>(flatMemory()[i] + between(-500, 500));
    const Zpp16s mode = between(0, 3);
    ASSERT_EQ(zppsLSFDecodeErased_G729_16s(mode, memory.data(), lsf.data()), zppStsOk);
    EXPECT_TRUE(std::equal(before.begin(), before.begin() + 30, memory.begin() + 10));
    Ten composed;
    ownLspCompose(ownMaPredictor(mode & 1), memory.data(), before.data(), composed.data());
    for (std::size_t i = 0; i < 10; ++i) EXPECT_NEAR(composed[i], lsf[i], 4);
  }
}

TEST_F(Lsp, IndexFieldsBeyondTheirWidthCountByTheirLowBits) {
  for (int n = 0; n < 500; ++n) {
    const std::array<Zpp16s, 4> wild = {between(0, 3), between(-32768, 32767), between(-32768, 32767), between(-32768, 32767)};
    const std::array<Zpp16s, 4> idx = {static_cast<Zpp16s>(wild[0] & 1), static_cast<Zpp16s>(wild[1] & 127),
                                       static_cast<Zpp16s>(wild[2] & 31), static_cast<Zpp16s>(wild[3] & 31)};
    Memory memory1 = flatMemory(), memory2 = memory1;
    Ten lsf1, lsf2;
    EXPECT_EQ(zppsLSFDecode_G729_16s(wild.data(), memory1.data(), lsf1.data()),
              zppsLSFDecode_G729_16s(idx.data(), memory2.data(), lsf2.data()));
    EXPECT_EQ(lsf1, lsf2);
    EXPECT_EQ(memory1, memory2);

    const std::array<Zpp16s, 3> sid = {idx[0], static_cast<Zpp16s>(wild[1] & 31), static_cast<Zpp16s>(wild[2] & 15)};
    EXPECT_GE(zppsLSFDecode_G729B_16s(wild.data(), memory1.data(), lsf1.data()), zppStsOk);
    zppsLSFDecode_G729B_16s(sid.data(), memory2.data(), lsf2.data());
    EXPECT_EQ(lsf1, lsf2);
    EXPECT_EQ(memory1, memory2);
  }
}

// Behind a higher one, a low LSP is far off the table's end: the standard's sums stop there.
TEST_F(Lsp, NormalisedFrequenciesOfReversedLspsSaturate) {
  Ten lsp, lsf;
  lsp.fill(-32768);
  lsp[9] = 32767;
  zppsLSPToLSF_Norm_G729_16s(lsp.data(), lsf.data());
  Ten expected;
  expected.fill(32767);
  expected[9] = 0;
  EXPECT_EQ(lsf, expected);
}

// Targets around those from which on the sums of the searches leave 32 bits, and far beyond
TEST_F(Lsp, SearchesOfTheCodebooksTakeEveryTarget) {
  const auto nearest = [](int count, auto distance) {
    int found = 0;
    Zpp64s least = Zpp64s{1} << 30;
    for (int entry = 0; entry < count; ++entry)
      if (const Zpp64s d = distance(entry); d < least) least = d, found = entry;
    return found;
  };
  for (int trial = 0; trial < 4000; ++trial) {
    const bool far = trial % 4 == 3;
    std::array<Zpp16s, 10> target, residual, weight;
    for (std::size_t j = 0; j < 10; ++j) {
      const int beyond = 20724 + trial % 3 - static_cast<int>(random() % 5);
      const bool up = trial % 8 < 4;
      target[j] = zpp::sat16(up ? LSPCode1_range.least[j] + beyond : LSPCode1_range.largest[j] - beyond);
      residual[j] = static_cast<Zpp16s>((random() % 2 != 0 ? 1 : -1) * (26000 + trial % 3 - static_cast<int>(random() % 3)));
      if (far) target[j] = residual[j] = static_cast<Zpp16s>(random());
      if (trial % 16 >= 14) target[j] = zpp::sat16(LSPCode1[trial % 128][j] + static_cast<int>(random() % 20000) - 10000);
      weight[j] = static_cast<Zpp16s>(trial % 5 == 0 ? 32767 : trial % 5 == 1 ? random() % 300 : random() % 32768);
    }
    EXPECT_EQ(ownLspPreSelect(target.data()), nearest(128, [&](int entry) {
                Zpp64s sum = 0;
                for (std::size_t j = 0; j < 10; ++j) {
                  const Zpp64s error = zpp::subSat16(target[j], LSPCode1[entry][j]);
                  sum += error * error;
                }
                return sum;
              }));
    Zpp16s index[2];
    ownLspSelect2(residual.data(), weight.data(), index);
    for (std::size_t half = 0; half < 2; ++half)
      EXPECT_EQ(index[half], nearest(32, [&](int entry) {
                  Zpp64s sum = 0;
                  for (std::size_t j = 5 * half; j < 5 * half + 5; ++j) {
                    const Zpp16s error = zpp::subSat16(residual[j], LSPCode2[entry][j]);
                    sum += zpp::mulQ15(weight[j], error) * error;
                  }
                  return sum;
                }));
  }
}

TEST_F(Lsp, RefusedModesLeaveTheMemoryAlone) {
  for (const Zpp16s mode : {-32768, -1, 4, 32767}) {
    const std::array<Zpp16s, 4> idx = {mode, 0, 0, 0};
    Memory memory = flatMemory();
    Ten lsf = {}, untouched = {};
    EXPECT_EQ(zppsLSFDecode_G729_16s(idx.data(), memory.data(), lsf.data()), zppStsBadCodedParam);
    EXPECT_EQ(memory, flatMemory());
    EXPECT_EQ(lsf, untouched);
  }
}

// The swap is one pass: of three values in reverse order the smallest moves down by one place only, and the gap rule then lifts
// it.
TEST_F(Lsp, StabilityStepSwapsInOnePass) {
  const MaPredictor passThrough = {fg[0], fg_sum[0], fg_sum_inv[0]};
  Memory memory = flatMemory();
  Ten lsf;
  const Ten reversed = {2400, 8000, 6000, 4000, 11000, 14000, 16000, 18000, 20000, 23000};
  Ten codeVector;
  ownLspPrevExtract(passThrough, reversed.data(), memory.data(), codeVector.data());
  EXPECT_EQ(ownLspCompose(passThrough, codeVector.data(), memory.data(), lsf.data()), zppStsOk);
  EXPECT_NEAR(lsf[1], 6000, 4);
  EXPECT_EQ(lsf[2], lsf[1] + 321);
  EXPECT_NEAR(lsf[3], 8000, 4);
}

// The polynomial of five roots, multiplied out with saturation at every step
std::array<Zpp32s, 6> expanded(const Zpp16s* lsp, bool& saturated) {
  std::array<Zpp32s, 6> f = {1 << 24, -1024 * lsp[0]};
  const auto sat = [&saturated](Zpp64s x) {
    saturated |= x != zpp::sat32(x);
    return Zpp64s{zpp::sat32(x)};
  };
  for (std::size_t i = 2; i <= 5; ++i) {
    const Zpp64s q = lsp[2 * (i - 1)];
    f[i] = f[i - 2];
    for (std::size_t m = i; m >= 2; --m)
      f[m] = static_cast<Zpp32s>(sat(sat(Zpp64s{f[m]} + f[m - 2]) - sat(((f[m - 1] >> 1) * q >> 15) * 4)));
    f[1] = static_cast<Zpp32s>(sat(f[1] - 1024 * q));
  }
  return f;
}

// LSPs at both ends, where the last root of a polynomial leads beyond 32 bits, and nearer to 0, where it does not
TEST_F(Lsp, PolynomialsSaturateStepByStep) {
  int saturating = 0;
  constexpr int kCases = 3000;
  for (int n = 0; n < kCases; ++n) {
    Ten lsp;
    std::array<Zpp16s, 11> a;
    const int sides = n % 3, level = n % 8 == 0 ? 32767 : between(16384, 32767);
    for (auto& x : lsp) {
      x = static_cast<Zpp16s>(level - between(0, 255));
      if (sides == 0 || (sides == 1 && between(0, 9) == 0)) x = static_cast<Zpp16s>(~x);
    }
    zppsLSPToLPC_G729_16s(lsp.data(), a.data());
    bool saturated = false;
    const auto f1 = expanded(lsp.data(), saturated), f2 = expanded(lsp.data() + 1, saturated);
    saturating += saturated;
    for (std::size_t i = 1; i <= 5; ++i) {
      const Zpp32s sum = zpp::addSat32(f1[i], f1[i - 1]), difference = zpp::subSat32(f2[i], f2[i - 1]);
      ASSERT_EQ(a[i], zpp::low16(zpp::shrRound32(zpp::addSat32(sum, difference), 13)));
      ASSERT_EQ(a[11 - i], zpp::low16(zpp::shrRound32(zpp::subSat32(sum, difference), 13)));
    }
  }
  EXPECT_GT(saturating, kCases / 4);
  EXPECT_LT(saturating, kCases * 3 / 4);
}

TEST_F(Lsp, RootSearchFindsTheLspsOfAFilter) {
  int searches = 0;
  for (int n = 0; n < 500; ++n) {
    Ten lsp, found, foundA;
    const Ten none = {};
    std::array<Zpp16s, 11> a;
    zppsLSFToLSP_G729_16s(lsfs(1000).data(), lsp.data());
    zppsLSPToLPC_G729_16s(lsp.data(), a.data());
    zppsLPCToLSP_G729_16s(a.data(), none.data(), found.data());
    zppsLPCToLSP_G729A_16s(a.data(), none.data(), foundA.data());
    if (found == none || foundA == none) continue;  // two roots within one interval of the grid
    ++searches;
    for (std::size_t i = 0; i < 10; ++i) {
      EXPECT_NEAR(found[i], lsp[i], 300) << n;
      EXPECT_NEAR(foundA[i], lsp[i], 300) << n;
    }
  }
  EXPECT_GT(searches, 450);
}

// The bound that admits the evaluation without saturation, at its edge and beyond: coefficients of any size
TEST_F(Lsp, ChebyshevEvaluationsAgreeWhereNothingSaturates) {
  int exact = 0, saturated = 0;
  for (int n = 0; n < 4000; ++n) {
    std::array<Zpp16s, 11> a;
    const int size = 1 << between(8, 15);
    for (auto& c : a) c = between(-size, size - 1);
    for (const int sign : {1, -1}) {
      ChebyshevSeries f;
      f.assign(a.data(), sign, n % 4 == 0 ? 10 : 11, n % 4 < 2 ? 10 : 11);
      ++(f.unlimited() ? exact : saturated);
      if (!f.unlimited()) continue;
      for (const Zpp16s x : w_eval_60) ASSERT_EQ(f.exactValue(x), f.saturatedValue(x));
      for (const int x : {-32768, 32767})
        ASSERT_EQ(f.exactValue(static_cast<Zpp16s>(x)), f.saturatedValue(static_cast<Zpp16s>(x)));
    }
  }
  EXPECT_GT(exact, 1000);
  EXPECT_GT(saturated, 100);
}

TEST_F(Lsp, LevinsonDurbinNeedsAnUpperWordInTheEnergy) {
  for (const auto& [energy, expected] :
       {std::pair{0, zppStsOverflowWarn}, {65535, zppStsOverflowWarn}, {-65535, zppStsOverflowWarn}, {65536, zppStsOk}}) {
    std::array<Zpp32s, 11> r = {energy};
    std::array<Zpp16s, 11> a = {};
    Ten refl = {};
    Zpp16s rest = -7;
    EXPECT_EQ(zppsLevinsonDurbin_G729_32s16s(r.data(), 10, a.data(), refl.data(), &rest), expected) << energy;
    EXPECT_EQ(a[0], expected == zppStsOk ? 4096 : 0);
    EXPECT_EQ(rest == -7, expected != zppStsOk);
  }
}

TEST_F(Lsp, InterpolationWorksInPlaceAndRoundsOnRequest) {
  Ten a = {-32768, 32767, 3, 5, -3, 7, 1, 0, -1, 2}, b = {-32768, 32767, 3, 4, -3, 8, 0, 1, -1, 2};
  Ten halves = a, down = a, nearest = a;
  zppsInterpolate_G729_16s(halves.data(), b.data(), halves.data(), 10);
  EXPECT_EQ(halves, (Ten{-32768, 32766, 2, 4, -4, 7, 0, 0, -2, 2}));
  zppsInterpolateC_G729_16s_Sfs(down.data(), 1, b.data(), 1, down.data(), 10, 1);
  EXPECT_EQ(down, (Ten{-32768, 32767, 3, 4, -3, 7, 0, 0, -1, 2}));
  zppsInterpolateC_NR_G729_16s_Sfs(nearest.data(), 1, b.data(), 1, nearest.data(), 10, 1);
  EXPECT_EQ(nearest, (Ten{-32768, 32767, 3, 5, -3, 8, 1, 1, -1, 2}));
  for (const int beyond : {31, 32, 100}) {
    zppsInterpolateC_G729_16s_Sfs(a.data(), -1, b.data(), -1, down.data(), 10, beyond);
    EXPECT_EQ(down, (Ten{0, -1, -1, -1, 0, -1, -1, -1, 0, -1}));
    zppsInterpolateC_NR_G729_16s_Sfs(a.data(), -1, b.data(), -1, nearest.data(), 10, beyond);
    EXPECT_EQ(nearest, Ten{});
  }
}

}  // namespace
