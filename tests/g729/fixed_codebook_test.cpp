// What golden vectors of the fixed codebook do not reach: saturating correlations, magnitudes and budgets at their limits, ties
// and silence.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "core/fixed_point.h"

namespace {

using namespace zpp;
using V16 = std::vector<Zpp16s>;
using V32 = std::vector<Zpp32s>;

constexpr int kDiagonals = 40;

// r(p, q) in its place among the diagonals and blocks of the main body
std::size_t entryOf(int p, int q) {
  if (p == q) return static_cast<std::size_t>(8 * (p % 5) + p / 5);
  if (p % 5 > q % 5) std::swap(p, q);
  const int pairs[][2] = {{0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 2}, {1, 3}, {1, 4}, {2, 3}, {2, 4}};
  int block = 0;
  while (pairs[block][0] != p % 5 || pairs[block][1] != q % 5) ++block;
  return static_cast<std::size_t>(kDiagonals + 64 * block + 8 * (p / 5) + q / 5);
}
bool isStored(int p, int q) { return p == q || (p % 5 != q % 5 && p % 5 + q % 5 != 7); }

V16 matrixOf(const V16& impulse) {
  V16 matrix(616);
  EXPECT_EQ(zppsToeplizMatrix_G729_16s(impulse.data(), matrix.data()), zppStsOk);
  return matrix;
}
V16 unitResponse() {
  V16 h(40, 0);
  h[0] = 4096;
  return h;
}

struct Found {
  V16 code = V16(40), codeword = V16(2);
  Zpp16s budget = 0;
};
Found mainBody(const V16& target, V16 matrix, Zpp16s budget = 0, Zpp16s subframe = 0) {
  Found f;
  f.budget = budget;
  EXPECT_EQ(
      zppsFixedCodebookSearch_G729_16s(target.data(), matrix.data(), f.code.data(), f.codeword.data(), &f.budget, subframe),
      zppStsOk);
  return f;
}
Found annexA(const V16& target, V16 matrix) {
  Found f;
  EXPECT_EQ(zppsFixedCodebookSearch_G729A_16s(target.data(), matrix.data(), f.code.data(), f.codeword.data()), zppStsOk);
  return f;
}

// Sums that saturate, each step of the doubled sum as the basic operators do it, from the shortest sum to the longest.
TEST(CorrelationMatrix, SaturatesStepByStep) {
  V16 rising(40), falling(40), alternating(40);
  for (int n = 0; n < 40; ++n) {
    rising[static_cast<std::size_t>(n)] = static_cast<Zpp16s>(n < 20 ? 32767 : -32768);
    falling[static_cast<std::size_t>(n)] = static_cast<Zpp16s>(32767 - 50 * n);
    alternating[static_cast<std::size_t>(n)] = static_cast<Zpp16s>(n % 7 < 4 ? -32768 : 32767);
  }
  std::vector<V16> responses = {rising, falling, alternating, V16(40, -32768)};
  // Halved, of energies around 2^30: their sums saturate from there on.
  for (const Zpp16s level : {10360, 10362, 10364, 12247, 14000, 16000}) responses.push_back(V16(40, level));
  for (const auto& h : responses) {
    V32 matrix(616);
    ASSERT_EQ(zppsToeplizMatrix_G729_16s32s(h.data(), matrix.data()), zppStsOk);
    const V16 narrow = matrixOf(h);
    for (int p = 0; p < 40; ++p)
      for (int q = p; q < 40; ++q) {
        if (!isStored(p, q)) continue;
        Zpp32s sum = 0;
        for (int n = q; n < 40; ++n)
          sum = macDbl(sum, shr16(h[static_cast<std::size_t>(n - p)], 1), shr16(h[static_cast<std::size_t>(n - q)], 1));
        ASSERT_EQ(matrix[entryOf(p, q)], sum >> 1) << p << ", " << q;
        ASSERT_EQ(narrow[entryOf(p, q)], sum >> 16) << p << ", " << q;
      }
  }
}

TEST(CorrelationMatrix, HalvesTheResponseAboveItsLimitOfEnergy) {
  V16 h(40, 0);
  h[0] = 32382;  // the upper half of the doubled energy is 32000
  V32 matrix(616);
  ASSERT_EQ(zppsToeplizMatrix_G729_16s32s(h.data(), matrix.data()), zppStsOk);
  EXPECT_EQ(matrix[entryOf(39, 39)], 32382 * 32382);
  h[1] = 200;  // 32001
  ASSERT_EQ(zppsToeplizMatrix_G729_16s32s(h.data(), matrix.data()), zppStsOk);
  EXPECT_EQ(matrix[entryOf(39, 39)], 16191 * 16191);
}

TEST(FixedCodebook, FindsTheLargestMagnitudesOfAFlatResponse) {
  V16 target(40, 100);
  target[15] = -15000;
  target[21] = 5000;
  target[7] = -5000;
  target[39] = 5000;
  for (const Found& f : {mainBody(target, matrixOf(unitResponse())), annexA(target, matrixOf(unitResponse()))}) {
    V16 expected(40, 0);
    expected[15] = expected[7] = -8192;
    expected[21] = expected[39] = 8191;
    EXPECT_EQ(f.code, expected);
    EXPECT_EQ(f.codeword, (V16{0b1010, 3 + 8 * 4 + 64 * 1 + 512 * (2 * 7 + 1)}));
  }
}

TEST(FixedCodebook, KeepsTheFirstOfEqualCandidates) {
  // All triples are equal, so none exceeds the threshold of the main body: its initial pulses stand.
  const V16 equal(40, 1000), matrix = matrixOf(unitResponse());
  const Found f = mainBody(equal, matrix);
  EXPECT_EQ(f.codeword, (V16{15, 0}));
  EXPECT_EQ(f.budget, 105);
  EXPECT_EQ(annexA(equal, matrix).codeword, (V16{15, 0}));
  // One triple passes, beside which all sixteen positions of pulse 3 tie.
  V16 peaks = equal;
  peaks[10] = peaks[11] = peaks[12] = 4000;
  EXPECT_EQ(mainBody(peaks, matrix).codeword, (V16{15, 2 + 8 * 2 + 64 * 2}));
  // A tie between samples 5 k + 4 and 5 (k + 1) + 3: the former comes first.
  peaks[14] = peaks[18] = 4000;
  EXPECT_EQ(mainBody(peaks, matrix).codeword, (V16{15, 2 + 8 * 2 + 64 * 2 + 512 * 5}));
}

// The budget tells how many triples pass: 22 hold at least two of the peaks of 4096, 14 more one of them and the smaller peak.
TEST(FixedCodebook, SearchesTriplesStrictlyAboveTheThreshold) {
  V16 target(40, 0);
  target[0] = target[1] = target[2] = 4096;
  const auto passed = [&](Zpp16s smaller) {
    target[5] = smaller;
    return 105 - mainBody(target, matrixOf(unitResponse())).budget;
  };
  EXPECT_EQ(passed(1881), 22) << "a sum that equals the threshold";
  EXPECT_EQ(passed(1882), 36) << "one above: 1771 + (10517 * 13107 >> 15) = 5977";
}

TEST(FixedCodebook, BudgetBoundsTheSearchAndCarriesOver) {
  // Most triples pass the threshold: two large magnitudes on each of the tracks but many almost as large.
  V16 target(40);
  for (std::size_t n = 0; n < 40; ++n) target[n] = static_cast<Zpp16s>(n % 3 == 0 ? 1000 : 990);
  const V16 matrix = matrixOf(unitResponse());
  EXPECT_EQ(mainBody(target, matrix, 77, 0).budget, 0) << "subframe 0 starts afresh";
  EXPECT_EQ(mainBody(target, matrix, 0, 1).budget, 0);
  EXPECT_EQ(mainBody(target, matrix, -75, 1).budget, -1) << "one search is always made";
  EXPECT_EQ(mainBody(target, matrix, -32768, 1).budget, -32768 + 75 - 1);
  const Zpp16s left = mainBody(target, matrix, 32767, 1).budget;
  EXPECT_GT(32767 - left, 105) << "what the first subframe left counts, and saturates";
}

TEST(FixedCodebook, MatrixOf32BitsLeavesShiftedAndSaturated) {
  const V16 target(40, -1);
  V32 matrix(616, 5 << 15);
  matrix[3] = INT32_MAX;
  matrix[4] = INT32_MIN;
  matrix[50] = -(7 << 15) - 1;
  V16 code(40), codeword(2);
  ASSERT_EQ(zppsFixedCodebookSearch_G729A_32s16s(target.data(), matrix.data(), code.data(), codeword.data()), zppStsOk);
  EXPECT_EQ(matrix[0], 5);
  EXPECT_EQ(matrix[3], 32767);
  EXPECT_EQ(matrix[4], -32768);
  EXPECT_EQ(matrix[50], -8) << "truncated, then times 32767 / 32768, truncated";
  EXPECT_EQ(matrix[51], 4);
}

// Silence and an empty response leave every criterion at zero: no search may return pulses outside their tracks.
TEST(FixedCodebook, ReturnsAValidCodeForAnything) {
  const V16 extremes[] = {V16(40, 0), V16(40, -32768), V16(40, 32767)};
  for (const auto& target : extremes)
    for (const auto& h : extremes) {
      for (const Found& f : {mainBody(target, matrixOf(h)), annexA(target, matrixOf(h))}) {
        EXPECT_EQ(std::count(f.code.begin(), f.code.end(), 0), 36);
        EXPECT_TRUE(f.codeword[0] >= 0 && f.codeword[0] < 16 && f.codeword[1] >= 0 && f.codeword[1] < 8192);
      }
      V16 code(40), filtered(40), index(5);
      Zpp16s sign, position;
      ASSERT_EQ(zppsFixedCodebookSearch_G729D_16s(target.data(), h.data(), code.data(), filtered.data(), &sign, &position),
                zppStsOk);
      EXPECT_TRUE(sign >= 0 && sign < 4 && position >= 0 && position < 512);
      for (const int pulses : {10, 12}) {
        ASSERT_EQ(zppsFixedCodebookSearch_G729E_16s(static_cast<Zpp16s>(pulses - 10), target.data(), extremes[1].data(),
                                                    h.data(), code.data(), filtered.data(), index.data()),
                  zppStsOk);
        const int sum = std::accumulate(code.begin(), code.end(), 0, [](int s, int c) { return s + (c < 0 ? -c : c); });
        EXPECT_EQ(sum, pulses * 4096) << "all of one sign on a track or none cancels";
        for (const Zpp16s word : index) EXPECT_TRUE(word >= 0 && word < 5120);
      }
    }
}

}  // namespace
