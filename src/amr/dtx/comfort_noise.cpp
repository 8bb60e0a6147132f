// Discontinuous transmission, decoder: which frames are comfort noise, and the noise (3GPP TS 26.092 clause 6, TS 26.093 clause
// 5.2).
#include <cstring>

#include "amr/arithmetic.h"
#include "amr/dtx/kernels.h"
#include "amr/dtx/tables.h"
#include "amr/frame.h"
#include "amr/lsp/kernels.h"
#include "amr/lsp/tables.h"
#include "amr/synthesis/kernels.h"
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

enum FrameType { good, degraded, onset, bad, firstSid, sidUpdate, badSid, noData };
enum DtxState { speechState, noiseState, fadingState };

}  // namespace

ZppStatus zppsComfortNoiseGetSize_GSMAMR_16s(Zpp32s* size) { return reportSize(size, kComfortNoiseStateSize); }

ZppStatus zppsComfortNoiseInit_GSMAMR_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  ownComfortNoiseInit_GSMAMR(state);
  return zppStsOk;
}

ZppStatus zppsDTXReceive_GSMAMR_16s(Zpp16s frameType, Zpp16s prevState, Zpp16s* newState, void* state) {
  if (anyNull(newState, state)) return zppStsNullPointer;
  if (outside<int>(frameType, good, noData) || outside<int>(prevState, speechState, fadingState)) return zppStsOutOfRange;
  *newState = static_cast<Zpp16s>(ownDTXReceive_GSMAMR(frameType, prevState, state));
  return zppStsOk;
}

ZppStatus zppsComfortNoise_GSMAMR_16s(const Zpp16s* sid, Zpp16s prevState, Zpp16s newState, Zpp16s* residualMem, Zpp16s* lsf,
                                      Zpp16s* gainMem, Zpp16s* synthMem, Zpp16s* speech, Zpp16s* a, Zpp16s* lsp, void* state,
                                      ZppSpeechRate rate) {
  if (anyNull(sid, residualMem, lsf, gainMem, synthMem, speech, a, lsp, state)) return zppStsNullPointer;
  if (outside<int>(prevState, speechState, fadingState) || outside<int>(newState, noiseState, fadingState))
    return zppStsOutOfRange;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownComfortNoise_GSMAMR_16s(sid, prevState, newState, residualMem, lsf, gainMem, synthMem, speech, a, lsp, state,
                             modeOf(rate));
  return zppStsOk;
}

ZppStatus zppsComfortNoiseUpdate_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* lsf, void* state) {
  if (anyNull(speech, lsf, state)) return zppStsNullPointer;
  ownComfortNoiseUpdate_GSMAMR_16s(speech, lsf, state);
  return zppStsOk;
}

namespace {

constexpr int kHistory = 8, kMaxElapsed = 30, kHangover = 7;

// Log energies: Q10 of log2 in the history, Q11 in logEn and oldLogEn.
struct ComfortNoiseState {
  Zpp32s seed;
  Zpp16s lsp[kLpcOrder], lspOld[kLpcOrder];  // between which the noise is interpolated
  Zpp16s logEn, oldLogEn;
  Zpp16s since;                                                         // frames since the last descriptor
  Zpp16s period;                                                        // 1 / frames between the last two, Q15 / 32
  Zpp16s lsfHist[kHistory][kLpcOrder], energyHist[kHistory], position;  // of the latest speech frames
  Zpp16s lsfVar[kHistory][kLpcOrder];                                   // deviations from their mean
  Zpp16s meanPredictionGain;
  Zpp16s adjust;             // of the level, to that of the speech mode
  Zpp16s hangover, elapsed;  // the encoder's, as known here
  Zpp16s sidFrame, valid, added, updated;
};
static_assert(sizeof(ComfortNoiseState) <= kComfortNoiseStateSize);

// The one field that indexes is brought into its range: nothing changes in a state that Init and these functions wrote.
ComfortNoiseState loadState(const void* block) {
  ComfortNoiseState s;
  std::memcpy(&s, block, sizeof s);
  s.position &= kHistory - 1;
  return s;
}

void storeState(const ComfortNoiseState& s, void* block) { std::memcpy(block, &s, sizeof s); }

int randomBits(Zpp32s& seed, int count) {
  int bits = 0;
  for (int n = 0; n < count; ++n) {
    bits = 2 * bits + (seed & 1);
    const Zpp32s feedback = (seed ^ (seed >> 28)) & 1;
    seed = static_cast<Zpp32s>((static_cast<Zpp32u>(seed) >> 1) | static_cast<Zpp32u>(feedback) << 30);
  }
  return bits;
}

// The hangover of the encoder has ended: the parameters of its eight frames are what its first descriptor would hold.
void analyseHangover(ComfortNoiseState& s, Mode mode) {
  s.adjust = dtxLogEnAdjust[mode];
  // The oldest frame is replaced by the latest.
  const int oldest = (s.position + 1) % kHistory;
  std::memcpy(s.lsfHist[oldest], s.lsfHist[s.position], sizeof s.lsfHist[oldest]);
  s.energyHist[oldest] = s.energyHist[s.position];

  s.logEn = 0;
  for (const Zpp16s logEnergy : s.energyHist) s.logEn = addSat16(s.logEn, logEnergy >> 3);
  s.logEn = subSat16(s.logEn, s.adjust);
  Zpp16s mean[kLpcOrder];
  for (int i = 0; i < kLpcOrder; ++i) {
    Zpp32s sum = 0;
    for (const auto& lsf : s.lsfHist) sum += lsf[i];
    mean[i] = low16(sum >> 3);
    for (int k = 0; k < kHistory; ++k) {
      const Zpp16s deviation = mulQ15(subSat16(s.lsfHist[k][i], mean[i]), lsfHistMeanScale[i]);
      int size = absSat16(deviation);
      if (size > 655) size = 655 + ((size - 655) >> 2);
      if (size > 1310) size = 1310;
      s.lsfVar[k][i] = static_cast<Zpp16s>(deviation < 0 ? -size : size);
    }
  }
  ownLSFToLSP_GSMAMR_16s(mean, s.lsp);
}

void takeDescriptor(ComfortNoiseState& s, const Zpp16s* sid, int prevState, Zpp16s* residualMem, Zpp16s* lsf, Zpp16s* gainMem) {
  std::memcpy(s.lspOld, s.lsp, sizeof s.lsp);
  s.oldLogEn = s.logEn;
  if (s.valid) {
    const Zpp16s frames = s.since > 32 ? Zpp16s{32} : s.since;
    s.since = 0;
    s.period = frames >= 2 ? divQ15(1024, shlSat16(frames, 10)) : Zpp16s{16384};
    ownLSPDecode3_GSMAMR_16s(sid, false, residualMem, lsf, s.lsp, kSid);
    const Zpp16s level = sid[4] & 63;
    s.logEn = level == 0 ? Zpp16s{-32768} : subSat16(shlSat16(level, 9), 5120);
    if (!s.updated || prevState == speechState) {
      std::memcpy(s.lspOld, s.lsp, sizeof s.lsp);
      s.oldLogEn = s.logEn;
    }
  }
  ownNoiseGainMem_GSMAMR_16s(static_cast<Zpp16s>(s.logEn >> 1), gainMem);
}

// Reflection coefficients of a filter, all 0 for one that is not stable (A_Refl)
void reflectionCoefficients(const Zpp16s* a, Zpp16s* refl) {
  Zpp16s state[kLpcOrder], next[kLpcOrder];
  std::memcpy(state, a + 1, sizeof state);
  const auto giveUp = [refl] { std::memset(refl, 0, kLpcOrder * sizeof *refl); };
  for (int i = kLpcOrder - 1; i >= 0; --i) {
    if (absSat16(state[i]) >= 4096) return giveUp();
    const Zpp16s k = refl[i] = shlSat16(state[i], 3);
    const Zpp32s rest = subSat32(kMax32, mulDbl(k, k));
    const int shift = norm32(rest);
    const Zpp16s inverse = divQ15(16384, roundHigh16(shlSat32(rest, shift)));
    for (int j = 0; j < i; ++j) {
      const Zpp16s numerator = roundHigh16(msuDbl(fromHigh16(state[j]), k, state[i - j - 1]));
      const Zpp32s quotient = shrRound32(mulDbl(inverse, numerator), 15 - shift);
      if (absSat32(quotient) > 32767) return giveUp();
      next[j] = low16(quotient);
    }
    std::memcpy(state, next, static_cast<unsigned>(i) * sizeof *state);
  }
}

// Half the logarithm of the filter's prediction gain, Q12
Zpp16s predictionGain(const Zpp16s* a) {
  Zpp16s refl[kLpcOrder], error = 32767;
  reflectionCoefficients(a, refl);
  for (const Zpp16s k : refl) error = mulQ15(error, subSat16(32767, mulQ15(k, k)));
  const Dpf log = logarithm(error);
  const Zpp16s gain = addSat16(shlSat16(subSat16(log.hi, 15), 12), log.lo >> 3);
  return static_cast<Zpp16s>(subSat16(0, gain) >> 1);
}

// Ten pulses of either sign at random, each in a part of its own
void randomExcitation(Zpp32s& seed, Zpp16s level, Zpp16s* excitation) {
  std::memset(excitation, 0, kSubframe * sizeof *excitation);
  for (int k = 0; k < 10; ++k) {
    const int position = 10 * randomBits(seed, 2) + k;
    excitation[position] = mulQ15(level, randomBits(seed, 1) != 0 ? Zpp16s{4096} : Zpp16s{-4096});
  }
}

}  // namespace

void ownComfortNoiseInit_GSMAMR(void* state) {
  ComfortNoiseState s = {};
  s.period = 8192;
  s.logEn = s.oldLogEn = 3500;
  s.seed = 0x70816958;
  std::memcpy(s.lsp, lspInitData, sizeof s.lsp);
  std::memcpy(s.lspOld, lspInitData, sizeof s.lspOld);
  for (auto& lsf : s.lsfHist) std::memcpy(lsf, meanLsf5, sizeof lsf);
  for (Zpp16s& logEnergy : s.energyHist) logEnergy = 3500;
  s.hangover = kHangover;
  s.elapsed = 32767;
  std::memset(state, 0, kComfortNoiseStateSize);
  storeState(s, state);
}

int ownDTXReceive_GSMAMR(int frameType, int prevState, void* state) {
  ComfortNoiseState s = loadState(state);
  const bool isSid = frameType == firstSid || frameType == sidUpdate || frameType == badSid;
  const bool missing = frameType == noData || frameType == bad || frameType == onset;
  int newState = speechState;
  if (isSid || (prevState != speechState && missing)) {
    newState = noiseState;
    if (prevState == fadingState && frameType != sidUpdate && frameType != bad) newState = fadingState;
    s.since = addSat16(s.since, 1);
    if (frameType != sidUpdate && s.since > 50) newState = fadingState;
  } else {
    s.since = 0;
  }

  // What the encoder has done, to know whether its hangover came before the descriptor
  if (!s.updated && frameType == sidUpdate) s.elapsed = 0;
  s.elapsed = addSat16(s.elapsed, 1);
  s.added = 0;
  const bool encoderSilent = isSid || frameType == onset || (frameType == noData && newState != speechState);
  if (!encoderSilent) {
    s.hangover = kHangover;
  } else if (s.elapsed > kMaxElapsed) {
    s.added = 1;
    s.elapsed = s.hangover = 0;
  } else if (s.hangover == 0) {
    s.elapsed = 0;
  } else {
    s.hangover = subSat16(s.hangover, 1);
  }

  if (newState != speechState) {
    s.sidFrame = isSid ? 1 : 0;
    s.valid = frameType == sidUpdate ? 1 : 0;
    if (frameType == badSid) s.added = 0;
  }
  storeState(s, state);
  return newState;
}

void ownComfortNoise_GSMAMR_16s(const Zpp16s* sid, int prevState, int newState, Zpp16s* residualMem, Zpp16s* lsf,
                                Zpp16s* gainMem, Zpp16s* synthMem, Zpp16s* speech, Zpp16s* a, Zpp16s* lsp, void* state,
                                Mode mode) {
  ComfortNoiseState s = loadState(state);
  if (s.added && s.sidFrame) analyseHangover(s, mode);
  if (s.sidFrame) takeDescriptor(s, sid, prevState, residualMem, lsf, gainMem);
  s.adjust = addSat16(mulQ15(s.adjust, 29491), mulQ15(shlSat16(dtxLogEnAdjust[mode], 5), 3277) >> 5);

  // Interpolation from the descriptor before to the latest
  Zpp16s weight = mulQ15(shlSat16(addSat16(1, s.since), 10), s.period);
  if (weight > 1024) weight = 1024;
  weight = shlSat16(weight, 4);
  const Zpp16s rest = subSat16(16384, weight);
  const Zpp32s logEn = macDbl(mulDbl(weight, s.logEn), rest, s.oldLogEn);
  for (int i = 0; i < kLpcOrder; ++i) lsp[i] = shlSat16(addSat16(mulQ15(weight, s.lsp[i]), mulQ15(rest, s.lspOld[i])), 1);

  // The synthesis filter varies with the LSFs of speech at random, the less the higher the prediction gain was.
  Zpp16s variation = subSat16(4096, mulQ15(subSat16(s.meanPredictionGain, 2457), 9830));
  variation = shlSat16(variation < 0 ? Zpp16s{0} : variation > 4096 ? Zpp16s{4096} : variation, 3);
  const int pick = randomBits(s.seed, 3);
  Zpp16s varied[kLpcOrder], variedLsp[kLpcOrder], variedA[kLpcOrder + 1];
  ownLSPToLSF_GSMAMR_16s(lsp, lsf);
  for (int i = 0; i < kLpcOrder; ++i) varied[i] = addSat16(lsf[i], mulQ15(variation, s.lsfVar[pick][i]));
  ownReorderLSF_GSMAMR_16s(lsf);
  ownReorderLSF_GSMAMR_16s(varied);
  ownLSFToLSP_GSMAMR_16s(lsf, lsp);
  ownLSFToLSP_GSMAMR_16s(varied, variedLsp);
  ownLSPToLPC_G729_16s(lsp, a);
  ownLSPToLPC_G729_16s(variedLsp, variedA);
  for (int k = 1; k < kSubframes; ++k) std::memcpy(a + k * (kLpcOrder + 1), a, (kLpcOrder + 1) * sizeof *a);

  const Zpp16s gain = predictionGain(a);
  s.meanPredictionGain = addSat16(mulQ15(29491, s.meanPredictionGain), mulQ15(3277, gain));
  Zpp32s logLevel = addSat32(logEn >> 10, 262144);
  logLevel = subSat32(logLevel, Zpp32s{gain} * 16);
  logLevel = addSat32(logLevel, Zpp32s{s.adjust} * 32);
  const Zpp16s level = low16(ownPow2(high16(logLevel), static_cast<Zpp16s>((logLevel & 0xffff) >> 1)));

  for (int k = 0; k < kSubframes; ++k) {
    Zpp16s excitation[kSubframe], *part = speech + k * kSubframe;
    randomExcitation(s.seed, level, excitation);
    ownSynthesisFilter_GSMAMR_16s(variedA, excitation, part, kSubframe, synthMem);
    std::memcpy(synthMem, part + kSubframe - kLpcOrder, kLpcOrder * sizeof *synthMem);
  }

  if (newState == fadingState) {
    const Zpp16s frames = s.since > 32 ? Zpp16s{32} : s.since <= 0 ? Zpp16s{8} : s.since;
    s.period = divQ15(1024, shlSat16(frames, 10));
    s.since = 0;
    std::memcpy(s.lspOld, s.lsp, sizeof s.lsp);
    s.oldLogEn = s.logEn;
    s.logEn = subSat16(s.logEn, 256);
  }
  if (s.sidFrame && (s.valid || s.added)) {
    s.since = 0;
    s.updated = 1;
  }
  storeState(s, state);
}

void ownComfortNoiseUpdate_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* lsf, void* state) {
  ComfortNoiseState s = loadState(state);
  s.position = (s.position + 1) % kHistory;
  std::memcpy(s.lsfHist[s.position], lsf, sizeof s.lsfHist[s.position]);
  const Dpf log = logarithm(energy(speech, kFrame));
  s.energyHist[s.position] = subSat16(addSat16(shlSat16(log.hi, 10), log.lo >> 5), 8521);
  storeState(s, state);
}
