// The combined filter of the analysis by synthesis: LP synthesis, formant weighting, harmonic noise shaping. Its impulse
// response, its ringing and its memories (ITU-T G.723.1 clauses 2.11 to 2.13 and 2.19).
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/filters/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr bool isShapingLag(int lag) { return lag >= 1 && lag <= kHistory; }

}  // namespace

ZppStatus zppsImpulseResponse_G723_16s(const Zpp16s* lpc, const Zpp16s* weighting, Zpp16s* impulse, Zpp16s lag, Zpp16s gain) {
  if (anyNull(lpc, weighting, impulse)) return zppStsNullPointer;
  if (!isShapingLag(lag)) return zppStsBadArgument;
  ownImpulseResponse_G723_16s(lpc, weighting, impulse, lag, gain);
  return zppStsOk;
}

ZppStatus zppsRingingSubtraction_G723_16s_I(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* history,
                                            const Zpp16s* memory, Zpp16s* srcDst, Zpp16s lag, Zpp16s gain) {
  if (anyNull(lpc, weighting, history, memory, srcDst)) return zppStsNullPointer;
  if (!isShapingLag(lag)) return zppStsBadArgument;
  ownRingingSubtraction_G723_16s_I(lpc, weighting, history, memory, srcDst, lag, gain);
  return zppStsOk;
}

ZppStatus zppsRingingUpdate_G723_16s_I(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* excitation, Zpp16s* history,
                                       Zpp16s* memory) {
  if (anyNull(lpc, weighting, excitation, history, memory)) return zppStsNullPointer;
  ownRingingUpdate_G723_16s_I(lpc, weighting, excitation, history, memory);
  return zppStsOk;
}

ZppStatus zppsHarmonicNoiseShaping_G723_16s(const Zpp16s* src, Zpp16s* dst, Zpp16s lag, Zpp16s gain) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (!isShapingLag(lag)) return zppStsBadArgument;
  ownHarmonicNoiseShaping_G723_16s(src, dst, lag, gain);
  return zppStsOk;
}

void ownImpulseResponse_G723_16s(const Zpp16s* lpc, const Zpp16s* weighting, Zpp16s* impulse, int lag, Zpp16s gain) {
  Zpp16s unit[kSubframe] = {8192}, memory[2 * kOrder] = {}, response[kHistory + kSubframe] = {};
  ownWeightedSynthesis_G723_16s(lpc, weighting, unit, response + kHistory, memory, 1);
  ownHarmonicNoiseShaping_G723_16s(response + kHistory, impulse, lag, gain);
}

void ownRingingSubtraction_G723_16s_I(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* history, const Zpp16s* memory,
                                      Zpp16s* srcDst, int lag, Zpp16s gain) {
  Zpp16s silence[kSubframe] = {}, lines[2 * kOrder], all[kHistory + kSubframe];
  Zpp16s* ringing = all + kHistory;
  std::memcpy(lines, memory, sizeof lines);
  std::memcpy(all, history, kHistory * sizeof(Zpp16s));
  ownWeightedSynthesis_G723_16s(lpc, weighting, silence, ringing, lines, 0);
  for (int n = 0; n < kSubframe; ++n)
    srcDst[n] = roundHigh16(macDbl(fromHigh16(subSat16(srcDst[n], ringing[n])), gain, ringing[n - lag]));
}

void ownRingingUpdate_G723_16s_I(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* excitation, Zpp16s* history,
                                 Zpp16s* memory) {
  constexpr int kKept = kHistory - kSubframe;
  std::memmove(history, history + kSubframe, kKept * sizeof(Zpp16s));
  ownWeightedSynthesis_G723_16s(lpc, weighting, excitation, history + kKept, memory, 0);
}

void ownHarmonicNoiseShaping_G723_16s(const Zpp16s* src, Zpp16s* dst, int lag, Zpp16s gain) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = roundHigh16(msuDbl(fromHigh16(src[n]), gain, src[n - lag]));
}
