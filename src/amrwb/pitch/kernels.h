// The kernels of the pitch analysis and adaptive codebook and their processor variants (see core/variants.h). Arguments are
// trusted; vectors are of 64 elements unless told otherwise.
#pragma once

#include "amrwb/arithmetic.h"
#include "amrwb/rate.h"
#include "core/variants.h"

inline constexpr int kPastExcitation = 248;
inline constexpr int kOpenLoopMinLag = 18, kOpenLoopMaxLag = 115;  // at 6.4 kHz

// ownConvolution: dst[n] = the rounded upper half of the doubled sum of src[k] * impulse[n - k], k = 0..n, saturated at each
//   step.
// ownRemove: dst = x - gain * y, gain Q14, 0..1.2: the exact difference, saturated once. dst may be x.
// ownNormCorr: normalised correlation of the target with the past excitation at minLag..maxLag filtered by the impulse
//   response. excitation: the current subframe, with maxLag samples before it.
// ownPredLt: the adaptive-codebook vector of 65 samples written in place from the samples `lag` - quarters / 4 back. lag 17 or
//   more; quarters 0..3; the samples down to excitation[-lag - 16] are read.
// ownAdaptiveCodebookLowPass: src[-1..len].
#define ZPP_AMRWB_PITCH_KERNELS(KERNEL)                                                                                     \
  KERNEL(ownConvolution_AMRWB_16s, W7, void(const Zpp16s* src, const Zpp16s* impulse, Zpp16s* dst))                         \
  KERNEL(ownRemove_AMRWB_16s, W7, void(const Zpp16s* x, const Zpp16s* y, Zpp16s gain, Zpp16s* dst))                         \
  KERNEL(ownNormCorr_AMRWB_16s, W7_V3,                                                                                      \
         void(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag, Zpp16s* corr)) \
  KERNEL(ownPredLt_AMRWB_16s_I, W7_V3, void(Zpp16s * excitation, int lag, int quarters))                                    \
  KERNEL(ownAdaptiveCodebookLowPass_AMRWB_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len))

ZPP_AMRWB_PITCH_KERNELS(ZPP_DECLARE_KERNEL)

void ownOpenLoopPitchSearch_AMRWB_16s(const Zpp16s* wsp, const Zpp16s* hpWsp, int len, Zpp16s* lag, Zpp16s* gain, Zpp16s* mem);
void ownImpulseResponseTarget_AMRWB_16s(const Zpp16s* speech, const Zpp16s* weightLpc, const Zpp16s* quantLpc,
                                        const Zpp16s* synMem, Zpp16s* residual, Zpp16s* target, Zpp16s* residualTarget,
                                        Zpp16s* impulse, Zpp16s weightMem);
// excitation: the current subframe, behind kPastExcitation samples
void ownAdaptiveCodebookSearch_AMRWB_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* excitation, Zpp16s* minLag,
                                         Zpp16s* lag, Zpp16s* fraction, Zpp16s* index, int openLoopLag, int subframe,
                                         zpp::amrwb::Mode mode);
void ownAdaptiveCodebookContribution_AMRWB_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* excitation,
                                               Zpp16s* residualTarget, Zpp16s* target2, Zpp16s* filteredVector, Zpp16s* gain,
                                               Zpp16s* coef, Zpp16s* select, bool clip, zpp::amrwb::Mode mode);
void ownAdaptiveCodebookDecode_AMRWB_16s(int index, const Zpp16s* gainHistory, Zpp16s* excitation, Zpp16s* lag,
                                         Zpp16s* fraction, int subframe, bool badFrame, bool unusable, void* state,
                                         zpp::amrwb::Mode mode);
