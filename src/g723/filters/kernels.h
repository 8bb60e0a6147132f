// The kernels of the encoder's and the decoder's filters of ITU-T G.723.1 and their processor variants.
#pragma once

#include "core/variants.h"

// Filters of a subframe of 60 samples, saturating at every step. memory: ten samples a delay line, newest first.
// ownPoleZeroFilter_G723_16s_I: memory holds ten inputs and ten outputs. tilt: Q15, a multiple of 4, -16384..16384; each result
//   takes the filter's output before it times tilt with it.
// ownWeightedSynthesis_G723_16s: synthesis, then weighting (ten zeros, which share the delay line, and ten poles).
//   extraBit: 0, or 1 where the weighting runs at twice the level.
#define ZPP_G723_FILTER_KERNELS(KERNEL)                                                               \
  KERNEL(ownSynthesisFilter_G723_16s_I, W7, void(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory))  \
  KERNEL(ownPoleZeroFilter_G723_16s_I, W7,                                                            \
         void(const Zpp16s* zeros, const Zpp16s* poles, Zpp16s tilt, Zpp16s* srcDst, Zpp16s* memory)) \
  KERNEL(                                                                                             \
      ownWeightedSynthesis_G723_16s, W7,                                                              \
      void(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* excitation, Zpp16s* dst, Zpp16s* memory, int extraBit))

ZPP_G723_FILTER_KERNELS(ZPP_DECLARE_KERNEL)

void ownHighPassFilter_G723_16s_I(Zpp16s* srcDst, Zpp32s* memory, int len);
void ownWeightingLPC_G723_16s(const Zpp16s* lpc, Zpp16s* weighting);
void ownHarmonicNoiseShaping_G723_16s(const Zpp16s* src, Zpp16s* dst, int lag, Zpp16s gain);
void ownImpulseResponse_G723_16s(const Zpp16s* lpc, const Zpp16s* weighting, Zpp16s* impulse, int lag, Zpp16s gain);
void ownRingingSubtraction_G723_16s_I(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* history, const Zpp16s* memory,
                                      Zpp16s* srcDst, int lag, Zpp16s gain);
void ownRingingUpdate_G723_16s_I(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* excitation, Zpp16s* history,
                                 Zpp16s* memory);
