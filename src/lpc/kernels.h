// The kernels of this room: correlations, LP filters and convolutions that several codecs share. Arguments are trusted.
#pragma once

#include "core/variants.h"

// --- Autocorrelation --------------------------------------------------------------------------------------------------------

// dst[k] = sum of src[n] * src[n + k], n = 0..len-1-k, modulo 2^32; 0 for k of len or more
void ownAutoCorr_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst);
// dst[j] = sat32(r << shift), r the sum of lag firstLag + j modulo 2^32
void ownAutoCorr_G729_16s32s_Sfs(const Zpp16s* src, int len, int firstLag, Zpp32s* dst, int lenDst, int shift);
// The normalised form of ITU-T G.729 clause 3.2.1; false, and nothing written, when the frame's energy is too large
bool ownAutoCorr_NormE_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, Zpp32s* norm);
// dst[0] = lag 0, dst[j] = lag firstLag + (j - 1) * step, normalised by lag 0 and rounded
void ownAutoCorr_NormE_NR_16s(const Zpp16s* src, int len, int firstLag, int step, Zpp16s* dst, int lenDst, Zpp32s* norm);
// dst[k] = sum of src[n] * src[n - k], n = 0..len-1, modulo 2^32
void ownAutoCorr_Inv_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst);

// --- Cross-correlation and lag search
// ------------------------------------------------------------------------------------------

// dst[k] = sum of src1[n] * src2[n + k], n = 0..len-1, modulo 2^32, k = 0..lags-1
void ownCorrelate_16s32s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags);
// The backward-filtered target: dst[n] = the exact sum of target[k] * signal[k - n], k = n..len-1, scaled by the Sfs rule
void ownCrossCorr_16s32s_Sfs(const Zpp16s* target, const Zpp16s* signal, int len, Zpp32s* dst, int scaleFactor);
// The same doubled and normalised to 13 bits (ITU-T G.729 Annex A, Cor_h_X)
void ownCrossCorr_NormM_16s(const Zpp16s* target, const Zpp16s* signal, int len, Zpp16s* dst);
void ownCrossCorr_NR_16s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp16s* dst, int lags);

struct LagMax {
  Zpp32s value;
  int lag;
};
// Exact sums saturated to 32 bits, src2 advanced by 0..maxLag; the largest lag wins a tie; {0, maxLag} when none is positive
LagMax ownCrossCorrLagMax_16s(const Zpp16s* src1, const Zpp16s* src2, int len, int maxLag);
// Exact sums doubled and saturated, signal delayed by minLag..maxLag (not an empty range); the smallest lag wins a tie
LagMax ownCrossCorrLagMax_Inv_16s(const Zpp16s* target, const Zpp16s* signal, int len, int minLag, int maxLag);
// Sums modulo 2^32 of src and itself advanced or delayed; the smallest lag wins a tie; {-2147483648, 0} for an empty range
LagMax ownAutoCorrLagMax_Fwd_16s(const Zpp16s* src, int len, int minLag, int maxLag);
LagMax ownAutoCorrLagMax_Inv_16s(const Zpp16s* src, int len, int minLag, int maxLag);

// *dp = the doubled products of the even indices added with saturation after each; true when a step saturated
bool ownDotProd_G729A_16s32s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp);

// --- Filters and convolutions
// ----------------------------------------------------------------------------------------------------

inline constexpr int kLpcOrder = 10;

// 1/A(z) of order 10, coef[0] the factor of the input, scaleFactor 12 or 13. hist: ten past outputs, oldest first, read before
// dst is written, or null for zeros; src may be dst. True when a sample was clamped.
bool ownSynthesisFilter_NR_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, int scaleFactor,
                               const Zpp16s* hist);
// The same of any order at scale factor 12; hist holds `order` outputs outside dst
bool ownSynthesisFilter_G729E_16s(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist);
// dst = the impulse response of coef[0]/A(z), coef[0] in front
void ownSynthesisFilterZeroStateResponse_NR_16s(const Zpp16s* coef, Zpp16s* dst, int len, int scaleFactor);
// A(z) of order 10 over src[-10..len-1], coef Q12
void ownResidualFilter_G729_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len);
// srcDst[n] += gain * srcDst[n - lag], gain Q15, ascending: changed samples feed later ones. lag 1 or more.
void ownHarmonicFilter_16s(Zpp16s gain, int lag, Zpp16s* srcDst, int len);
// dst[n] = sat16(the exact sum of src1[k] * src2[n - k], k = 0..n, >> scaleFactor), truncating; scaleFactor 0 or more
void ownConvPartial_16s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor);
// The same sums modulo 2^32
void ownConvPartial_16s32s(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len);

// --- Adaptive-codebook gain
// --------------------------------------------------------------------------------------------------------

// Gain of the filtered adaptive vector against the target, both of 40 samples: Q14, 0..1.2 (ITU-T G.729 clause 3.7.3, 3GPP
// TS 26.090 clause 5.6). coeffs, unless null: mantissa and 15 - exponent of the energy, then of the correlation. The
// correlation is start + 2C: G.729 starts it at 0, GSM-AMR at 1.
Zpp16s ownAdaptiveCodebookGain_16s(const Zpp16s* target, const Zpp16s* filtered, Zpp16s* coeffs, int start);
