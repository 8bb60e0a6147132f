// Noise enhancement and pitch enhancement of the excitation (3GPP TS 26.190 clause 6.1, "anti-sparseness" apart).
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/excitation/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// The code gain held back to within 1.5 dB of the last one's smoothed value
Zpp32s smoothedGain(Zpp32s gain, Zpp32s last) {
  if (gain < last) return std::min(addSat32(gain, mulDpf16(toDpf(gain), 6226)), last);  // 1.19
  return std::max(mulDpf16(toDpf(gain), 27536), last);                                  // 1 / 1.19
}

// The code vector high-passed, the more the more voiced the speech is
void emphasise(const Zpp16s* code, Zpp16s voiceFactor, Zpp16s* dst) {
  const Zpp16s c = addSat16(voiceFactor >> 3, 4096);  // 0..8191
  if (ownMaxAbs_16s(code, kSubframe) < 8192) {        // no sum leaves 30 bits
    const auto without = [c](Zpp16s x, Zpp32s neighbours) {
      return static_cast<Zpp16s>(x + ((0x4000 - neighbours * c) >> 15));
    };
    dst[0] = without(code[0], code[1]);
    for (int n = 1; n < kSubframe - 1; ++n) dst[n] = without(code[n], code[n - 1] + code[n + 1]);
    dst[kSubframe - 1] = without(code[kSubframe - 1], code[kSubframe - 2]);
    return;
  }
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s acc = fromHigh16(code[n]);
    if (n + 1 < kSubframe) acc = msuDbl(acc, code[n + 1], c);
    if (n > 0) acc = msuDbl(acc, code[n - 1], c);
    dst[n] = roundHigh16(acc);
  }
}

}  // namespace

ZppStatus zppsExcitationEnhance_AMRWB_16s_I(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainPitch, Zpp32s gainCode,
                                            Zpp16s stability, Zpp16s voiceFactor, int scale, Zpp32s* mem) {
  if (anyNull(code, srcDst, mem)) return zppStsNullPointer;
  if (outside(scale, 0, 8)) return zppStsBadScale;
  ownExcitationEnhance_AMRWB_16s_I(code, srcDst, gainPitch, gainCode, stability, voiceFactor, scale, mem);
  return zppStsOk;
}

void ownExcitationEnhance_AMRWB_16s_I(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainPitch, Zpp32s gainCode, Zpp16s stability,
                                      Zpp16s voiceFactor, int scale, Zpp32s* mem) {
  // Smoothing counts where the spectrum stands still and the speech is unvoiced.
  const Zpp16s smoothing = mulQ15(stability, subSat16(16384, voiceFactor >> 1));
  *mem = smoothedGain(gainCode, *mem);
  const Zpp32s gain = addSat32(mulDpf16(toDpf(gainCode), subSat16(32767, smoothing)), mulDpf16(toDpf(*mem), smoothing));
  Zpp16s emphasised[kSubframe];
  emphasise(code, voiceFactor, emphasised);
  ownExcitation_AMRWB_16s_I(emphasised, srcDst, roundHigh16(shlSat32(gain, scale)), gainPitch);
}
