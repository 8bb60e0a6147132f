// The kernels of the pitch analysis and adaptive codebook and their processor variants (see core/variants.h). Arguments are
// trusted; vectors are of 40 elements.
#pragma once

#include "amr/frame.h"
#include "amr/rate.h"
#include "core/variants.h"

// ownNormCorr: normalised correlation of the target with the past excitation at minLag..maxLag filtered by the impulse
//   response. excitation: the current subframe, with maxLag samples before it.
// ownPredLt: adaptive-codebook vector written in place: excitation[0..39] from the samples `lag` + sixths / 6 back. lag 11 or
//   more; sixths -5..5; the samples down to excitation[-lag - 10] are read.
// ownImpulseResponseTarget: target of the subframe's closed-loop searches, residual and impulse response (3GPP TS 26.090 clause
//   5.5); speech: 10 samples, then the subframe.
#define ZPP_AMR_PITCH_KERNELS(KERNEL)                                                                                       \
  KERNEL(ownNormCorr_GSMAMR_16s, W7_V3,                                                                                     \
         void(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag, Zpp16s* corr)) \
  KERNEL(ownPredLt_GSMAMR_16s_I, W7, void(Zpp16s * excitation, int lag, int sixths))                                        \
  KERNEL(ownImpulseResponseTarget_GSMAMR_16s, W7,                                                                           \
         void(const Zpp16s* speech, const Zpp16s* weight1, const Zpp16s* weight2, const Zpp16s* quantLpc,                   \
              const Zpp16s* errorMem, const Zpp16s* weightMem, Zpp16s* impulse, Zpp16s* residual, Zpp16s* target))

ZPP_AMR_PITCH_KERNELS(ZPP_DECLARE_KERNEL)

// excitation: 154 past samples, then the subframe; `row` of searchPrm, `delta`: the lag is coded relative to *lag
void ownAdaptiveCodebookSearch_GSMAMR_16s(const Zpp16s* target, const Zpp16s* impulse, int openLoopLag, Zpp16s* lag,
                                          Zpp16s* excitation, Zpp16s* fraction, Zpp16s* lagIndex, Zpp16s* vector, int subframe,
                                          ZppSpeechRate rate);
void ownAdaptiveCodebookDecode_GSMAMR_16s(int lagIndex, Zpp16s* lastGoodLag, Zpp16s* decodedLag, Zpp16s* excitation,
                                          Zpp16s* lag, Zpp16s* vector, int subframe, bool badFrame, bool backgroundNoise,
                                          int voicedHangover, ZppSpeechRate rate);
// The past excitation `lag` samples back, filtered by the impulse response: 40 samples, truncated
void ownFilteredExcitation_GSMAMR_16s(const Zpp16s* excitation, int lag, const Zpp16s* impulse, Zpp16s* filtered);
// The open-loop lags of a frame, and the measurements for the voice activity detectors: vadMem, the five words of option 1, or
// null; sums, for option 2, or null: the correlations at the lags and the energies are added.
void ownOpenLoopPitchSearch_GSMAMR_16s(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* gainFlag, Zpp16s* lags,
                                       zpp::amr::Mode mode, Zpp16s* vadMem, Zpp32s* sums);
