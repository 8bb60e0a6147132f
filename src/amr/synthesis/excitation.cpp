// What the decoder does to the excitation: anti-sparseness (3GPP TS 26.090 clause 6.1), control in background noise
// (TS 26.091), emphasis of the pitch (TS 26.090 clause 6.1).
#include <cstring>

#include "amr/arithmetic.h"
#include "amr/synthesis/kernels.h"
#include "amr/synthesis/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsPhaseDispersion_GSMAMR_16s_I(Zpp16s pitchGain, Zpp16s codeGain, Zpp16s* code, Zpp16s* mem,
                                           const Zpp16s* condition, ZppSpeechRate rate) {
  if (anyNull(code, mem, condition)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownPhaseDispersion_GSMAMR_16s_I(pitchGain, codeGain, code, mem, FrameCondition(condition), modeOf(rate));
  return zppStsOk;
}

ZppStatus zppsExcitationControl_GSMAMR_16s_I(Zpp16s* excitation, Zpp16s* energyHist, const Zpp16s* condition,
                                             ZppSpeechRate rate) {
  if (anyNull(excitation, energyHist, condition)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownExcitationControl_GSMAMR_16s_I(excitation, energyHist, FrameCondition(condition), modeOf(rate));
  return zppStsOk;
}

ZppStatus zppsPitchEmphasis_GSMAMR_16s(const Zpp16s* vector, const Zpp16s* excitation, Zpp16s sharpening, Zpp16s pitchGain,
                                       Zpp16s* dst, ZppSpeechRate rate) {
  if (anyNull(vector, excitation, dst)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownPitchEmphasis_GSMAMR_16s(vector, excitation, sharpening, pitchGain, dst, modeOf(rate));
  return zppStsOk;
}

namespace {

enum Dispersion { strong, medium, none };

// How much a code is to be dispersed: the more, the weaker the pitch. mem: five pitch gains, newest first, last choice, last
// code gain, onset count.
int chooseDispersion(Zpp16s pitchGain, Zpp16s codeGain, Zpp16s* mem, bool locked) {
  constexpr Zpp16s kWeak = 9830, kStrong = 14746;  // 0.6, 0.9
  Zpp16s &lastChoice = mem[5], &lastCodeGain = mem[6], &onset = mem[7];
  for (int k = 4; k > 0; --k) mem[k] = mem[k - 1];
  mem[0] = pitchGain;

  int choice = pitchGain >= kStrong ? none : pitchGain > kWeak ? medium : strong;
  if (codeGain > roundHigh16(shlSat32(mulDbl(lastCodeGain, 16384), 2)))
    onset = 2;
  else if (onset > 0)
    --onset;
  if (onset == 0) {
    int weak = 0;
    for (int k = 0; k < 5; ++k) weak += mem[k] < kWeak;
    if (weak > 2) choice = strong;
  }
  if (choice > lastChoice + 1 && onset == 0) --choice;
  if (choice < none && onset > 0) ++choice;
  if (codeGain < 10) choice = none;
  if (locked) choice = strong;
  lastChoice = static_cast<Zpp16s>(choice);
  lastCodeGain = codeGain;
  return choice;
}

}  // namespace

void ownPhaseDispersion_GSMAMR_16s_I(Zpp16s pitchGain, Zpp16s codeGain, Zpp16s* code, Zpp16s* mem,
                                     const FrameCondition& condition, Mode mode) {
  const bool locked = mode <= k590 && condition.voicedHangover > 3 && condition.backgroundNoise && condition.bad;
  const int choice = chooseDispersion(pitchGain, codeGain, mem, locked);
  if (choice == none || (mode > k670 && mode != k795)) return;

  const DispersionResponse& response =
      mode == k795 ? (choice == strong ? phImpLowMR795 : phImpMidMR795) : (choice == strong ? phImpLow : phImpMid);
  Zpp16s pulses[kSubframe];
  std::memcpy(pulses, code, sizeof pulses);
  ownDisperse_GSMAMR_16s(pulses, response, code);
}

void ownExcitationControl_GSMAMR_16s_I(Zpp16s* excitation, Zpp16s* energyHist, const FrameCondition& condition, Mode mode) {
  constexpr int kHistory = 9;
  const Root root = squareRoot(zpp::energy(excitation, kSubframe) >> 1);
  const Zpp16s level = low16(shr32(root.value, (root.shift >> 1) + 15) >> 2);

  if (mode <= k590 && condition.voicedHangover > 5 && condition.backgroundNoise && condition.state < 4 && condition.careful()) {
    const bool gently = condition.degraded && !condition.bad;
    Zpp16s wanted = median(energyHist, kHistory);
    Zpp16s previous = static_cast<Zpp16s>(addSat16(energyHist[7], energyHist[8]) >> 1);
    if (energyHist[8] < previous) previous = energyHist[8];
    if (level < wanted && level > 5) {
      Zpp16s most = shlSat16(previous, 2);
      if (condition.voicedHangover < 7 || condition.previousBad) most = subSat16(most, previous);
      if (wanted > most) wanted = most;
      const int shift = norm16(level);
      const Zpp16s reciprocal = divQ15(16383, shlSat16(level, shift));
      const Zpp32s scale = shiftRight32(mulDbl(wanted, reciprocal), 20 - shift);  // Q10
      Zpp16s factor = scale > 32767 ? Zpp16s{32767} : low16(scale);
      if (gently && factor > 3072) factor = 3072;
      for (int n = 0; n < kSubframe; ++n) excitation[n] = low16(mulDbl(factor, excitation[n]) >> 11);
    }
  }
  if (condition.backgroundNoise && condition.damaged() && condition.state < 4) return;
  for (int k = 1; k < kHistory; ++k) energyHist[k - 1] = energyHist[k];
  energyHist[kHistory - 1] = level;
}

namespace zpp::amr {

Zpp32s subframeEnergy(const Zpp16s* x) {
  const Zpp32s sum = energy(x, kSubframe);
  if (sum != kMax32) return sum >> 4;
  Zpp16s quarter[kSubframe];
  ownRShiftC_16s(x, quarter, kSubframe, 2);
  return energy(quarter, kSubframe);
}

Zpp16s levelGain(Zpp32s wanted, Zpp32s actual) {
  if (wanted == 0) return 0;
  const int shiftActual = norm32(actual) - 1, shiftWanted = norm32(wanted);
  const Zpp16s numerator = roundHigh16(shlSat32(actual, shiftActual));
  const Zpp16s denominator = roundHigh16(shlSat32(wanted, shiftWanted));
  const Zpp32s ratio = shlSat32(divQ15(numerator, denominator), 7);
  return roundHigh16(shlSat32(ownInvSqrt(shiftRight32(ratio, shiftActual - shiftWanted)), 9));
}

}  // namespace zpp::amr

void ownPitchEmphasis_GSMAMR_16s(const Zpp16s* vector, const Zpp16s* excitation, Zpp16s sharpening, Zpp16s pitchGain,
                                 Zpp16s* dst, Mode mode) {
  if (sharpening <= 16384) {
    std::memcpy(dst, excitation, kSubframe * sizeof *dst);
    return;
  }
  ownAddPitch_GSMAMR_16s(vector, excitation, sharpening, pitchGain, mode == k122 ? 16 : 15, dst);
  const Zpp32s actual = subframeEnergy(dst);
  if (actual == 0) return;
  const Zpp16s gain = levelGain(subframeEnergy(excitation), actual);
  Zpp16s gains[kSubframe];
  ownSet_16s(gain, gains, kSubframe);
  ownApplyGains_GSMAMR_16s_I(gains, dst);
}
