// The kernels of the pitch analysis and adaptive codebook and their processor variants (see core/variants.h).
//
// Vectors are of 40 samples. `exc` points at the subframe: 154 samples of past excitation lie before it, and the 40 of the
// subframe hold the LP residual until an adaptive vector replaces them.
#pragma once

#include "core/checks.h"
#include "core/variants.h"

// A fractional delay: lag + fraction / 3
struct PitchDelay {
  int lag, fraction;
};
// The past excitation reaches back to a delay of 144 and a third; below 18 the filter would run ahead of its own output.
inline bool badPitchDelay(const Zpp16s* delay) {
  return zpp::outside(int{delay[0]}, 18, 144) || zpp::outside(int{delay[1]}, -1, 1);
}

// ownSplitPairs_16s: first[k] = src[2 k], second[k] = src[2 k + 1].
// ownMeanSquareWeightedError_16s: corr[t - tMin] = correlation of the target with the filtered excitation of delay t over the
//   root of the latter's energy, t = tMin..tMax; exc[-tMax..39-tMin] is read.
// ownBestFraction_G729_16s: of first..last, within -2..2, the fraction where the interpolated corr is largest, the first of
//   equals; corr points at the integer delay, four values beside it are read on each side.
// ownDecodeAdaptiveVector_G729_16s_I: the excitation delayed by lag + fraction / 3, lag 18..144, fraction -1..1.
// ownAdaptiveCodebookContribution_G729_16s: dst = target - gain * filtered, gain Q14; dst may be one of the sources.
#define ZPP_G729_PITCH_KERNELS(KERNEL)                                                                           \
  KERNEL(ownSplitPairs_16s, W7, void(const Zpp16s* src, Zpp16s* first, Zpp16s* second, int pairs))               \
  KERNEL(ownMeanSquareWeightedError_16s, W7,                                                                     \
         void(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* exc, int tMin, int tMax, Zpp16s* corr)) \
  KERNEL(ownBestFraction_G729_16s, W7, int(const Zpp16s* corr, int first, int last))                             \
  KERNEL(ownDecodeAdaptiveVector_G729_16s_I, W7, void(int lag, int fraction, Zpp16s* exc))                       \
  KERNEL(ownAdaptiveCodebookContribution_G729_16s, W7,                                                           \
         void(Zpp16s gain, const Zpp16s* filtered, const Zpp16s* target, Zpp16s* dst))

ZPP_G729_PITCH_KERNELS(ZPP_DECLARE_KERNEL)

// Open-loop delay of a frame of 80 samples of weighted speech; the 143 samples before it are read.
int ownOpenLoopPitchSearch_G729_16s(const Zpp16s* wsp);
int ownOpenLoopPitchSearch_G729A_16s(const Zpp16s* wsp);

// The closed-loop searches leave the adaptive vector of the delay in exc. delay: the open-loop delay in subframe 0, the lag of
// subframe 0 in subframe 1.
PitchDelay ownAdaptiveCodebookSearch_G729_16s(int delay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                              int subframe);
PitchDelay ownAdaptiveCodebookSearch_G729A_16s(int delay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                               int subframe);
PitchDelay ownAdaptiveCodebookSearch_G729D_16s(int delay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                               int subframe);
// corr[0] belongs to delay tMin - 4, the last value to tMax + 4.
PitchDelay ownClosedLoopPitchSearch_G729_16s(const Zpp16s* corr, int subframe, int tMin, int tMax);

void ownDecodeAdaptiveVector_G729_16s(int lag, int fraction, const Zpp16s* pastExc, Zpp16s* dst);

// Both return the gain, Q14. filtered: the adaptive vector through the impulse response, or through 1/A(z) from rest
Zpp16s ownAdaptiveCodebookGain_G729_16s(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* adaptive, Zpp16s* filtered);
Zpp16s ownAdaptiveCodebookGain_G729A_16s(const Zpp16s* target, const Zpp16s* a, const Zpp16s* adaptive, Zpp16s* filtered);
