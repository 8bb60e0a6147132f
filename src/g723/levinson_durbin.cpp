// Levinson-Durbin recursion with the sine detector (ITU-T G.723.1 clause 2.4).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/kernels.h"

using namespace zpp;

namespace {

constexpr int kOrder = 10;
constexpr Zpp16s kSineThreshold = 31130;  // 0.95 in Q15

// The detector is a shift register: the newest decision enters at bit 0.
void record(Zpp16s* sineDetector, bool sine) { *sineDetector = low16(*sineDetector * 2 + (sine ? 1 : 0)); }

}  // namespace

ZppStatus zppsLevinsonDurbin_G723_16s(const Zpp16s* autocorr, Zpp16s* sineDetector, Zpp16s* residualEnergy, Zpp16s* lpc) {
  if (anyNull(autocorr, sineDetector, residualEnergy, lpc)) return zppStsNullPointer;
  ownLevinsonDurbin_G723_16s(autocorr, sineDetector, residualEnergy, lpc);
  return zppStsOk;
}

void ownLevinsonDurbin_G723_16s(const Zpp16s* autocorr, Zpp16s* sineDetector, Zpp16s* residualEnergy, Zpp16s* lpc) {
  Zpp16s a[kOrder + 1] = {};  // a[1..10], Q13
  Zpp16s error = autocorr[0];
  for (int m = 1; m <= kOrder; ++m) {
    Zpp32s numerator = autocorr[m] * 16384;
    for (int j = 1; j < m; ++j) numerator = msuDbl(numerator, a[j], autocorr[m - j]);
    numerator = shlSat32(numerator, 2);
    const Zpp32s magnitude = absSat32(numerator);
    // A reflection coefficient of magnitude 1 or an error of 0 or less ends the recursion: the signal is all but a sum of
    // sines.
    if (magnitude >= fromHigh16(error)) {
      record(sineDetector, true);
      break;
    }
    const auto quotient = static_cast<Zpp16s>((magnitude >> 1) / error);
    const auto k = static_cast<Zpp16s>(numerator >= 0 ? -quotient : quotient);  // Q15
    if (m == 2) record(sineDetector, k > kSineThreshold);
    error = roundHigh16(addSat32(mul32Q15(numerator, k), fromHigh16(error)));
    Zpp16s updated[kOrder];
    for (int j = 1; j < m; ++j) updated[j] = addSat16(a[j], mulRoundQ15(k, a[m - j]));
    for (int j = 1; j < m; ++j) a[j] = updated[j];
    a[m] = static_cast<Zpp16s>((2 - k) >> 2);
  }
  for (int j = 1; j <= kOrder; ++j) lpc[j - 1] = a[j];
  *residualEnergy = error;
}
