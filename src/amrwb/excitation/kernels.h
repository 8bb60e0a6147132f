// The kernels of the excitation of AMR-WB. Arguments are trusted.
#pragma once

#include "amrwb/rate.h"
#include "core/variants.h"

Zpp16s ownVoiceFactor_AMRWB_16s(const Zpp16s* vector, const Zpp16s* code, int scale, Zpp16s gainPitch, Zpp16s gainCode);
#define ZPP_AMRWB_EXCITATION_KERNELS(KERNEL) \
  KERNEL(ownExcitation_AMRWB_16s_I, W7, void(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch))

ZPP_AMRWB_EXCITATION_KERNELS(ZPP_DECLARE_KERNEL)

void ownExcitationEnhance_AMRWB_16s_I(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainPitch, Zpp32s gainCode, Zpp16s stability,
                                      Zpp16s voiceFactor, int scale, Zpp32s* mem);
void ownPitchSharpening_AMRWB_16s_I(const Zpp16s* vector, Zpp16s* srcDst, Zpp16s gainPitch);
void ownPhaseDispersion_AMRWB_16s_I(Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch, Zpp16s* mem, zpp::amrwb::Mode mode);
