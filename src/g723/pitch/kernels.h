// The kernels of the pitch analysis and adaptive codebook of ITU-T G.723.1 and their processor variants.
#pragma once

#include "core/variants.h"

// ownAdaptiveCodebookDecode_G723_16s: 60 samples from 64, the sum of taps[k] work[n + k], k = 0..4, taps Q14.
#define ZPP_G723_PITCH_KERNELS(KERNEL) \
  KERNEL(ownAdaptiveCodebookDecode_G723_16s, W7, void(const Zpp16s* taps, const Zpp16s* work, Zpp16s* dst))

ZPP_G723_PITCH_KERNELS(ZPP_DECLARE_KERNEL)

// 60 samples from the 145 before them, `delay` samples back through five gain taps, Q14
void ownDecodeAdaptiveVector_G723_16s(int delay, const Zpp16s* taps, const Zpp16s* history, Zpp16s* dst);
// Work vector of 64 samples from 145 of history: the last `delay` of them repeated, led by the two samples before them
void ownExcitationDelay_G723_16s(const Zpp16s* history, Zpp16s* work, int delay);
