// Gains of erased frames (3GPP TS 26.091 clause 6.2.3) and the code gain smoothed in stationary noise (TS 26.090 clause 6.1).
#include "amr/arithmetic.h"
#include "amr/gain/kernels.h"
#include "amr/gain/prediction.h"
#include "amr/gain/tables.h"
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

constexpr int kStates = 7, kGains = 5;

// The concealment state indexes tables.
bool isCondition(const Zpp16s* condition) { return !outside<int>(condition[6], 0, kStates - 1); }

}  // namespace

ZppStatus zppsPitchGainConceal_GSMAMR_16s_I(Zpp16s* gain, Zpp16s* mem, const Zpp16s* condition) {
  if (anyNull(gain, mem, condition)) return zppStsNullPointer;
  if (!isCondition(condition)) return zppStsOutOfRange;
  *gain = ownPitchGainConceal_GSMAMR(*gain, mem, FrameCondition(condition));
  return zppStsOk;
}

ZppStatus zppsCodeGainConceal_GSMAMR_16s_I(Zpp16s* gain, Zpp16s* mem, Zpp16s* gainMem, const Zpp16s* condition) {
  if (anyNull(gain, mem, gainMem, condition)) return zppStsNullPointer;
  if (!isCondition(condition)) return zppStsOutOfRange;
  *gain = ownCodeGainConceal_GSMAMR(*gain, mem, gainMem, FrameCondition(condition));
  return zppStsOk;
}

ZppStatus zppsCodeGainSmooth_GSMAMR_16s(Zpp16s codeGain, const Zpp16s* prevLsf, const Zpp16s* lsf, const Zpp16s* lsfMean,
                                        Zpp16s* mem, Zpp16s* smoothed, const Zpp16s* condition, Zpp16s subframe,
                                        ZppSpeechRate rate) {
  if (anyNull(prevLsf, lsf, lsfMean, mem, smoothed, condition)) return zppStsNullPointer;
  if (outside<int>(subframe, 0, 3)) return zppStsOutOfRange;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  *smoothed = ownCodeGainSmooth_GSMAMR(codeGain, prevLsf, lsf, lsfMean, mem, FrameCondition(condition), subframe, modeOf(rate));
  return zppStsOk;
}

namespace {

// The gain of an erased frame from the past ones, or a good frame's gain, kept low right after an erased one.
Zpp16s concealed(Zpp16s gain, const Zpp16s* mem, const Zpp16s* attenuation, const FrameCondition& condition) {
  const Zpp16s last = mem[kGains], lastGood = mem[kGains + 1];
  if (condition.bad) {
    const Zpp16s middle = median(mem, kGains);
    return mulQ15(middle < last ? middle : last, attenuation[condition.state]);
  }
  return condition.previousBad && gain > lastGood ? lastGood : gain;
}

void remember(Zpp16s gain, Zpp16s limit, Zpp16s* mem, bool badFrame) {
  if (!badFrame) mem[kGains + 1] = gain;
  const Zpp16s limited = gain > limit ? limit : gain;
  for (int k = 1; k < kGains; ++k) mem[k - 1] = mem[k];
  mem[kGains - 1] = mem[kGains] = limited;
}

}  // namespace

Zpp16s ownPitchGainConceal_GSMAMR(Zpp16s gain, Zpp16s* mem, const FrameCondition& condition) {
  const Zpp16s result = concealed(gain, mem, pdown, condition);
  remember(result, 16384, mem, condition.bad);
  return result;
}

Zpp16s ownCodeGainConceal_GSMAMR(Zpp16s gain, Zpp16s* mem, Zpp16s* gainMem, const FrameCondition& condition) {
  const Zpp16s result = concealed(gain, mem, cdown, condition);
  if (condition.bad) {
    const auto average = [](const Zpp16s* energies, Zpp16s least) {
      Zpp16s sum = 0;
      for (int k = 0; k < 4; ++k) sum = addSat16(sum, energies[k]);
      const Zpp16s mean = mulQ15(sum, 8192);
      return mean < least ? least : mean;
    };
    pushEnergy(gainMem, average(gainMem, -2381), average(gainMem + 4, -14336));
  }
  remember(result, 32767, mem, condition.bad);
  return result;
}

namespace {

// How far the LSFs of a subframe are from their long-term mean
Zpp16s lsfDeviation(const Zpp16s* prevLsf, const Zpp16s* lsf, const Zpp16s* lsfMean, int subframe) {
  Zpp16s deviation = 0;
  for (int i = 0; i < kLpcOrder; ++i) {
    const Zpp16s old = prevLsf[i], now = lsf[i];
    const auto mostly = [](Zpp16s x, Zpp16s y) { return addSat16(subSat16(x, x >> 2), y >> 2); };
    const Zpp16s here = subframe == 0   ? mostly(old, now)
                        : subframe == 1 ? addSat16(old >> 1, now >> 1)
                        : subframe == 2 ? mostly(now, old)
                                        : now;
    const Zpp16s distance = absSat16(subSat16(lsfMean[i], here));
    if (distance == 0 || lsfMean[i] <= 0) continue;
    // The distance over the mean, both normalised
    const int shift1 = norm16(distance), shift2 = norm16(lsfMean[i]);
    const Zpp32s quotient = (((distance << shift1) >> 1) << 15) / (lsfMean[i] << shift2);
    deviation = addSat16(deviation, shiftRight16(static_cast<Zpp16s>(quotient), 1 + shift1 - shift2));
  }
  return deviation;
}

}  // namespace

Zpp16s ownCodeGainSmooth_GSMAMR(Zpp16s codeGain, const Zpp16s* prevLsf, const Zpp16s* lsf, const Zpp16s* lsfMean, Zpp16s* mem,
                                const FrameCondition& condition, int subframe, Mode mode) {
  constexpr int kHistory = 7, kFew = 5;
  constexpr Zpp16s kChange = 5325;
  Zpp16s *history = mem, &changes = mem[kHistory], &stationary = mem[kHistory + 1];
  for (int k = 1; k < kHistory; ++k) history[k - 1] = history[k];
  history[kHistory - 1] = codeGain;

  const Zpp16s deviation = lsfDeviation(prevLsf, lsf, lsfMean, subframe);
  changes = deviation > kChange ? addSat16(changes, 1) : Zpp16s{0};
  if (changes > 10) stationary = 0;

  Zpp16s smoothed = codeGain;
  if (mode <= k670 || mode == k102) {
    const bool noisy = condition.backgroundNoise && mode <= k590;
    const Zpp16s base = noisy && condition.careful() && condition.voicedHangover > 1 ? 4506 : 3277;
    Zpp16s excess = subSat16(deviation, base);
    if (excess < 0) excess = 0;
    Zpp16s mix = excess > 2048 ? Zpp16s{8192} : shlSat16(excess, 2);  // share of the gain itself, Q13
    if (stationary < 40 || deviation > kChange) mix = 8192;

    const bool longMean = noisy && condition.damaged();
    const Zpp16s weight = longMean ? Zpp16s{4681} : Zpp16s{6554};
    Zpp32s sum = 0;
    for (int k = longMean ? 0 : kHistory - kFew; k < kHistory; ++k) sum = macDbl(sum, weight, history[k]);
    const Zpp16s mean = roundHigh16(sum);
    smoothed = roundHigh16(shlSat32(msuDbl(macDbl(mulDbl(mix, codeGain), 8192, mean), mix, mean), 2));
  }
  stationary = addSat16(stationary, 1);
  return smoothed;
}
