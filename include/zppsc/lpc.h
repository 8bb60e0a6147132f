/* zppsc: linear prediction shared by codecs. Include zppsc.h. */
#ifndef ZPPSC_LPC_H
#define ZPPSC_LPC_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Autocorrelation --------------------------------------------------------------------------------------------------------
 *
 * r[k] = sum of src[n] * src[n + k], n = 0..len-1-k; 0 for k of len or more.
 * src: len samples; dst: lenDst lags, lag 0 first.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len or lenDst below 1; others as told.
 */

/* dst[k] = r[k] modulo 2^32, neither scaled nor saturated. lenDst: number of lags, 1 or more. */
ZPPAPI ZppStatus zppsAutoCorr_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst);

/* dst[0] = (2 * r[0] + 1) << norm, dst[k] = sat32(r[k] << (norm + 1)), with norm the shift that normalises 2 * r[0] + 1.
 * lenDst: number of lags, 1 or more. *norm: 0..30; 30 for silence. zppStsOverflowWarn, and nothing written, when r[0] exceeds
 * 1073741823: scale the frame down (ITU-T G.729: by 2 bits) and call again. Source: ITU-T G.729 clause 3.2.1, on the windowed
 * frame. */
ZPPAPI ZppStatus zppsAutoCorr_NormE_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, Zpp32s* norm);

/* dst[0] = round16(sat32(2 * r[0]) << norm), dst[k] = round16(sat32(r[k] << (norm + 1))), round16 giving the rounded upper
 * 16 bits, 32767 at most. A frame too loud is clamped silently. lenDst: number of lags, 1 or more. *norm: the shift that
 * normalises sat32(2 * r[0]); 0 for silence. */
ZPPAPI ZppStatus zppsAutoCorr_NormE_NR_16s(const Zpp16s* src, int len, Zpp16s* dst, int lenDst, Zpp32s* norm);

/* As zppsAutoCorr_NormE_NR_16s with a choice of lags: dst[0] is lag 0, dst[j] lag firstLag + (j - 1) * step, j = 1..lenDst-1.
 * firstLag and step: 0 or more. Returns zppStsOk. */
ZPPAPI ZppStatus _zppsAutoCorr_NormE_Step_NR_16s(const Zpp16s* src, int len, int firstLag, int step, Zpp16s* dst, int lenDst,
                                                 Zpp32s* norm);

/* dst[j] = sat32(r[firstLag + j] << shift), r modulo 2^32, j = 0..lenDst-1: the lags of zppsAutoCorr_NormE_16s32s. firstLag: 0
 * or more; shift: a left shift, 0..31. Returns zppStsOk. */
ZPPAPI ZppStatus _zppsAutoCorr_G729_16s32s_Sfs(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, int firstLag, int shift);

/* Backward form: dst[k] = sum of src[n] * src[n - k], n = 0..len-1, modulo 2^32. Reads the lenDst - 1 samples before src.
 * Returns zppStsOk. */
ZPPAPI ZppStatus _zppsAutoCorr_Inv_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst);

/* ---- Synthesis, residual and sharpening filters ----------------------------------------------------------------------- */

/* LP synthesis 1/A(z) of order 10: y[n] = sat16((acc + half) >> scaleFactor), half = 2^(scaleFactor-1),
 * acc = coef[0] * x[n] - sum of coef[i] * y[n - i], i = 1..10, modulo 2^32.
 * coef: 11 values, Q12 for scale factor 12 or Q13 for 13. src, dst, srcDst: len samples. hist: the last 10 outputs of the
 * previous block, oldest first, anywhere in memory, never written; null stands for zeros. The caller keeps the history.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsBadScale for a scale factor other than 12 and 13;
 * zppStsOverflowWarn when a sample was clamped, with all samples written. Source: Syn_filt of the ITU-T G.729 fixed-point
 * reference, which it equals as long as no accumulator leaves 31 bits. */
ZPPAPI ZppStatus zppsSynthesisFilter_NR_16s_Sfs(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, int scaleFactor,
                                                const Zpp16s* hist);
ZPPAPI ZppStatus zppsSynthesisFilter_NR_16s_ISfs(const Zpp16s* coef, Zpp16s* srcDst, int len, int scaleFactor,
                                                 const Zpp16s* hist);
/* The same outputs, without the warning */
ZPPAPI ZppStatus zppsSynthesisFilterLow_NR_16s_ISfs(const Zpp16s* coef, Zpp16s* srcDst, int len, int scaleFactor,
                                                    const Zpp16s* hist);
/* The first len samples of the impulse response of coef[0]/A(z), dst[0] = coef[0]; clamped without a warning. coef: 11 values
 * as above. */
ZPPAPI ZppStatus zppsSynthesisFilterZeroStateResponse_NR_16s(const Zpp16s* coef, Zpp16s* dst, int len, int scaleFactor);

/* The filter of any order (ITU-T G.729 Annex E: 30). coef: order + 1 values, Q12. hist: order outputs, outside dst.
 * Status as above; zppStsBadSize also for an order below 1. */
ZPPAPI ZppStatus zppsSynthesisFilter_G729E_16s(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len,
                                               const Zpp16s* hist);

/* The filter of order 10 with its history in dst[-10..-1]; dst may be src. coef: 11 values, Q12. Status: zppStsOk,
 * zppStsNullPointer, zppStsBadSize, zppStsOverflowWarn. */
ZPPAPI ZppStatus zppsSynthesisFilter_G729_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len);

/* LP residual: dst[n] = sat16((sum of coef[i] * src[n - i], i = 0..10, + 2048) >> 12). coef: 11 values, Q12; src: len samples,
 * and the 10 before them are read; dst must not overlap what is read. Status: zppStsOk; zppStsNullPointer; zppStsBadSize for
 * len below 1. Source: ITU-T G.729 clause 3.3. */
ZPPAPI ZppStatus zppsResidualFilter_G729_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len);

/* The same for any order (ITU-T G.729 Annex E: 30). coef: order + 1 values, Q12. src: len samples, and the order samples before
 * them are read. The sum is exact.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len, then for order, below 1. */
ZPPAPI ZppStatus zppsResidualFilter_G729E_16s(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len);

/* Harmonic sharpening: srcDst[n] = sat16(srcDst[n] + min((gain * srcDst[n - lag]) >> 15, 32767)), n ascending, so that changed
 * samples feed later ones. gain: Q15; srcDst: len samples, and the lag samples before them are read.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsOutOfRange for a lag below 1.
 * Source: 3GPP TS 26.090 clause 5.7, ITU-T G.729 clause 3.8. */
ZPPAPI ZppStatus zppsHarmonicFilter_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len);

/* ---- Convolution, correlation and lags -------------------------------------------------------------------------------- */

/* Convolution cut to len values: dst[n] = sat16((sum of src1[k] * src2[n - k], k = 0..n) >> scaleFactor), truncating the exact
 * sum; factors beyond 31 act as 31. src1, src2, dst: len values; dst must not be a source.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsBadArgument for a negative scale factor.
 * Source: Convolve of the ITU-T G.729 fixed-point reference at scale factor 12. */
ZPPAPI ZppStatus zppsConvPartial_16s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor);
/* The sums modulo 2^32. Status: zppStsOk, zppStsNullPointer, zppStsBadSize. */
ZPPAPI ZppStatus zppsConvPartial_16s32s(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len);

/* Largest of c[k] = sat32(sum of src1[n] * src2[n + k], n = 0..len-1), k = 0..maxLag, and its lag. Of equal values the largest
 * lag is reported; when none is positive, 0 at maxLag. src1: len samples; src2: len + maxLag. *max: out, the largest value;
 * *maxLagOut: out, its lag.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsOutOfRange for maxLag below 0. */
ZPPAPI ZppStatus zppsCrossCorrLagMax_16s(const Zpp16s* src1, const Zpp16s* src2, int len, int maxLag, Zpp32s* max,
                                         Zpp32s* maxLagOut);

/* Largest of the sums of src[n] * src[n + k] (Fwd) or src[n] * src[n - k] (Inv), n = 0..len-1, k = minLag..maxLag, and its lag.
 * The sums are not doubled and are taken modulo 2^32: keep the energies below 2^31. Of equal values the smallest lag is
 * reported; for minLag above maxLag -2147483648 and 0.
 * src: len samples, and the maxLag samples behind (Fwd) or before (Inv) them are read. minLag: 0 or more. *max: out, the
 * largest sum; *lag: out.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1. Source: ITU-T G.729 clause 3.4. */
ZPPAPI ZppStatus zppsAutoCorrLagMax_Fwd_16s(const Zpp16s* src, int len, int minLag, int maxLag, Zpp32s* max, Zpp32s* lag);
ZPPAPI ZppStatus zppsAutoCorrLagMax_Inv_16s(const Zpp16s* src, int len, int minLag, int maxLag, Zpp32s* max, Zpp32s* lag);

/* Largest of sat32(2 * sum of target[n] * signal[n - k]), n = 0..len-1, k = minLag..maxLag, and its lag; of equal values the
 * smallest lag. target: len values; signal: signal[-maxLag..len-1-minLag] is read. *max: out, the largest value; *lag: out. An
 * empty range writes neither. Returns zppStsOk.
 * Source: ITU-T G.729 Annex A clause A.3.7. */
ZPPAPI ZppStatus _zppsCrossCorrLagMax_Inv_16s(const Zpp16s* target, const Zpp16s* signal, int len, int minLag, int maxLag,
                                              Zpp32s* max, Zpp32s* lag);

/* Backward filtering: dst[n] = sat32(sum of src1[k] * src2[k - n], k = n..len-1, times 2^-scaleFactor), Sfs rule. src1: target;
 * src2: impulse response; both and dst: len values. Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1.
 * Source: 3GPP TS 26.090 clause 5.7, ITU-T G.729 clause 3.8.1. */
ZPPAPI ZppStatus zppsCrossCorr_16s32s_Sfs(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int scaleFactor);

/* dst[k] = (sat32(2 * sum of src1[n] * src2[n + k], n = 0..len-1) + 32768) >> 16, 32767 at most, k = 0..lags-1.
 * src1: len samples; src2: len + lags - 1. Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len or lags below 1. */
ZPPAPI ZppStatus zppsCrossCorr_NR_16s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp16s* dst, int lags);

/* Backward filtering for a pitch search: d[n] = sat32(2 * sum of target[k] * signal[k - n], k = n..len-1) and
 * dst[n] = d[n] >> (18 - min(norm, 16)), norm normalising the largest magnitude of d (0 for silence): 13 bits remain at most.
 * target, signal, dst: len values; signal must not be dst. Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1.
 * Source: Cor_h_X of the ITU-T G.729 Annex A fixed-point reference. */
ZPPAPI ZppStatus zppsCrossCorr_NormM_16s(const Zpp16s* target, const Zpp16s* signal, int len, Zpp16s* dst);

/* *dp = the sum of 2 * src1[n] * src2[n] over even n, saturated to 32 bits after each step; src1, src2: len samples.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsOverflowWarn, *dp written, when a step saturated.
 * Source: ITU-T G.729 Annex A clause A.3.4. */
ZPPAPI ZppStatus zppsDotProd_G729A_16s32s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp);

/* Adaptive-codebook gain <target, filtered> / <filtered, filtered>, Q14, 0..19661 (1.2).
 * target, filtered: 40 samples, filtered being the adaptive vector through the weighted synthesis filter. gain: one value.
 * coeffs: 4 values, or null: mantissa and 15 - exponent of 2 * energy + 1, then of 2 * correlation. Returns zppStsOk.
 * Source: ITU-T G.729 clause 3.7.3. */
ZPPAPI ZppStatus _zppsComputeAdaptiveCodebookGain_16s(const Zpp16s* target, const Zpp16s* filtered, Zpp16s* gain,
                                                      Zpp16s* coeffs);

#ifdef __cplusplus
}
#endif

#endif
