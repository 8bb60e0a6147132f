// Closed-loop pitch analysis: portable kernels.
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/pitch/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kTaps = 5;

// Undoubled sum of products, saturating at every step. Half of a saturated doubled product is 2^30 - 1.
Zpp32s correlation(const Zpp16s* a, const Zpp16s* b) {
  Zpp32s sum = 0;
  for (int n = 0; n < kSubframe; ++n) sum = addSat32(sum, mulDbl(a[n], b[n]) >> 1);
  return sum;
}

}  // namespace

void ownPitchCorrelations_G723_16s32s_PX(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* work, Zpp32s* values) {
  Zpp16s filtered[kTaps][kSubframe];
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = 0;
    for (int j = 0; j <= n; ++j) sum = macDbl(sum, work[kTaps - 1 + j], impulse[n - j]);
    filtered[kTaps - 1][n] = roundHigh16(sum);
  }
  // A vector that begins one sample earlier is the one after it, delayed, plus the response to that sample.
  for (int i = kTaps - 2; i >= 0; --i) {
    filtered[i][0] = mulRoundQ15(work[i], 8192);
    for (int n = 1; n < kSubframe; ++n)
      filtered[i][n] = roundHigh16(macDbl(fromHigh16(filtered[i + 1][n - 1]), work[i], impulse[n]));
  }
  for (int i = 0; i < kTaps; ++i) *values++ = shlSat32(correlation(target, filtered[i]), 1);
  for (int i = 0; i < kTaps; ++i) *values++ = zpp::energy(filtered[i], kSubframe);
  for (int i = 1; i < kTaps; ++i)
    for (int j = 0; j < i; ++j) *values++ = shlSat32(correlation(filtered[i], filtered[j]), 2);
}

int ownPitchGainSearch_G723_16s_PX(const Zpp16s* values, const Zpp16s (*table)[20], int rows, Zpp32s* best) {
  int bestRow = -1;
  for (int row = 0; row < rows; ++row) {
    Zpp32s score = 0;
    for (int j = 0; j < 20; ++j) score = addSat32(score, Zpp32s{values[j]} * table[row][j]);
    if (score > *best) *best = score, bestRow = row;
  }
  return bestRow;
}
