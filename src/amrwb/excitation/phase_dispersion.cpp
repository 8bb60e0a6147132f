// Phase dispersion of the code vector (3GPP TS 26.190 clause 6.1, "anti-sparseness processing").
#include <algorithm>
#include <cstring>

#include "amrwb/arithmetic.h"
#include "amrwb/excitation/kernels.h"
#include "amrwb/excitation/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr Zpp16s kWeakPitch = 9830, kModeratePitch = 14746;  // 0.6 and 0.9, Q14
constexpr int kPastGains = 6;

// The caller's eight words
struct Past {
  Zpp16s state, codeGain, pitchGains[kPastGains];  // pitch gains: newest first
};

// 0 strong dispersion, 1 medium, 2 none
int nextState(Past& past, Zpp16s gainCode, Zpp16s gainPitch) {
  int state = gainPitch < kWeakPitch ? 0 : gainPitch < kModeratePitch ? 1 : 2;
  std::copy_backward(past.pitchGains, past.pitchGains + kPastGains - 1, past.pitchGains + kPastGains);
  past.pitchGains[0] = gainPitch;
  const bool onset = subSat16(subSat16(gainCode, past.codeGain), shlSat16(past.codeGain, 1)) > 0;
  if (onset) {
    if (state < 2) ++state;
  } else {
    const auto weak = std::count_if(past.pitchGains, past.pitchGains + kPastGains, [](Zpp16s g) { return g < kWeakPitch; });
    if (weak > 2) state = 0;
    if (state - past.state > 1) --state;
  }
  past.codeGain = gainCode;
  past.state = static_cast<Zpp16s>(state);
  return state;
}

// The circular convolution, added up with saturation pulse by pulse
void disperse(Zpp16s* code, const Zpp16s* response) {
  Zpp16s spread[2 * kSubframe] = {};
  int magnitudes = 0;
  for (int i = 0; i < kSubframe; ++i) magnitudes += absSat16(code[i]);
  const bool saturates = magnitudes >= kMax16;  // A pulse spread is nowhere larger than before.
  for (int i = 0; i < kSubframe; ++i) {
    const Zpp16s pulse = code[i];
    if (pulse == 0) continue;
    Zpp16s* const from = spread + i;
    if (saturates)
      for (int j = 0; j < kSubframe; ++j) from[j] = addSat16(from[j], mulRoundQ15(pulse, response[j]));
    else
      for (int j = 0; j < kSubframe; ++j) from[j] = static_cast<Zpp16s>(from[j] + ((pulse * response[j] + 16384) >> 15));
  }
  for (int n = 0; n < kSubframe; ++n) code[n] = addSat16(spread[n], spread[n + kSubframe]);
}

}  // namespace

ZppStatus zppsPhaseDispersion_AMRWB_16s_I(Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch, Zpp16s* mem, ZppSpeechRate rate) {
  if (anyNull(srcDst, mem)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownPhaseDispersion_AMRWB_16s_I(srcDst, gainCode, gainPitch, mem, modeOf(rate));
  return zppStsOk;
}

void ownPhaseDispersion_AMRWB_16s_I(Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch, Zpp16s* mem, Mode mode) {
  Past past;
  std::memcpy(&past, mem, sizeof past);
  // Rates with more pulses need less of it.
  const int state = nextState(past, gainCode, gainPitch) + std::min<int>(mode, 2);
  std::memcpy(mem, &past, sizeof past);
  if (state == 0)
    disperse(srcDst, strongDispersion);
  else if (state == 1)
    disperse(srcDst, mediumDispersion);
}
