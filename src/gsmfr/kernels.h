// Kernels of GSM full rate and their processor variants.
#pragma once

#include "core/variants.h"
#include "lpc/kernels.h"

inline constexpr int kGsmFrFrame = 160, kGsmFrSubframe = 40, kGsmFrHistory = 120, kGsmFrOrder = 8;
// The parts of a frame with coefficients of their own (3GPP TS 46.010 clause 5.2.9)
inline constexpr int kGsmFrParts = 4, kGsmFrPartBounds[kGsmFrParts + 1] = {0, 13, 27, 40, 160};
inline constexpr int kGsmFrShortestLag = 40, kGsmFrLongestLag = 120;

// len is 1 or more; src may be dst.
// ownLTPCorrelation: the largest correlation of the target, |target| up to 512, with the history, and the smallest of its lags;
//   {0, 40} where none is positive.
#define ZPP_GSMFR_KERNELS(KERNEL)                                                                                       \
  KERNEL(ownPreemphasize_GSMFR_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory))                  \
  KERNEL(ownDeemphasize_GSMFR_16s_I, W7, void(Zpp16s * srcDst, int len, Zpp16s* memory))                                \
  KERNEL(ownLARDecode_GSMFR_16s, W7, void(const Zpp16s* larCode, Zpp16s* lar))                                          \
  KERNEL(ownLARToRefl_GSMFR_16s, W7, void(const Zpp16s* prevLar, const Zpp16s* lar, Zpp16s* refl))                      \
  KERNEL(ownShortTermAnalysisFilter_GSMFR_16s_I, W7, void(const Zpp16s* refl, Zpp16s* srcDst, int len, Zpp16s* memory)) \
  KERNEL(ownShortTermSynthesisFilter_GSMFR_16s, W7,                                                                     \
         void(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory))                             \
  KERNEL(ownSpeechSynthesis_GSMFR_16s, W7,                                                                              \
         void(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, Zpp16s* memory, Zpp16s* emphasis))                    \
  KERNEL(ownLTPCorrelation_GSMFR_16s, W7_V3, LagMax(const Zpp16s* target, const Zpp16s* history))                       \
  KERNEL(ownLTPPredict_GSMFR_16s, W7, void(const Zpp16s* history, Zpp16s* dst, int lag, int gain))                      \
  KERNEL(ownWeightingFilter_GSMFR_16s, W7, void(const Zpp16s* src, Zpp16s* dst))

ZPP_GSMFR_KERNELS(ZPP_DECLARE_KERNEL)

void ownOffsetCompensation_GSMFR_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory);

// Scales a frame down so that its lags fit 31 bits; returns the shift, 0..4.
int ownScaleDown_GSMFR_16s_I(Zpp16s* frame);
// Doubled lags of a frame that has been scaled down
void ownAutoCorr_GSMFR_16s32s(const Zpp16s* frame, Zpp32s* autoCorr, int lags);
int ownAutoCorr_GSMFR_16s32s_I(Zpp16s* srcDst, Zpp32s* autoCorr);  // returns the scale
void ownSchur_GSMFR_32s16s(const Zpp32s* autoCorr, Zpp16s* refl, int order);
void ownReflToLAR_GSMFR_16s(const Zpp16s* refl, Zpp16s* lar);

void ownLARQuant_GSMFR_16s(const Zpp16s* lar, Zpp16s* larCode);

void ownLTPSearch_GSMFR_16s(const Zpp16s* src, const Zpp16s* history, Zpp16s* lag, Zpp16s* gain);

void ownRPEQuant_GSMFR_16s(const Zpp16s* src, Zpp16s* pulses, Zpp16s* grid, Zpp16s* amplitude, Zpp16s* maximum);
void ownRPEQuantDecode_GSMFR_16s(const Zpp16s* pulses, Zpp16s* dst, int amplitude, int grid);

void ownVADInit_GSMFR_16s(void* state, int direction);
bool ownVAD_GSMFR_16s(const Zpp32s* autoCorr, const Zpp16s* offsetFree, const Zpp16s* lags, int scale, void* state);
void ownSIDQuant_GSMFR_16s(const Zpp16s* lar, const Zpp16s* maxima, Zpp16s* larCode, Zpp16s* amplitude);
