// Decoding and concealment of the gains (3GPP TS 26.190 clause 6.1, TS 26.191 clause 6.3.3).
#include <algorithm>
#include <cstring>

#include "amrwb/gain/kernels.h"
#include "amrwb/gain/prediction.h"
#include "amrwb/gain/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kBuffer = 5;

// The caller's 22 words
struct GainMemory {
  Zpp16s energies[kPastEnergies];                            // newest first, Q10
  Zpp16s pastPitch, pastCode;                                // Q14, Q3
  Zpp16s goodCode;                                           // of the last good subframe, Q3
  Zpp16s pitch[kBuffer], code[kBuffer], goodPitch[kBuffer];  // newest last
};
static_assert(sizeof(GainMemory) == 22 * sizeof(Zpp16s));

void append(Zpp16s value, Zpp16s (&newestLast)[kBuffer]) {
  std::copy(newestLast + 1, newestLast + kBuffer, newestLast);
  newestLast[kBuffer - 1] = value;
}

Zpp16s median(const Zpp16s (&values)[kBuffer]) {
  Zpp16s sorted[kBuffer];
  std::copy_n(values, kBuffer, sorted);
  std::sort(sorted, sorted + kBuffer);
  return sorted[kBuffer / 2];
}

// 1 / the root mean square of the code vector
Zpp16s inverseLevel(const Zpp16s* code) {
  Floating energy = energy12(code, kSubframe);
  energy.exponent -= 24;  // 2^18 for Q9, 2^6 samples
  const Floating inverse = inverseSqrt(energy);
  return high16(shlSat32(inverse.mantissa, inverse.exponent - 3));
}

struct Gains {
  Zpp16s pitch;  // Q14
  Zpp32s code;   // Q16
};

// Gains of a lost subframe: medians of the past ones, attenuated by the state of the loss
Gains conceal(GainMemory& m, Zpp16s inverse, bool unusable, int state, int vadHist) {
  const Zpp16s* pitchDown = unusable ? pitchGainDownUnusable : pitchGainDownUsable;
  const Zpp16s* codeDown = unusable ? codeGainDownUnusable : codeGainDownUsable;
  m.pastPitch = std::min<Zpp16s>(median(m.pitch), 15565);  // 0.95
  const Zpp16s code = median(m.code);
  m.pastCode = vadHist > 2 ? code : mulQ15(codeDown[state], code);

  Zpp32s mean = 0;
  for (const Zpp16s energy : m.energies) mean = macDbl(mean, energy, 8192);
  shiftIn(std::max<Zpp16s>(subSat16(high16(mean), 3072), -14336), m.energies, kPastEnergies);  // 3 dB less, at least -14 dB
  append(m.pastCode, m.code);
  append(m.pastPitch, m.pitch);
  return {mulQ15(pitchDown[state], m.pastPitch), mulDbl(m.pastCode, inverse)};
}

Gains decode(GainMemory& m, Zpp16s inverse, GainPair pair, bool prevBadFrame) {
  const PredictedGain predicted = predictedGain(shlSat32(fromHigh16(30), 8), m.energies);
  Zpp32s gain = shlSat32(mulDbl(pair.codeFactor, predicted.mantissa), predicted.exponent + 4);
  if (prevBadFrame) {
    const Zpp32s limit = mulDbl(m.goodCode, 5120);  // 1.25 of the last good gain
    if (gain > limit && gain > 6553600) gain = limit;
  }
  m.pastCode = m.goodCode = roundHigh16(shlSat32(gain, 3));
  m.pastPitch = pair.pitch;
  append(m.pastCode, m.code);
  append(m.pastPitch, m.pitch);
  append(m.pastPitch, m.goodPitch);
  remember(pair.codeFactor, m.energies);
  return {pair.pitch, shlSat32(mulDpf16(toDpf(gain), inverse), 3)};
}

}  // namespace

ZppStatus zppsDecodeGain_AMRWB_16s(Zpp16s index, const Zpp16s* code, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* mem,
                                   int badFrame, int prevBadFrame, int unusable, int state, int vadHist, ZppSpeechRate rate) {
  if (anyNull(code, gainPitch, gainCode, mem)) return zppStsNullPointer;
  if (outside(badFrame, 0, 1) || outside(prevBadFrame, 0, 1) || outside(unusable, 0, 1) || outside(state, 0, 6))
    return zppStsOutOfRange;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownDecodeGain_AMRWB_16s(index, code, gainPitch, gainCode, mem, badFrame == 1, prevBadFrame == 1, unusable == 1, state,
                          vadHist, modeOf(rate));
  return zppStsOk;
}

void ownDecodeGain_AMRWB_16s(Zpp16s index, const Zpp16s* code, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* mem, bool badFrame,
                             bool prevBadFrame, bool unusable, int state, int vadHist, Mode mode) {
  GainMemory m;
  std::memcpy(&m, mem, sizeof m);
  const Zpp16s inverse = inverseLevel(code);
  const Gains gains =
      badFrame ? conceal(m, inverse, unusable, state, vadHist) : decode(m, inverse, gainPair(index, mode), prevBadFrame);
  std::memcpy(mem, &m, sizeof m);
  *gainPitch = gains.pitch;
  *gainCode = gains.code;
}
