// Gains applied to a subframe: portable kernels.
#include "amr/synthesis/kernels.h"
#include "core/fixed_point.h"

using namespace zpp;

void ownApplyGains_GSMAMR_16s_I_PX(const Zpp16s* gains, Zpp16s* srcDst) {
  for (int n = 0; n < kSubframe; ++n) srcDst[n] = sat16((srcDst[n] * gains[n]) >> 12);
}

void ownAddPitch_GSMAMR_16s_PX(const Zpp16s* vector, const Zpp16s* excitation, Zpp16s sharpening, Zpp16s pitchGain, int shift,
                               Zpp16s* dst) {
  const Zpp32s half = 1 << (shift - 1);
  for (int n = 0; n < kSubframe; ++n) {
    const Zpp16s pitch = sat16((mulQ15(vector[n], sharpening) * pitchGain + half) >> shift);
    dst[n] = addSat16(pitch, excitation[n]);
  }
}
