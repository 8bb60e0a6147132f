// Harmonic postfilter of ITU-T G.729 Annex A (clause A.4.2.1): integer delays only.
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/postfilter/kernels.h"
#include "lpc/dot_product.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = kPostfilterSubframe, kLongestDelay = 143, kDelays = 7;

// How the residual, with two bits less, is matched by the past at the best of seven delays: doubled sums, saturated at
// every step, those of squares a unit more
struct Match {
  LagMax best;  // 0..6 more than the shortest delay; the smallest wins a tie
  Zpp32s delayedEnergy, currentEnergy;
};

// past: at the shortest delay
Match matchExactly(const Zpp16s* current, const Zpp16s* past) {
  Zpp32s sums[kDelays];  // the longest delay first
  ownCorr_16s32s(current, past - (kDelays - 1), kSubframe, sums, kDelays);
  LagMax best = {sums[kDelays - 1], 0};
  for (int lag = 1; lag < kDelays; ++lag)
    if (sums[kDelays - 1 - lag] > best.value) best = {sums[kDelays - 1 - lag], lag};
  const Zpp16s* const delayed = past - best.lag;
  return {{2 * best.value, best.lag},
          1 + 2 * exactDotProduct<kSubframe>(delayed, delayed),
          1 + 2 * exactDotProduct<kSubframe>(current, current)};
}

Match matchSaturating(const Zpp16s* current, const Zpp16s* past) {
  LagMax best = {kMin32, 0};
  for (int lag = 0; lag < kDelays; ++lag) {
    const Zpp32s sum = dotProductStepwise(current, past - lag, kSubframe);
    if (sum > best.value) best = {sum, lag};
  }
  return {best, energy(past - best.lag, kSubframe, 1), energy(current, kSubframe, 1)};
}

// Magnitudes of 12 bits: a doubled sum of 40 products stays below 2^31, and so does every partial sum.
bool sumsAreExact(const Zpp16s* current, const Zpp16s* past) {
  constexpr Zpp16s most = 1 << 12;
  return ownMaxAbs_16s(current, kSubframe) <= most && ownMaxAbs_16s(past - (kDelays - 1), kSubframe + kDelays - 1) <= most;
}

void ownHarmonicPostFilter_G729A_16s(int delay, const Zpp16s* residual, Zpp16s* dst) {
  constexpr int kRead = kSubframe + 8;  // kDelays - 1 would do; kernels like multiples of eight
  const int shortest = delay + 3 > kLongestDelay ? kLongestDelay - (kDelays - 1) : delay - 3;
  Zpp16s current[kSubframe], delayed[kRead];
  const Zpp16s* past = delayed + kDelays - 1;  // delayed by the shortest delay
  ownRShiftC_16s(residual, current, kSubframe, 2);
  ownRShiftC_16s(residual - shortest - (kDelays - 1), delayed, kRead, 2);

  const auto [best, delayedEnergy, currentEnergy] =
      sumsAreExact(current, past) ? matchExactly(current, past) : matchSaturating(current, past);
  const Zpp32s correlation = best.value < 0 ? 0 : best.value;
  Zpp32s most = correlation > delayedEnergy ? correlation : delayedEnergy;
  if (currentEnergy > most) most = currentEnergy;
  const int shift = norm32(most);
  const auto normalised = [shift](Zpp32s x) { return roundHigh16(shlSat32(x, shift)); };
  const Zpp16s cm = normalised(correlation), en = normalised(delayedEnergy), e0 = normalised(currentEnergy);

  Zpp16s gain = 32767, delayedGain = 0;  // off below a prediction gain of 3 dB
  if (mulDbl(cm, cm) >= mulDbl(en, e0) >> 1) {
    if (cm > en) {  // prediction with a gain above 1
      gain = 21845;
      delayedGain = 10923;
    } else {
      const int b = mulQ15(cm, 16384) >> 1, a = en >> 1;
      if (a + b > 0) {
        delayedGain = divQ15(static_cast<Zpp16s>(b), static_cast<Zpp16s>(a + b));
        gain = static_cast<Zpp16s>(32767 - delayedGain);
      }
    }
    ownHarmonicFilter_G729A_16s(residual, residual - shortest - best.lag, gain, delayedGain, dst);
    return;
  }
  std::memcpy(dst, residual, kSubframe * sizeof *dst);
}

void ownLongTermPostFilter_G729A_16s(int delay, const Zpp16s* speech, const Zpp16s* coef, Zpp16s* residual, Zpp16s* dst) {
  Zpp16s* current = residual + kPostfilterHistoryAnnexAB;
  ownResidualFilter_G729_16s(coef, speech, current, kSubframe);
  ownHarmonicPostFilter_G729A_16s(delay, current, dst);
}

}  // namespace

ZppStatus _zppsHarmonicPostFilter_G729A_16s(Zpp16s delay, const Zpp16s* residual, Zpp16s* dst) {
  ownHarmonicPostFilter_G729A_16s(delay, residual, dst);
  return zppStsOk;
}

ZppStatus zppsLongTermPostFilter_G729A_16s(Zpp16s delay, const Zpp16s* speech, const Zpp16s* coef, Zpp16s* residual,
                                           Zpp16s* dst) {
  if (anyNull(speech, coef, residual, dst)) return zppStsNullPointer;
  if (outside<int>(delay, 18, 145)) return zppStsOutOfRange;
  ownLongTermPostFilter_G729A_16s(delay, speech, coef, residual, dst);
  return zppStsOk;
}
