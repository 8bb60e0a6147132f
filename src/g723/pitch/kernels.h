// The kernels of the pitch analysis and adaptive codebook of ITU-T G.723.1 and their processor variants.
#pragma once

#include "core/variants.h"

// ownAdaptiveCodebookDecode_G723_16s: 60 samples from 64, the sum of taps[k] work[n + k], k = 0..4, taps Q14.
// ownPitchCorrelations_G723_16s32s: the 20 values that decide about one delay, saturating at every step: of the five vectors of
//   work (64), filtered by impulse, the correlations with target, the energies, and the correlations with one another.
// ownPitchGainSearch_G723_16s: the gain row (of 170 or 86) with the largest score, the sum of 20 products with values,
//   saturating at every step; the first of equals. Returns the row and replaces *best, or -1 when no score is above *best.
#define ZPP_G723_PITCH_KERNELS(KERNEL)                                                                      \
  KERNEL(ownAdaptiveCodebookDecode_G723_16s, W7, void(const Zpp16s* taps, const Zpp16s* work, Zpp16s* dst)) \
  KERNEL(ownPitchCorrelations_G723_16s32s, W7,                                                              \
         void(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* work, Zpp32s* values))             \
  KERNEL(ownPitchGainSearch_G723_16s, W7, int(const Zpp16s* values, const Zpp16s(*table)[20], int rows, Zpp32s* best))

ZPP_G723_PITCH_KERNELS(ZPP_DECLARE_KERNEL)

// What an adaptive-codebook search decides
struct PitchChoice {
  int lag, offset, gainIndex;
};

// 60 samples from the 145 before them, `delay` samples back through five gain taps, Q14
void ownDecodeAdaptiveVector_G723_16s(int delay, const Zpp16s* taps, const Zpp16s* history, Zpp16s* dst);
// Work vector of 64 samples from 145 of history: the last `delay` of them repeated, led by the two samples before them
void ownExcitationDelay_G723_16s(const Zpp16s* history, Zpp16s* work, int delay);

// src[-142..119], block-scaled
int ownOpenLoopPitchSearch_G723_16s(const Zpp16s* src);
// src[-145..59], block-scaled. Returns the lag.
int ownHarmonicSearch_G723_16s(const Zpp16s* src, int openLoopLag, Zpp16s* gain);
PitchChoice ownAdaptiveCodebookSearch_G723(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* history,
                                           const Zpp32s* taming, int lag, bool sine, int subframe, ZppSpeechRate rate);
void ownTargetUpdate_G723_16s_I(const Zpp16s* vector, const Zpp16s* impulse, Zpp16s* target);
// How many further steps of gain rows the decoder's estimated error (taming) leaves open for delays between two limits
int ownErrorTest_G723_32s(const Zpp32s* taming, int minDelay, int maxDelay, bool sine);
void ownTamingUpdate_G723_32s_I(Zpp32s* taming, int lag, int offset, int gainIndex, ZppSpeechRate rate);

// The high rate has a smaller codebook for short lags.
constexpr bool ownTakesHighRateGains(int lag, ZppSpeechRate rate) { return rate == ZPP_RATE_6300 && lag < 58; }
