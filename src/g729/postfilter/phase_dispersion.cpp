// Phase dispersion of ITU-T G.729 Annex D (6.4 kbit/s decoder): spreads the few pulses of the code vector while the pitch gain
// is low.
#include <algorithm>
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/postfilter/kernels.h"
#include "g729/postfilter/tables.h"

using namespace zpp;

namespace {

constexpr int kSubframe = kPostfilterSubframe;
constexpr Zpp16s kLowPitchGain = 9830, kHighPitchGain = 14745;  // 0.6 and 0.9, Q14

enum Dispersion : Zpp16s { strong, medium, none };

struct DispersionState {
  Zpp16s pitchGain[6];  // Q14, newest first
  Zpp16s dispersion;    // of the subframe before
  Zpp16s codeGain;      // of the subframe before, Q1
  Zpp16s onset;         // subframes for which an onset of the code gain still counts
  Zpp16s spare;
};
static_assert(sizeof(DispersionState) == 20);

DispersionState loadState(const void* state) {
  DispersionState s;
  std::memcpy(&s, state, sizeof s);
  return s;
}

void remember(DispersionState& s, Zpp16s pitchGain) {
  std::copy_backward(s.pitchGain, s.pitchGain + 5, s.pitchGain + 6);
  s.pitchGain[0] = pitchGain;
}

Zpp16s chooseDispersion(DispersionState& s, Zpp16s codeGain, Zpp16s pitchGain) {
  int d = pitchGain >= kHighPitchGain ? none : pitchGain > kLowPitchGain ? medium : strong;
  remember(s, pitchGain);
  s.onset = static_cast<Zpp16s>((codeGain >> 1) > s.codeGain ? 2 : std::max(s.onset - 1, 0));
  if (s.onset == 0) {
    if (std::count_if(s.pitchGain, s.pitchGain + 6, [](Zpp16s g) { return g < kLowPitchGain; }) > 2) d = strong;
    if (d > s.dispersion + 1) --d;
  } else if (d < none) {
    ++d;
  }
  s.dispersion = static_cast<Zpp16s>(d);
  s.codeGain = codeGain;
  return s.dispersion;
}

void ownPhaseDispersion_G729D_16s(const Zpp16s* excitation, const Zpp16s* code, Zpp16s* dst, Zpp16s codeGain, Zpp16s pitchGain,
                                  void* state) {
  static constexpr Zpp16s kUnit[kSubframe] = {32767};
  DispersionState s = loadState(state);
  const Zpp16s chosen = chooseDispersion(s, codeGain, pitchGain);
  std::memcpy(state, &s, sizeof s);

  // The code vector's share of the excitation is replaced by that of the dispersed code vector.
  Zpp16s share[kSubframe], adaptive[kSubframe], dispersed[kSubframe];
  ownMulC_NR_16s_Sfs(code, codeGain, share, kSubframe, 14);
  ownSub_16s(share, excitation, adaptive, kSubframe);
  ownConvolveCircular_G729D_16s(code, chosen == strong ? ph_imp_low : chosen == medium ? ph_imp_mid : kUnit, dispersed);
  ownMulC_NR_16s_Sfs(dispersed, codeGain, share, kSubframe, 14);
  ownAdd_16s(adaptive, share, dst, kSubframe);
}

// A subframe of another rate
void ownPhaseDispersionUpdate_G729D_16s(Zpp16s pitchGain, Zpp16s codeGain, void* state) {
  DispersionState s = loadState(state);
  remember(s, pitchGain);
  s.dispersion = none;
  s.codeGain = codeGain;
  s.onset = 0;
  std::memcpy(state, &s, sizeof s);
}

}  // namespace

ZppStatus zppsPhaseDispersionInit_G729D_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  std::memset(state, 0, sizeof(DispersionState));
  return zppStsOk;
}

ZppStatus zppsPhaseDispersionUpdate_G729D_16s(Zpp16s pitchGain, Zpp16s codeGain, void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  ownPhaseDispersionUpdate_G729D_16s(pitchGain, codeGain, state);
  return zppStsOk;
}

ZppStatus zppsPhaseDispersion_G729D_16s(const Zpp16s* excitation, const Zpp16s* code, Zpp16s* dst, Zpp16s codeGain,
                                        Zpp16s pitchGain, void* state) {
  if (anyNull(excitation, code, dst, state)) return zppStsNullPointer;
  ownPhaseDispersion_G729D_16s(excitation, code, dst, codeGain, pitchGain, state);
  return zppStsOk;
}
