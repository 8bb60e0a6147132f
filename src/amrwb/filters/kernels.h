// The kernels of the sampling-rate conversion, emphasis and LP filters and their processor variants (see core/variants.h).
// Arguments are trusted.
#pragma once

#include "amrwb/arithmetic.h"
#include "core/variants.h"

inline constexpr int kDownSamplingMemory = 30, kUpSamplingMemory = 24, kDecimationMemory = 3, kHighBandMemory = 30;
inline constexpr int kHighPassStateSize = 40;

// ownDownSampling: len a multiple of 5 up to 320; ownUpSampling: a multiple of 4 up to 256;
//   ownDecimateBy2: even, 4..256.
// ownHighBandFilter: any length; the input is shifted right by inputShift first; coef: 31 taps, symmetric, their magnitudes
//   below 2^18 together.
// ownResidualFilter: src[-16..len-1].
// ownSynthesisFilter_AMRWB_16s_I: order 16 or 20; the input counts inputFactor times, the sum is shifted left; mem: past
//   outputs, oldest first.
// ownSynthesisFilter_AMRWB_16s32s: dst[-16..-1] are read.
#define ZPP_AMRWB_FILTER_KERNELS(KERNEL)                                                                                    \
  KERNEL(ownDownSampling_AMRWB_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem))                         \
  KERNEL(ownUpSampling_AMRWB_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem))                           \
  KERNEL(ownDecimateBy2_AMRWB_16s_I, W7, void(Zpp16s * srcDst, int len, Zpp16s* mem))                                       \
  KERNEL(ownHighBandFilter_AMRWB_16s_I, W7, void(const Zpp16s* coef, Zpp16s* srcDst, int len, int inputShift, Zpp16s* mem)) \
  KERNEL(ownPreemphasize_AMRWB_16s_I, W7, void(Zpp16s * srcDst, int len, Zpp16s gamma, int shift, Zpp16s* mem))             \
  KERNEL(ownPreemphasisScale_AMRWB_16s, W7, int(const Zpp16s* src, int len, Zpp16s gamma, Zpp16s prev))                     \
  KERNEL(ownResidualFilter_AMRWB_16s, W7, void(const Zpp16s* lpc, const Zpp16s* src, Zpp16s* dst, int len))                 \
  KERNEL(ownSynthesisFilter_AMRWB_16s_I, W7,                                                                                \
         void(const Zpp16s* lpc, int order, Zpp16s inputFactor, int shift, Zpp16s* srcDst, int len, Zpp16s* mem))           \
  KERNEL(ownSynthesisFilter_AMRWB_16s32s, W7, void(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale))

ZPP_AMRWB_FILTER_KERNELS(ZPP_DECLARE_KERNEL)

// 1/A(z) with the Q format that lpc[0] tells
inline void synthesise(const Zpp16s* lpc, Zpp16s* srcDst, int len, int order, Zpp16s* mem) {
  ownSynthesisFilter_AMRWB_16s_I(lpc, order, zpp::shr16(lpc[0], 1), zpp::norm16(lpc[0]) + 1, srcDst, len, mem);
}

void ownHighPassFilterInit_AMRWB_16s(const Zpp16s* coef, int order, void* state);
void ownHighPassFilter_AMRWB_16s_I(Zpp16s* srcDst, int len, int shift, void* state);
void ownHighPassFilterScale_AMRWB_16s(int shift, void* state);
void ownDeemphasize_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s gamma, Zpp16s* mem);
// Two signals side by side: neither waits for the other. gamma above -32768.
void ownDeemphasizeTwo_AMRWB_16s_I(Zpp16s* srcDst1, Zpp16s* srcDst2, int len, Zpp16s gamma, Zpp16s mem1, Zpp16s mem2);
void ownDeemphasize_AMRWB_32s16s(const Zpp32s* src, Zpp16s* dst, int len, Zpp16s gamma, Zpp16s* mem);
void ownHarmonicFilter_AMRWB_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len);
