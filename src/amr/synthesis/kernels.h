// The kernels of the decoder's excitation and synthesis (3GPP TS 26.090 clause 6.1, TS 26.091). Arguments are trusted.
#pragma once

#include "amr/frame.h"
#include "amr/rate.h"
#include "amr/synthesis/tables.h"
#include "core/variants.h"

// Vectors of 40 elements.
// ownApplyGains: srcDst = (srcDst * gain) >> 12, saturated.
// ownAddPitch: dst = excitation + vector * sharpening (Q15, truncated) * pitchGain, rounded at bit `shift`, 15 or 16, saturated
// at
//   every step; dst may be excitation.
// ownDisperse: dst = the circular convolution of pulses, where most are 0, and a response, added up with saturation pulse by
// pulse.
#define ZPP_AMR_SYNTHESIS_KERNELS(KERNEL)                                                                                   \
  KERNEL(ownApplyGains_GSMAMR_16s_I, W7, void(const Zpp16s* gains, Zpp16s* srcDst))                                         \
  KERNEL(ownAddPitch_GSMAMR_16s, W7,                                                                                        \
         void(const Zpp16s* vector, const Zpp16s* excitation, Zpp16s sharpening, Zpp16s pitchGain, int shift, Zpp16s* dst)) \
  KERNEL(ownDisperse_GSMAMR_16s, W7, void(const Zpp16s* pulses, const DispersionResponse& response, Zpp16s* dst))

ZPP_AMR_SYNTHESIS_KERNELS(ZPP_DECLARE_KERNEL)

// mem: as in zppsPhaseDispersion_GSMAMR_16s_I
void ownPhaseDispersion_GSMAMR_16s_I(Zpp16s pitchGain, Zpp16s codeGain, Zpp16s* code, Zpp16s* mem,
                                     const FrameCondition& condition, zpp::amr::Mode mode);
void ownExcitationControl_GSMAMR_16s_I(Zpp16s* excitation, Zpp16s* energyHist, const FrameCondition& condition,
                                       zpp::amr::Mode mode);
void ownPitchEmphasis_GSMAMR_16s(const Zpp16s* vector, const Zpp16s* excitation, Zpp16s sharpening, Zpp16s pitchGain,
                                 Zpp16s* dst, zpp::amr::Mode mode);
// 1/A(z) of order 10, saturating at every step; hist: ten past outputs, oldest first. True when anything saturated.
bool ownSynthesisFilter_GSMAMR_16s(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist);
bool ownBackgroundNoise_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* pitchGainHist, Zpp16s* energyHist, Zpp16s* noiseCount,
                                   Zpp16s* voicedHangover);

namespace zpp::amr {

// Energy of a subframe, an eighth of the sum of squares
Zpp32s subframeEnergy(const Zpp16s* x);
// The gain that brings a subframe of energy `actual`, not 0, to the energy `wanted`: Q12
Zpp16s levelGain(Zpp32s wanted, Zpp32s actual);

}  // namespace zpp::amr
