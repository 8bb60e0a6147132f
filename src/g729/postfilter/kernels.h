// The kernels of the G.729 postfilter (clause 4.2, Annexes A, D and E). Arguments are trusted. A subframe has 40 samples.
#pragma once

#include "core/variants.h"

inline constexpr int kPostfilterSubframe = 40;
// Samples of the residual before the subframe: those that the full-rate postfilter reads, and those in the buffers of Annexes A
// and B
inline constexpr int kPostfilterHistory = 152, kPostfilterHistoryAnnexAB = 154;

// A signal y against the residual c: y delayed by an integer less phase/8
struct DelayedMatch {
  Zpp32s correlation;  // 2 * sum of c[n] * y[n]
  Zpp32s energy;       // 2 * sum of y[n]^2
  bool operator==(const DelayedMatch&) const = default;
};

// ownNormaliseResidual_G729_16s: scaled = the 192 samples from residual[-152] on, shifted right by the result, -12..3, so that
//   the OR of their magnitudes has 12 bits; 3 for silence.
// ownMatchFractions_G729_16s: for each phase 1..7 the match of c[0..39] with c delayed by delay + 1 - phase/8, then by
//   delay - phase/8. c within +-4096, which rules out overflow; 147 samples before it; delay 17..145.
// ownInterpolate_G729_16s: dst[n] = the rounded sum of filter[i] * src[n - i], i = 0..taps-1, for 40 samples; taps 4 or 16;
//   src within +-4096 and the filter a row of an interpolation table, which rules out overflow.
// ownHarmonicFilter_G729_16s: dst = (x * gainX + y * gainY + 16384) >> 15; gains not negative, their sum 32768.
// ownHarmonicFilter_G729A_16s: dst = x * gainX >> 15 plus y * gainY >> 15, saturated; gains not negative.
// ownTiltFilter_G729_16s: with x the samples before the call, srcDst[n] = w * gain / 2^shift, rounded and saturated, w being
//   the low 16 bits of x[n] + factor * x[n - 1] / 2^14, rounded; x[-1] is `previous`; factor within +-16384, shift 11 or 14.
// ownPreemphasize_G729A_16s: dst[n] = src[n] - (factor * src[n - 1] >> 15), saturated both times; src[-1] is `previous`; dst
//   may be src.
// ownMagnitudeSum_16s: exact sum of the magnitudes of 40 samples.
// ownApplyGain_G729A_16s: srcDst[n] = srcDst[n] * gain[n] >> 12, saturated, 40 samples.
// ownConvolveCircular_G729D_16s: dst[n] = the sum of code[p] * response[(n - p) mod 40] >> 15, p ascending, saturated after
//   each; response above -32768.
#define ZPP_G729_POSTFILTER_KERNELS(KERNEL)                                                                                \
  KERNEL(ownNormaliseResidual_G729_16s, W7, int(const Zpp16s* residual, Zpp16s* scaled))                                   \
  KERNEL(ownMatchFractions_G729_16s, W7, void(const Zpp16s* c, int delay, DelayedMatch(*match)[2]))                        \
  KERNEL(ownInterpolate_G729_16s, W7, void(const Zpp16s* src, const Zpp16s* filter, int taps, Zpp16s* dst))                \
  KERNEL(ownHarmonicFilter_G729_16s, W7, void(const Zpp16s* x, const Zpp16s* y, Zpp16s gainX, Zpp16s gainY, Zpp16s* dst))  \
  KERNEL(ownHarmonicFilter_G729A_16s, W7, void(const Zpp16s* x, const Zpp16s* y, Zpp16s gainX, Zpp16s gainY, Zpp16s* dst)) \
  KERNEL(ownTiltFilter_G729_16s, W7, void(Zpp16s * srcDst, Zpp16s previous, Zpp16s factor, Zpp16s gain, int shift))        \
  KERNEL(ownPreemphasize_G729A_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s factor, Zpp16s previous))     \
  KERNEL(ownMagnitudeSum_16s, W7, Zpp32s(const Zpp16s* src))                                                               \
  KERNEL(ownApplyGain_G729A_16s, W7, void(const Zpp16s* gain, Zpp16s* srcDst))                                             \
  KERNEL(ownConvolveCircular_G729D_16s, W7, void(const Zpp16s* code, const Zpp16s* response, Zpp16s* dst))

ZPP_G729_POSTFILTER_KERNELS(ZPP_DECLARE_KERNEL)

// The full-rate long-term postfilter; the delay selected, 0 when it is off. delay: 18..144, of which the longest reads a sample
// of history more; gainFactor: Q15, 0..16384
inline constexpr int kLongestPostfilterDelay = 144;
int ownLongTermPostFilter_G729_16s(Zpp16s gainFactor, int delay, const Zpp16s* residual, Zpp16s* dst);
