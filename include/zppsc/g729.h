/* zppsc: ITU-T G.729 and its annexes. Include zppsc.h. */
#ifndef ZPPSC_G729_H
#define ZPPSC_G729_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- State sizes of G.729 ---- */

/* State-size queries: *size receives the bytes that the caller provides for the state block, at any alignment.
 * Status: zppStsOk; zppStsNullPointer when size is null. */
ZPPAPI ZppStatus zppsHighPassFilterSize_G729(Zpp32s* size);               /* 24 */
ZPPAPI ZppStatus zppsPhaseDispersionGetStateSize_G729D_16s(Zpp32s* size); /* 20 */
ZPPAPI ZppStatus zppsWinHybridGetStateSize_G729E_16s(Zpp32s* size);       /* 124 */
ZPPAPI ZppStatus zppsWinHybridGetStateSize_G729E_32f(Zpp32s* size);       /* 124 */

/* ---- Pre- and post-processing filters of ITU-T G.729 (clauses 3.1 and 4.2.5) --------------------------------------------- */

/* Prepares the state of a second-order high-pass filter: zero history, then the coefficients.
 * coef: b0 b1 b2 a0 a1 a2; at scale factor 12 Q12 with the numerator halved (140 Hz, input), at 13 Q13 (100 Hz, output);
 *   a0 is stored, not used; a1 and a2 with the sign that makes them factors of past outputs to be added.
 * state: zppsHighPassFilterSize_G729 bytes, any alignment; written whole.
 * Status: zppStsOk, zppStsNullPointer. */
ZPPAPI ZppStatus zppsHighPassFilterInit_G729(const Zpp16s* coef, void* state);

/* Filters len samples in place; consecutive calls continue the signal.
 * scaleFactor: 12, ITU-T G.729 pre-processing (140 Hz, input divided by two); 13, post-processing (100 Hz, output doubled).
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsBadScale for another scale factor. */
ZPPAPI ZppStatus zppsHighPassFilter_G729_16s_ISfs(Zpp16s* srcDst, int len, int scaleFactor, void* state);

/* ---- G.729: LP analysis and LSP quantisation (clause 3.2) -------------------------------------------------------------------
 *
 * Formats and shapes, unless a function says otherwise:
 *
 * - a: LP coefficients, 11 values, Q12, a[0] = 4096. refl: reflection coefficients, Q15.
 * - lsp, quantLsp: line spectral pairs in the cosine domain, 10 values, Q15, descending. lsf, quantLsf: line spectral
 *   frequencies in radians, 10 values, Q13, ascending. lsfNorm: the same over 2 pi, 10 values, Q15 (0..0.5).
 * - maMem: memory of the moving-average predictor, 40 values, Q13: four code vectors of 10, the newest first. It belongs to the
 *   caller, who starts every row with the LSFs of a flat spectrum, i pi / 11: 2339 4679 7018 9358 11698 14037 16377 18717 21056
 *   23396 (_32f: 0.285599 0.571199 0.856798 1.142397 1.427997 1.713596 1.999195 2.284795 2.570394 2.855993). The quantiser and
 *   the decoder of a stream each keep one.
 * - idx: 4 values: MA mode L0 (0, 1), first-stage index L1 (0..127), second-stage indices L2 and L3 (0..31).
 *   code: 2 words, L0 << 7 | L1 and L2 << 5 | L3. sidIdx: 3 values: MA mode (0, 1), first-stage (0..31) and second-stage index
 *   (0..15) of a silence-descriptor frame.
 *
 * Members named _32f are single-precision counterparts (Annexes C and C+), here and in the sections on pitch, codebooks, gains
 * and postfilter. They take natural units: a[0] = 1, LSPs as cosines, LSFs and predictor memory in radians, gains with 1.0 as
 * unity, pulses of +1 and -1, impulse responses with h[0] = 1, speech at the size of 16-bit samples. Shapes, indices, checks
 * and statuses are those of the 16-bit members unless told otherwise; no check looks at the values of samples. NaN and infinity
 * give useless numbers, but never an index outside its range nor an access outside a buffer. They are not bit-exact with the
 * fixed-point codec: on the same speech the two may choose different indices. Builds for SSE2 and above and 64-bit builds give
 * the same bits as each other. A 32-bit build without SSE2, which computes in x87 registers, may differ from them in the last
 * bits of a result (as measured, in this section by 2e-7 of a vector's largest value at most, in those on pitch, codebooks and
 * gains by 4e-7, in the gain control by 2e-6), and where two entries of a codebook are as good as equal may choose the other.
 *
 * Where a comment lists no status, the function returns zppStsOk, or zppStsNullPointer for a null pointer.
 */

/* Levinson-Durbin recursion in the standard's double precision (clause 3.2.2).
 * autoCorr: order + 1 values, normalised: autoCorr[0] of 2^30 or more. a: order + 1 values. refl: order values. energy: one
 * value, the upper half of the prediction error in the scale of autoCorr. order: 1..30.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another order; zppStsOverflowWarn, with nothing written, when the
 * magnitude of autoCorr[0] or of the normalised prediction error is below 65536, or that of a reflection coefficient from the
 * second on above 32750: the caller keeps the filter of the frame before. */
ZPPAPI ZppStatus zppsLevinsonDurbin_G729_32s16s(const Zpp32s* autoCorr, int order, Zpp16s* a, Zpp16s* refl, Zpp16s* energy);

/* As above with order 10 (Annex B). refl: the first two reflection coefficients only; after the warning they are written too
 * but mean nothing.
 * Status: zppStsOk; zppStsNullPointer; zppStsOverflowWarn. */
ZPPAPI ZppStatus zppsLevinsonDurbin_G729B(const Zpp32s* autoCorr, Zpp16s* a, Zpp16s* refl, Zpp16s* energy);

/* Levinson-Durbin recursion in natural units (clause 3.2.2, Annex C; order 30 for the backward analysis of Annex E).
 * autoCorr: order + 1 values of any scale, autoCorr[0] above 0; autoCorr[1] counts as autoCorr[0] at most. a: order + 1 values,
 * out. refl: order values, out. energy: one value, out, the prediction error in the scale of autoCorr. order: 1..30.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another order; zppStsOverflowWarn, with nothing written, when
 * autoCorr[0] is not above 0, the prediction error vanishes before the last stage, or the magnitude of a reflection coefficient
 * from the second on exceeds 32750/32768: the caller keeps the filter of the frame before. refl[0] is not tested; from the
 * second stage on a prediction error that is not positive becomes 0.001. */
ZPPAPI ZppStatus zppsLevinsonDurbin_G729_32f(const Zpp32f* autoCorr, int order, Zpp32f* a, Zpp32f* refl, Zpp32f* energy);

/* Lag window, in place (clause 3.2.1, Annex B for lags 11 and 12): 60 Hz bandwidth expansion and white-noise correction.
 * autoCorr: len values from lag 1 on. len: 1..12.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsOutOfRange for len above 12. */
ZPPAPI ZppStatus zppsLagWindow_G729_32s_I(Zpp32s* autoCorr, int len);

/* Lag window of the backward analysis, in place (Annex E): then all lags are raised by one and normalised together by the shift
 * of lag 0; other lags saturate. srcDst: 31 values, lag 0 first, in: as zppsWinHybrid_G729E_16s32s gives them, srcDst[0] of 0
 * or more; out: srcDst[0] of 2^30 or more, fit for zppsLevinsonDurbin_G729_32s16s with order 30. */
ZPPAPI ZppStatus zppsLagWindow_G729E_32s_I(Zpp32s* srcDst);

/* LP coefficients to LSPs by a search of sign changes (clause 3.2.3): over 60 intervals, each halved four times; G729A: 50
 * intervals, halved twice. a: 11; prevLsp: 10; lsp: 10, out. When fewer than ten roots are found, lsp = prevLsp, also with
 * zppStsOk. a[0] is not read. */
ZPPAPI ZppStatus zppsLPCToLSP_G729_16s(const Zpp16s* a, const Zpp16s* prevLsp, Zpp16s* lsp);
ZPPAPI ZppStatus zppsLPCToLSP_G729A_16s(const Zpp16s* a, const Zpp16s* prevLsp, Zpp16s* lsp);
ZPPAPI ZppStatus zppsLPCToLSP_G729_32f(const Zpp32f* a, const Zpp32f* prevLsp, Zpp32f* lsp);
ZPPAPI ZppStatus zppsLPCToLSP_G729A_32f(const Zpp32f* a, const Zpp32f* prevLsp, Zpp32f* lsp);

/* LSPs to LP coefficients (clause 3.2.6). lsp: 10; a: 11, out. Coefficients beyond 16 bits wrap around. */
ZPPAPI ZppStatus zppsLSPToLPC_G729_16s(const Zpp16s* lsp, Zpp16s* a);
ZPPAPI ZppStatus zppsLSPToLPC_G729_32f(const Zpp32f* lsp, Zpp32f* a);

/* LSPs to LSFs, to normalised LSFs, and back, by table and linear interpolation (clause 3.2.4). The table is walked from the
 * last LSP to the first without turning back; values of an lsp out of order that leave 16 bits wrap around.
 * zppsLSFToLSP_G729_16s returns also: zppStsOutOfDomain for a negative lsf; the entries before it have been written. */
ZPPAPI ZppStatus zppsLSPToLSF_G729_16s(const Zpp16s* lsp, Zpp16s* lsf);
ZPPAPI ZppStatus zppsLSPToLSF_Norm_G729_16s(const Zpp16s* lsp, Zpp16s* lsfNorm);
ZPPAPI ZppStatus zppsLSFToLSP_G729_16s(const Zpp16s* lsf, Zpp16s* lsp);

/* Quantises LSFs with the two-stage switched-MA vector quantiser (clause 3.2.4) and decodes the result.
 * maMem: in/out, shifted by this frame. quantLsf, idx: out.
 * Status as zppsLSFDecode_G729_16s without zppStsBadCodedParam. */
ZPPAPI ZppStatus zppsLSFQuant_G729_16s(const Zpp16s* lsf, Zpp16s* maMem, Zpp16s* quantLsf, Zpp16s* idx);

/* The same from LSPs to quantised LSPs. maMem: in/out. quantLsp, code: out.
 * Status: zppStsOk; zppStsNullPointer. Whether the stability step acted is not told. */
ZPPAPI ZppStatus zppsLSPQuant_G729_16s(const Zpp16s* lsp, Zpp16s* maMem, Zpp16s* quantLsp, Zpp16s* code);

/* The same with a predictor memory that the caller shifts (Annex E).
 * maMem: only read. residual: 10 values, Q13: the code vector, which is to become the newest row of the memory. */
ZPPAPI ZppStatus zppsLSPQuant_G729E_16s(const Zpp16s* lsp, const Zpp16s* maMem, Zpp16s* residual, Zpp16s* quantLsp,
                                        Zpp16s* code);

/* The same in natural units. lsp: 10 cosines; values beyond +-1 count as +-1. maMem: 40, radians, only read. residual: 10,
 * radians, out. quantLsp: 10 cosines, out. code: 2 words, out. Status: zppStsOk; zppStsNullPointer. */
ZPPAPI ZppStatus zppsLSPQuant_G729E_32f(const Zpp32f* lsp, const Zpp32f* maMem, Zpp32f* residual, Zpp32f* quantLsp,
                                        Zpp16s* code);

/* Decodes LSFs (clauses 3.2.4 and 4.1.1) and makes them a stable filter's: ascending, 321 apart, within 40..25681.
 * idx: the MA mode may be 0..3, of which the low bit counts; of L1 the low seven, of L2 and L3 the low five bits.
 * maMem: in/out, shifted by this frame. quantLsf: out.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadCodedParam for another MA mode. Warnings, with everything written:
 * zppStsLSFLowClamped when the lowest LSF was raised to 40, zppStsLSFHighClamped when the highest was lowered to 25681,
 * zppStsLSFBothClamped. */
ZPPAPI ZppStatus zppsLSFDecode_G729_16s(const Zpp16s* idx, Zpp16s* maMem, Zpp16s* quantLsf);

/* The same in radians: at least 0.0392 apart, within 0.005..3.135. idx: 4 words; maMem: 40, in/out; quantLsf: 10, out. */
ZPPAPI ZppStatus zppsLSFDecode_G729_32f(const Zpp16s* idx, Zpp32f* maMem, Zpp32f* quantLsf);

/* The decoder's step in an erased frame (clause 4.4.1): shifts into maMem the code vector that would have given lsf.
 * maMode: MA mode of the last good frame, 0..3, of which the low bit counts. lsf: its quantised LSFs, only read.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadCodedParam for another MA mode. */
ZPPAPI ZppStatus zppsLSFDecodeErased_G729_16s(Zpp16s maMode, Zpp16s* maMem, const Zpp16s* lsf);
ZPPAPI ZppStatus zppsLSFDecodeErased_G729_32f(Zpp16s maMode, Zpp32f* maMem, const Zpp32f* lsf);

/* Quantises and decodes the LSFs of a silence-descriptor frame (Annex B clause B.4.2). lsf: spaced by the caller as the annex
 * tells. maMem: in/out, shifted by this frame. quantLsf, sidIdx: out.
 * Status: zppStsOk; zppStsNullPointer; the warnings of zppsLSFDecode_G729_16s. */
ZPPAPI ZppStatus zppsLSFQuant_G729B_16s(const Zpp16s* lsf, Zpp16s* maMem, Zpp16s* quantLsf, Zpp16s* sidIdx);
ZPPAPI ZppStatus zppsLSFQuant_G729B_32f(const Zpp32f* lsf, Zpp32f* maMem, Zpp32f* quantLsf, Zpp16s* sidIdx);

/* Decodes the LSFs of a silence-descriptor frame. sidIdx: the low one, five and four bits count; nothing is refused. maMem: in
 * and out, shifted by this frame. quantLsf: out.
 * Status: zppStsOk; zppStsNullPointer; the warnings of zppsLSFDecode_G729_16s. */
ZPPAPI ZppStatus zppsLSFDecode_G729B_16s(const Zpp16s* sidIdx, Zpp16s* maMem, Zpp16s* quantLsf);
ZPPAPI ZppStatus zppsLSFDecode_G729B_32f(const Zpp16s* sidIdx, Zpp32f* maMem, Zpp32f* quantLsf);

/* Interpolation of parameter vectors between subframes (clause 3.2.5): dst[n] = (src1[n] >> 1) + (src2[n] >> 1), n < len.
 * dst may be one of the sources.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1. */
ZPPAPI ZppStatus zppsInterpolate_G729_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len);

/* dst[n] = sat16(sat32(src1[n] * weight1 + src2[n] * weight2) >> scaleFactor); NR: with round half up. dst may be one of the
 * sources. scaleFactor: 0 or more; beyond 31 it acts as 31 (NR: the result is 0 from 33 on).
 * Status: zppStsOk; zppStsNullPointer; then zppStsBadScale for a negative scale factor; then zppStsBadSize for len below 1. */
ZPPAPI ZppStatus zppsInterpolateC_G729_16s_Sfs(const Zpp16s* src1, Zpp16s weight1, const Zpp16s* src2, Zpp16s weight2,
                                               Zpp16s* dst, int len, int scaleFactor);
ZPPAPI ZppStatus zppsInterpolateC_NR_G729_16s_Sfs(const Zpp16s* src1, Zpp16s weight1, const Zpp16s* src2, Zpp16s weight2,
                                                  Zpp16s* dst, int len, int scaleFactor);

/* dst[n] = src1[n] * weight1 + src2[n] * weight2, n < len. dst may be one of the sources.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1. */
ZPPAPI ZppStatus zppsInterpolateC_G729_32f(const Zpp32f* src1, Zpp32f weight1, const Zpp32f* src2, Zpp32f weight2, Zpp32f* dst,
                                           int len);

/* Hybrid window and autocorrelation of the backward LP analysis (ITU-T G.729 Annex E; in single precision Annex C+): once a
 * frame of 80 samples, over the past synthesis. The lag window, the floor and the normalisation of lag 0 are the caller's.
 * state: a block of the size that zppsWinHybridGetStateSize_G729E_16s or _32f tells, any alignment: the recursive sums of 31
 * lags; Init sets it to zero.
 * src: 145 samples, oldest first, the last 80 of them the newest frame; dst: 31 autocorrelations, out, lag 0 first.
 * 16s32s: the windowed samples keep 16 bits; sums are half of those doubled and saturated step by step as in the standard. */
ZPPAPI ZppStatus zppsWinHybridInit_G729E_16s(void* state);
ZPPAPI ZppStatus zppsWinHybridInit_G729E_32f(void* state);
ZPPAPI ZppStatus zppsWinHybrid_G729E_16s32s(const Zpp16s* src, Zpp32s* dst, void* state);
ZPPAPI ZppStatus zppsWinHybrid_G729E_32f(const Zpp32f* src, Zpp32f* dst, void* state);

/* ---- G.729: pitch analysis and adaptive codebook (clauses 3.4 and 3.7) --------------------------------------------------- */

/* Open-loop delay of a frame, 20..143: the delay where the normalised autocorrelation of the weighted speech is largest,
 * shorter delays being favoured. The Annex A form uses every second sample and favours by multiples of a delay.
 * wsp: the 80 samples of the frame; the 143 samples before the pointer are read. delay: one value.
 * Status: zppStsOk; zppStsNullPointer. Source: ITU-T G.729 clause 3.4 and Annex A clause A.3.4. */
ZPPAPI ZppStatus zppsOpenLoopPitchSearch_G729_16s(const Zpp16s* wsp, Zpp16s* delay);
ZPPAPI ZppStatus zppsOpenLoopPitchSearch_G729A_16s(const Zpp16s* wsp, Zpp16s* delay);

/* The Annex A form in single precision: the same sections and multiples on the samples as they are. wsp: 80 values of the size
 * of 16-bit samples; the 143 values before the pointer are read. delay: one value; 20 for silence.
 * Status: zppStsOk; zppStsNullPointer. Source: ITU-T G.729 Annex C, clause A.3.4. */
ZPPAPI ZppStatus zppsOpenLoopPitchSearch_G729A_32f(const Zpp32f* wsp, Zpp16s* delay);

/* Closed-loop search of the adaptive codebook for a subframe of 40 samples, around olDelay with a resolution of 1/3.
 * olDelay: the open-loop delay in subframe 0, the integer delay of subframe 0 in subframe 1; 18..145. Searched are delays from
 * olDelay - 3 to olDelay + 3 in subframe 0 and from olDelay - 5 to olDelay + 4 in subframe 1, moved into 20..143.
 * target: 40 samples; impulse: impulse response of the weighted synthesis filter, 40 values, Q12.
 * exc: 194 values, the pointer at the oldest: 154 samples of past excitation, then the LP residual of the subframe, which
 * delays below 40 read and which is replaced by the adaptive vector of the chosen delay.
 * subframe: 0 or 1. delay: two values, integer delay and fraction in thirds, -1..1.
 * _G729 maximises the normalised correlation of the target with the filtered excitation and then interpolates it; _G729A the
 * correlation of the backward-filtered target with the excitation, trying fractions by decoding them; _G729D, for 6.4 kbit/s,
 * is the first form with fractions in subframe 1 around the centre of the range only. In subframe 0 delays above 84 are whole.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for olDelay or subframe.
 * Source: ITU-T G.729 clause 3.7, Annex A clause A.3.7, Annex D clause D.4. */
ZPPAPI ZppStatus zppsAdaptiveCodebookSearch_G729_16s(Zpp16s olDelay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                                     int subframe, Zpp16s* delay);
ZPPAPI ZppStatus zppsAdaptiveCodebookSearch_G729A_16s(Zpp16s olDelay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                                      int subframe, Zpp16s* delay);
ZPPAPI ZppStatus zppsAdaptiveCodebookSearch_G729D_16s(Zpp16s olDelay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                                      int subframe, Zpp16s* delay);

/* corr[t - tMin] = correlation of the target with the filtered excitation of delay t over the root of the latter's energy,
 * t = tMin..tMax: what the search maximises. target, impulse (Q12): 40 values; exc: 194 values as above, of which those from
 * 154 - tMax to 193 - tMin are read; corr: tMax - tMin + 1 values; tMin up to tMax, both within 0..154. Nothing is checked;
 * returns zppStsOk. Source: ITU-T G.729 clause 3.7. */
ZPPAPI ZppStatus _zppsMeanSquareWeightedError_16s(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* exc, int tMin,
                                                  int tMax, Zpp16s* corr);

/* The delay of tMin..tMax with the largest corr, the largest such delay, and the fraction of -2..2 thirds beside it where the
 * interpolated corr is largest, the first such; two thirds are told as one third of the neighbouring delay. In subframe 0 a
 * delay above 84 has fraction 0. corr: tMax - tMin + 9 values, corr[0] belonging to delay tMin - 4; frac, delay: one each.
 * Nothing is checked; returns zppStsOk. Source: ITU-T G.729 clause 3.7. */
ZPPAPI ZppStatus _zppsClosedLoopPitchSearch_G729_16s(const Zpp16s* corr, int subframe, int tMin, int tMax, Zpp16s* frac,
                                                     Zpp16s* delay);

/* Adaptive vector of 40 samples: the past excitation at delay[0] + delay[1] / 3, interpolated. Delays below 50 feed the first
 * samples of the vector back into its later ones.
 * delay: integer delay, 18..144, and fraction in thirds, -1..1. exc: 154 samples of past excitation, oldest first, and the 40
 * samples behind them, which are written. pastExc: those 154 samples; dst: 40 samples.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadCodedParam for a delay or fraction outside its range.
 * Source: ITU-T G.729 clause 3.7.1. */
ZPPAPI ZppStatus zppsDecodeAdaptiveVector_G729_16s_I(const Zpp16s* delay, Zpp16s* exc);
ZPPAPI ZppStatus zppsDecodeAdaptiveVector_G729_16s(const Zpp16s* delay, const Zpp16s* pastExc, Zpp16s* dst);

/* The in-place form in single precision. delay: two values as above. exc: 194 values: 154 of past excitation, oldest first,
 * which are read, and the 40 behind them, which are written.
 * Status as above. Source: ITU-T G.729 Annex C, clause 3.7.1. */
ZPPAPI ZppStatus zppsDecodeAdaptiveVector_G729_32f_I(const Zpp16s* delay, Zpp32f* exc);

/* Filtered adaptive vector and adaptive-codebook gain <target, filtered> / <filtered, filtered>, Q14, 0..19661 (1.2).
 * target, adaptive: 40 samples. filtered: 40 samples, written, apart from the others: the convolution with the impulse
 * response, truncated (_G729), or the adaptive vector through 1/A(z) from rest (_G729A). impulse: 40 values, Q12. a: 11 values,
 * Q12.
 * gain: one value.
 * Status: zppStsOk; zppStsNullPointer. Source: ITU-T G.729 clause 3.7.3 and Annex A clause A.3.7. */
ZPPAPI ZppStatus zppsAdaptiveCodebookGain_G729_16s(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* adaptive,
                                                   Zpp16s* filtered, Zpp16s* gain);
ZPPAPI ZppStatus zppsAdaptiveCodebookGain_G729A_16s(const Zpp16s* target, const Zpp16s* a, const Zpp16s* adaptive,
                                                    Zpp16s* filtered, Zpp16s* gain);

/* Target of the fixed-codebook search: result[n] = sat16(target[n] - sat16((gain * filtered[n]) >> 14)), gain Q14. All vectors:
 * 40 samples; result may be target or filtered. Status: zppStsOk; zppStsNullPointer. Source: ITU-T G.729 clause 3.8. */
ZPPAPI ZppStatus zppsAdaptiveCodebookContribution_G729_16s(Zpp16s gain, const Zpp16s* filtered, const Zpp16s* target,
                                                           Zpp16s* result);

/* The same in single precision: result[n] = target[n] - gain * filtered[n]. gain: 1.0 is unity. filtered, target: 40 values
 * each, in; result: 40 values, out, may be target or filtered.
 * Status: zppStsOk; zppStsNullPointer. Source: ITU-T G.729 Annex C, clause 3.8. */
ZPPAPI ZppStatus zppsAdaptiveCodebookContribution_G729_32f(Zpp32f gain, const Zpp32f* filtered, const Zpp32f* target,
                                                           Zpp32f* result);

/* ---- G.729: fixed codebook (clause 3.8) -------------------------------------------------------------------------------------
 *
 * Tracks: the 40 samples of a subframe form five tracks of eight positions, track t at samples 5 i + t. Pulses 0 to 2 of the
 * 17-bit codebook are on tracks 0 to 2, pulse 3 on track 3 or 4.
 * target of a search, where it is "backward filtered": 40 words, the correlation of the search target with the impulse response
 *   as zppsCrossCorr_NormM_16s gives it (13 bits and sign). impulse: 40 words, Q12, h[n] of the weighted synthesis filter with
 *   the pitch sharpening already in it.
 * matrix: 616 correlations r(p, q) of the impulse response: the diagonals of tracks 0 to 4, 8 entries each, then the blocks of
 *   tracks 0-1, 0-2, 0-3, 0-4, 1-2, 1-3, 1-4, 2-3, 2-4, 64 each; entry 8 i + j of block a-b is r(5 i + a, 5 j + b).
 * Nothing is read or written outside the elements named. Where a comment lists no status: zppStsOk, or zppStsNullPointer for a
 * null pointer.
 */

/* Correlation matrix of an impulse response (ITU-T G.729 clause 3.8.1).
 * impulse: 40, in. It is scaled first: with E = sat32(2 * sum of squares), shifted right by 1 if E >> 16 exceeds 32000, else
 *   left by half the normalisation shift of E.
 * matrix: 616, out. _16s32s: sums of h[n - p] h[n - q] over n, Q format of the scaled response squared; _16s: the same shifted
 *   right by 15, truncated. A sum that would exceed 2^30 - 1 saturates there, step by step as in the reference. */
ZPPAPI ZppStatus zppsToeplizMatrix_G729_16s(const Zpp16s* impulse, Zpp16s* matrix);
ZPPAPI ZppStatus zppsToeplizMatrix_G729_16s32s(const Zpp16s* impulse, Zpp32s* matrix);

/* As zppsToeplizMatrix_G729_16s32s for the two pulses of Annex D: block 0-2 holds the whole of block 1-1, block 0-4 holds 3-4.
 * Trusts its arguments. */
ZPPAPI ZppStatus _zppsToeplizMatrix_G729D_16s32s(const Zpp16s* impulse, Zpp32s* matrix);

/* The matrices in single precision, with the layouts above: plain sums of h[n - p] h[n - q], nothing scaled (ITU-T G.729 Annex
 * C, clause 3.8.1, and Annex C+ for Annex D). impulse: 40 values, in, h[0] = 1 as a rule; matrix: 616 values, out. */
ZPPAPI ZppStatus zppsToeplizMatrix_G729_32f(const Zpp32f* impulse, Zpp32f* matrix);
ZPPAPI ZppStatus zppsToeplizMatrix_G729D_32f(const Zpp32f* impulse, Zpp32f* matrix);

/* Focused search for four signed pulses, 17 bits (ITU-T G.729 clause 3.8.1).
 * target: 40, in, backward filtered.
 * matrix: 616, in/out. In: from the builder of the same element type. Out: shifted right by 15 (32-bit member only, entries
 *   saturated to 16 bits), cross blocks multiplied by the signs of their two positions in the reference's Q15 arithmetic; the
 *   diagonals keep their values.
 * code: 40, out, Q13: 8191 or -8192 at the pulses, else 0.
 * codeword: 2, out: [0] bit k set for a positive pulse k; [1] i0 + 8 i1 + 64 i2 + 512 j3 with the position indices i and
 *   j3 = 2 i + x for pulse 3 at sample 5 i + 3 + x. If no three pulses pass the search's threshold, pulses at samples 0 to 3.
 * budget: 1, in/out: how many times pulse 3 may still be searched. Subframe 0 starts from 105, any other from the word's value
 *   + 75, and at least one search is made; what is left is stored.
 * subframe: 32s16s: 0 or more; 16s: 0 or 1; else zppStsOutOfRange. */
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729_32s16s(const Zpp16s* target, Zpp32s* matrix, Zpp16s* code, Zpp16s* codeword,
                                                     Zpp16s* budget, Zpp16s subframe);
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729_16s(const Zpp16s* target, Zpp16s* matrix, Zpp16s* code, Zpp16s* codeword,
                                                  Zpp16s* budget, Zpp16s subframe);

/* Depth-first tree search for the same codebook (ITU-T G.729 clause A.3.8.1): 320 candidates, no budget. Arguments as above;
 * the signs in the matrix are those of Annex A's reference, which differ in the last bits. */
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729A_32s16s(const Zpp16s* target, Zpp32s* matrix, Zpp16s* code, Zpp16s* codeword);
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729A_16s(const Zpp16s* target, Zpp16s* matrix, Zpp16s* code, Zpp16s* codeword);

/* Both searches in single precision (ITU-T G.729 Annex C, clauses 3.8.1 and A.3.8.1).
 * target: 40 values, in, backward filtered: d[i] = sum of x[j] h[j - i] over j = i..39, not normalised.
 * matrix: 616 values, in/out. In: from zppsToeplizMatrix_G729_32f. Out: its cross blocks multiplied by the signs, exactly.
 * code: 40 values, out: +1 or -1 at the pulses, else 0. codeword: 2 words, budget: one word, subframe: 0 or more, as above.
 * Status: zppStsOk; zppStsNullPointer; _G729_32f: zppStsOutOfRange for a negative subframe. */
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729_32f(const Zpp32f* target, Zpp32f* matrix, Zpp32f* code, Zpp16s* codeword,
                                                  Zpp16s* budget, Zpp16s subframe);
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729A_32f(const Zpp32f* target, Zpp32f* matrix, Zpp32f* code, Zpp16s* codeword);

/* Two signed pulses, 11 bits, for 6.4 kbit/s (ITU-T G.729 Annex D, clause D.5).
 * target: 40, in, backward filtered; impulse: 40, in.
 * code: 40, out, Q13: +8191 or -8192 a pulse, added where both are on one sample. filtered: 40, out, Q12: the code vector
 *   through the impulse response. Neither may be impulse, here and in the searches below.
 * sign: 1, out: bit 0 the first pulse, bit 1 the second, set when positive.
 * position: 1, out, 9 bits: Gray code of the first pulse's entry + 16 * that of the second's. Entries number the samples of
 *   tracks 1 and 3 in ascending order; those of tracks 0, 2 and 4 in ascending order and then those of track 1. */
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729D_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* code, Zpp16s* filtered,
                                                   Zpp16s* sign, Zpp16s* position);

/* The same in single precision (ITU-T G.729 Annex C+, clause D.5). target: 40 values, in, backward filtered as for
 * zppsFixedCodebookSearch_G729_32f; impulse: 40 values, in. code: 40 values, out: +1 or -1 a pulse, added where both are on one
 * sample. filtered: 40 values, out: the code vector through the impulse response. sign, position: one word each, as above. For
 * a silent target the pulses are at samples 3 and 0, not 1 and 0. */
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729D_32f(const Zpp32f* target, const Zpp32f* impulse, Zpp32f* code, Zpp32f* filtered,
                                                   Zpp16s* sign, Zpp16s* position);

/* 10 or 12 signed pulses, 35 or 44 bits, for 11.8 kbit/s (ITU-T G.729 Annex E, clause E.3.8).
 * mode: 0 the 35-bit codebook, any other value the 44-bit one.
 * target: 40, in: the search target itself, not backward filtered. residual: 40, in: LP residual less the adaptive-codebook
 *   part, from which signs are chosen. impulse: 40, in.
 * code: 40, out, Q12: the sum of pulses of +-4096. filtered: 40, out, Q11: the code vector through the impulse response.
 * index: 5, out. 35 bits: 7 bits a track. 44 bits: starting track * 1024 + 10 bits of its three pulses, 10 bits of the next
 *   track's three, 7 bits for each of the other three tracks in turn. */
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729E_16s(Zpp16s mode, const Zpp16s* target, const Zpp16s* residual,
                                                   const Zpp16s* impulse, Zpp16s* code, Zpp16s* filtered, Zpp16s* index);

/* The same in single precision (ITU-T G.729 Annex C+, clause E.3.8). mode: as above. target, residual, impulse: 40 values each,
 * in, as above in natural units. code: 40 values, out: the sum of pulses of +1 or -1. filtered: 40 values, out: the code vector
 * through the impulse response. index: 5 words, out, as above. */
ZPPAPI ZppStatus zppsFixedCodebookSearch_G729E_32f(Zpp16s mode, const Zpp32f* target, const Zpp32f* residual,
                                                   const Zpp32f* impulse, Zpp32f* code, Zpp32f* filtered, Zpp16s* index);

/* ---- G.729: gains (clause 3.9) ------------------------------------------------------------------------------------------- */

/* memory: 4, in/out: the quantised energy-prediction errors of the last four subframes in dB, Q10, newest first; -14336 each at
 * the start. index: 2, as transmitted: first codebook (3 bits), second (4 bits at 8 kbit/s, 3 at 6.4 kbit/s).
 * gain: 2: pitch gain Q14, fixed-codebook gain Q1. */

/* Decodes the gain pair of a subframe at 8 kbit/s (ITU-T G.729 clause 4.1.5) and updates the memory; bits of the indices above
 * their width are ignored. energy: sum of squares of the 40-sample code vector, Q13 samples.
 * index: null for an erased frame: the gains of the last subframe, read from gain, fade by 0.9 and 0.98 (clause 4.4.2).
 * Status: zppStsOk; zppStsNullPointer for memory or gain. */
ZPPAPI ZppStatus zppsDecodeGain_G729_16s(Zpp32s energy, Zpp16s* memory, const Zpp16s* index, Zpp16s* gain);

/* As above at 6.4 kbit/s (Annexes D and I); the fixed-codebook gain keeps its low 16 bits.
 * attenuation: Q15, multiplies both gains when index is null. */
ZPPAPI ZppStatus zppsDecodeGain_G729I_16s(Zpp32s energy, Zpp16s attenuation, Zpp16s* memory, const Zpp16s* index, Zpp16s* gain);

/* As the standard's decoders do at 6.4 kbit/s (Annexes D and I): the code gain saturates, and without indices the gains fade by
 * 0.9 and 0.98 as at 8 kbit/s. index: 2, of which the low three bits count, or null. Status as at 8 kbit/s. */
ZPPAPI ZppStatus zppsDecodeGain_G729D_16s(Zpp32s energy, Zpp16s* memory, const Zpp16s* index, Zpp16s* gain);

/* Quantises the gain pair of a subframe at 8 kbit/s (ITU-T G.729 clause 3.9): writes index and gain, updates the memory.
 * target: 40; adaptive: 40, filtered adaptive vector; code: 40, code vector Q13; filtered: 40, filtered code vector Q12.
 * taming: 1 when the pitch gain must stay below 1 (clause 3.7.3: or the synthesis filter may be unstable after losses), else 0.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another taming flag. */
ZPPAPI ZppStatus zppsGainQuant_G729_16s(const Zpp16s* target, const Zpp16s* adaptive, const Zpp16s* code,
                                        const Zpp16s* filtered, Zpp16s* memory, Zpp16s* index, Zpp16s* gain, Zpp16s taming);

/* As above at 6.4 kbit/s (Annex D). */
ZPPAPI ZppStatus zppsGainQuant_G729D_16s(const Zpp16s* target, const Zpp16s* adaptive, const Zpp16s* code,
                                         const Zpp16s* filtered, Zpp16s* memory, Zpp16s* index, Zpp16s* gain, Zpp16s taming);

/* The two quantisers in single precision (ITU-T G.729 Annex C, clause 3.9; Annex C+ for Annex D).
 * target, adaptive, code (unit pulses, sharpened), filtered: 40 values each, in, as above. memory: 4 values, in/out: dB, newest
 * first, -14 each at the start. index: 2 words, out, as above. gain: 2 values, out: pitch gain and code gain, 1.0 is unity.
 * taming: as above. At 6.4 kbit/s a code gain below 0.2 of the predicted one counts as 0.2 in the memory.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another taming flag. */
ZPPAPI ZppStatus zppsGainCodebookSearch_G729_32f(const Zpp32f* target, const Zpp32f* adaptive, const Zpp32f* code,
                                                 const Zpp32f* filtered, Zpp32f* memory, Zpp16s* index, Zpp32f* gain,
                                                 Zpp16s taming);
ZPPAPI ZppStatus zppsGainCodebookSearch_G729D_32f(const Zpp32f* target, const Zpp32f* adaptive, const Zpp32f* code,
                                                  const Zpp32f* filtered, Zpp32f* memory, Zpp16s* index, Zpp32f* gain,
                                                  Zpp16s taming);

/* ---- G.729: postfilter (clause 4.2) -----------------------------------------------------------------------------------------
 *
 * One call a step and subframe of 40 samples. Order of the steps at full rate: residual with the weights 0.55, long-term
 * postfilter, short-term postfilter, tilt compensation, gain control; in Annex A the tilt compensation comes before the
 * short-term postfilter. All memories are the caller's. LP coefficients: 11 values, Q12, coef[0] = 4096; "weighted":
 * coef[i] times 0.55^i (numerator) or 0.7^i (denominator), as the argument says.
 * Where a comment lists no status: zppStsOk, or zppStsNullPointer for a null pointer.
 */

/* Long-term postfilter (ITU-T G.729 clause 4.2.1).
 * gainFactor: Q15, 0..16384; 16384 is the 0.5 of the main body; Annex E takes 8192 for music.
 * delay: 18..143, integer pitch delay of the frame's first subframe.
 * residual: 40 samples and 152 before the pointer, which are read. dst: 40, out, the residual itself where the filter is off.
 * delayOut: one value, out: the delay selected, the next integer above a fractional one (17..145), 0 where the filter is off.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for the delay, then for the gain factor. */
ZPPAPI ZppStatus zppsLongTermPostFilter_G729_16s(Zpp16s gainFactor, int delay, const Zpp16s* residual, Zpp16s* dst,
                                                 Zpp16s* delayOut);

/* The same with one more delay, for a lost frame that repeats the 143 2/3 of the frame before (Annexes D to I and the main
 * body). delay: 18..144. residual: 40 samples and 153 before the pointer, of which the first is read for a delay of 144 only.
 * delayOut: 146 at most. */
ZPPAPI ZppStatus zppsLongTermPostFilter_G729I_16s(Zpp16s gainFactor, int delay, const Zpp16s* residual, Zpp16s* dst,
                                                  Zpp16s* delayOut);

/* Residual and harmonic postfilter (ITU-T G.729 clause A.4.2.1).
 * delay: 18..145, integer pitch delay of the subframe. speech: 40 samples of the synthesis and 10 before the pointer.
 * coef: weighted numerator. residual: 194 samples from the pointer on: 154 past ones, of which the last 143 are read, then 40
 * that are written. dst: 40, out.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for the delay. */
ZPPAPI ZppStatus zppsLongTermPostFilter_G729A_16s(Zpp16s delay, const Zpp16s* speech, const Zpp16s* coef, Zpp16s* residual,
                                                  Zpp16s* dst);

/* Residual and long-term postfilter of the main body with Annex B's frame types.
 * delay: 0..143; one below 18 counts as 18. speech, residual, dst as above (152 past samples are read); coef: not weighted.
 * voicing: one value, out: 1 where a delay was selected, else 0.
 * frameType: 1 active speech; 0 (not transmitted) and 2 (silence descriptor) copy the residual to dst.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for the delay, then for the frame type. */
ZPPAPI ZppStatus zppsLongTermPostFilter_G729B_16s(Zpp16s delay, const Zpp16s* speech, const Zpp16s* coef, Zpp16s* residual,
                                                  Zpp16s* dst, Zpp16s* voicing, Zpp16s frameType);

/* The harmonic postfilter alone. Trusts its arguments. delay: 18..145; residual: 40 samples and 143 before the pointer; dst:
 * 40, out, outside the residual. */
ZPPAPI ZppStatus _zppsHarmonicPostFilter_G729A_16s(Zpp16s delay, const Zpp16s* residual, Zpp16s* dst);

/* Short-term postfilter (ITU-T G.729 clause 4.2.2): scales the residual and filters it by 1/A(z/0.7).
 * coef: not weighted. residual: 40. dst: 40, in/out, with the 10 last outputs before the pointer, in. Where the response needs
 * no scaling dst is not taken from the residual but filtered in place: pass the residual in dst, or as both.
 * impulse: 20, out, Q12: response of A(z/0.55) / A(z/0.7).
 * Status: zppStsOk; zppStsNullPointer; zppStsOverflowWarn when an output was clamped, with all outputs written. */
ZPPAPI ZppStatus zppsShortTermPostFilter_G729_16s(const Zpp16s* coef, const Zpp16s* residual, Zpp16s* dst, Zpp16s* impulse);

/* 1/A(z/0.7) alone (ITU-T G.729 clause A.4.2.2). coef: weighted denominator. src: 40, may be dst. dst: 40, out, with the 10
 * last outputs before the pointer, in. Status as above. */
ZPPAPI ZppStatus zppsShortTermPostFilter_G729A_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst);

/* Tilt compensation (ITU-T G.729 clause 4.2.3). Both members use the same arithmetic; Annex E takes a longer response.
 * tilt: Q15, first reflection coefficient of the impulse response, -r(1)/r(0): negative for a low-pass response.
 * srcDst: 40, in/out. memory: one value, in/out: the last input sample of the subframe before, then of this one; at first 0. */
ZPPAPI ZppStatus zppsTiltCompensation_G729_16s(Zpp16s tilt, Zpp16s* srcDst, Zpp16s* memory);
ZPPAPI ZppStatus zppsTiltCompensation_G729E_16s(Zpp16s tilt, Zpp16s* srcDst, Zpp16s* memory);

/* Tilt compensation (ITU-T G.729 clause A.4.2.3).
 * coef: 22: weighted numerator, then weighted denominator. srcDst: 40, in/out; srcDst[-1], in/out: the last input sample of the
 * subframe before, then of this one. */
ZPPAPI ZppStatus zppsTiltCompensation_G729A_16s(const Zpp16s* coef, Zpp16s* srcDst);

/* dst[n] = src[n] - factor * src[n-1], factor Q15, product truncated, both saturated (ITU-T G.729 clause A.4.2.3).
 * memory: one value, in/out: src[-1], then the last sample of src.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1. */
ZPPAPI ZppStatus zppsPreemphasize_G729A_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s factor, Zpp16s* memory);
ZPPAPI ZppStatus zppsPreemphasize_G729A_16s_I(Zpp16s* srcDst, int len, Zpp16s factor, Zpp16s* memory);

/* Adaptive gain control (ITU-T G.729 clauses 4.2.4 and A.4.2.4).
 * src: 40 samples before the postfilter. srcDst: 40 postfiltered samples, in/out.
 * gain: one value, in/out: the running gain; full rate Q14, 16384 at the start, Annex A Q12, 4096 at the start. It becomes 0,
 * and srcDst stays, for a silent srcDst (full rate: unless src is silent as well, where the gain decays). */
ZPPAPI ZppStatus zppsGainControl_G729_16s_I(const Zpp16s* src, Zpp16s* srcDst, Zpp16s* gain);
ZPPAPI ZppStatus zppsGainControl_G729A_16s_I(const Zpp16s* src, Zpp16s* srcDst, Zpp16s* gain);

/* The full-rate form in single precision (ITU-T G.729 Annex C, clause 4.2.4). src: 40 values, in; srcDst: 40 values, in/out;
 * gain: one value, in/out, 1.0 at the start. Silence as above. */
ZPPAPI ZppStatus zppsGainControl_G729_32f_I(const Zpp32f* src, Zpp32f* srcDst, Zpp32f* gain);

/* Phase dispersion of the excitation at 6.4 kbit/s (ITU-T G.729 Annex D, clause D.6).
 * state: a block of the size that zppsPhaseDispersionGetStateSize_G729D_16s tells, any alignment. Update keeps it current in
 * subframes of the other rates.
 * excitation: 40 samples, Q0; code: 40, code vector with pitch sharpening, Q13; dst: 40, out, may be the excitation.
 * codeGain: Q1; pitchGain: Q14. */
ZPPAPI ZppStatus zppsPhaseDispersionInit_G729D_16s(void* state);
ZPPAPI ZppStatus zppsPhaseDispersionUpdate_G729D_16s(Zpp16s pitchGain, Zpp16s codeGain, void* state);
ZPPAPI ZppStatus zppsPhaseDispersion_G729D_16s(const Zpp16s* excitation, const Zpp16s* code, Zpp16s* dst, Zpp16s codeGain,
                                               Zpp16s pitchGain, void* state);

#ifdef __cplusplus
}
#endif

#endif
