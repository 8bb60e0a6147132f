// Levinson-Durbin recursion with the sine detector (ITU-T G.723.1 clause 2.4).
#include <utility>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/lsf/kernels.h"

using namespace zpp;

namespace {

constexpr int kOrder = 10;
constexpr Zpp16s kSineThreshold = 31130;  // 0.95 in Q15

// step(1), step(2) .. step(Count) with constant arguments: the recursion is unrolled and keeps its coefficients in registers.
template <int Count, class Step>
inline void unrolled(Step step) {
  [&]<int... I>(std::integer_sequence<int, I...>) { (step(std::integral_constant<int, I + 1>{}), ...); }
  (std::make_integer_sequence<int, Count>{});
}

struct Recursion {
  const Zpp16s* autocorr;
  Zpp16s* sineDetector;  // shift register: the newest decision enters at bit 0
  Zpp16s error;
  Zpp16s a[kOrder + 1] = {};  // a[1..10], Q13

  void record(bool sine) { *sineDetector = low16(*sineDetector * 2 + (sine ? 1 : 0)); }

  // From order M - 1 to order M; false where the recursion ends.
  template <int M>
  bool advance() {
    Zpp32s numerator = autocorr[M] * 16384;
    unrolled<M - 1>([&](auto j) { numerator = msuDbl(numerator, a[j], autocorr[M - j]); });
    numerator = shlSat32(numerator, 2);
    const Zpp32s magnitude = absSat32(numerator);
    // A reflection coefficient of magnitude 1 or an error of 0 or less: the signal is all but a sum of sines.
    if (magnitude >= fromHigh16(error)) {
      record(true);
      return false;
    }
    const auto quotient = static_cast<Zpp16s>((magnitude >> 1) / error);
    const auto k = static_cast<Zpp16s>(numerator >= 0 ? -quotient : quotient);  // Q15
    if constexpr (M == 2) record(k > kSineThreshold);
    error = roundHigh16(addSat32(mul32Q15(numerator, k), fromHigh16(error)));
    Zpp16s updated[kOrder];
    unrolled<M - 1>([&](auto j) { updated[j] = addSat16(a[j], mulRoundQ15(k, a[M - j])); });
    unrolled<M - 1>([&](auto j) { a[j] = updated[j]; });
    a[M] = static_cast<Zpp16s>((2 - k) >> 2);
    return true;
  }
};

}  // namespace

ZppStatus zppsLevinsonDurbin_G723_16s(const Zpp16s* autocorr, Zpp16s* sineDetector, Zpp16s* residualEnergy, Zpp16s* lpc) {
  if (anyNull(autocorr, sineDetector, residualEnergy, lpc)) return zppStsNullPointer;
  ownLevinsonDurbin_G723_16s(autocorr, sineDetector, residualEnergy, lpc);
  return zppStsOk;
}

void ownLevinsonDurbin_G723_16s(const Zpp16s* autocorr, Zpp16s* sineDetector, Zpp16s* residualEnergy, Zpp16s* lpc) {
  Recursion r = {autocorr, sineDetector, autocorr[0]};
  bool goOn = true;
  unrolled<kOrder>([&](auto m) { goOn = goOn && r.advance<m>(); });
  for (int j = 1; j <= kOrder; ++j) lpc[j - 1] = r.a[j];
  *residualEnergy = r.error;
}
