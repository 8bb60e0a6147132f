/* zppsc: ITU-T G.723.1. Include zppsc.h. */
#ifndef ZPPSC_G723_H
#define ZPPSC_G723_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- G.723.1 ----------------------------------------------------------------------------------------------------------------
 *
 * A frame of 240 samples at 8 kHz has four subframes of 60. LPC: ten predictor coefficients, Q13: lpc[k-1] is a(k) of
 * A(z) = 1 - sum a(k) z^-k. LSF: ten ascending frequencies, 128 units a step of the standard's grid of 256, 32768 = Nyquist.
 * LSF below 0 give no useful result, but do no harm. Where a comment lists no status: zppStsOk, or zppStsNullPointer.
 * Source: ITU-T G.723.1 (fixed-point reference), clauses 2.4 to 2.7 for the spectrum, 2.18 for the adaptive codebook.
 */

/* Autocorrelation of one analysis block: normalised to three guard bits, Hamming window, then as the function below.
 * src: 180 high-passed samples. autocorr: 11 lags. *exponent: left shift of the lags in all, negative for loud blocks; 40 for
 * a block of zeros. */
ZPPAPI ZppStatus zppsAutoCorr_G723_16s(const Zpp16s* src, Zpp16s* exponent, Zpp16s* autocorr);

/* Autocorrelation of a windowed block with white-noise correction (1025/1024) and binomial lag window.
 * src: 180 samples; sums saturate at 32 bits. autocorr: 11 lags, lag 0 in 16384..32767, or all 0 for a block of zeros.
 * *norm: left shift of the 32-bit sums, of which the upper halves are taken with rounding. */
ZPPAPI ZppStatus zppsAutoCorr_NormE_G723_16s(const Zpp16s* src, Zpp16s* autocorr, Zpp32s* norm);

/* Levinson-Durbin recursion. Stops early when a reflection coefficient reaches 1; the coefficients from there on are 0.
 * autocorr: 11 lags. *residualEnergy: final prediction error, on the scale of the lags. lpc: 10, Q13.
 * *sineDetector: in and out, a shift register carried from call to call. A recursion that reaches order 2 shifts it by one and
 *   sets bit 0 when the second reflection coefficient is above 0.95; one that stops early shifts it by one (once more) and sets
 *   bit 0. */
ZPPAPI ZppStatus zppsLevinsonDurbin_G723_16s(const Zpp16s* autocorr, Zpp16s* sineDetector, Zpp16s* residualEnergy, Zpp16s* lpc);

/* LPC to LSF with a bandwidth expansion of 0.994; lsf is a copy of prevLsf when the search does not find ten roots.
 * lpc: 10, Q13; prevLsf: 10; lsf: 10, may be either source. Status: zppStsOk in both cases, zppStsNullPointer. */
ZPPAPI ZppStatus zppsLPCToLSF_G723_16s(const Zpp16s* lpc, const Zpp16s* prevLsf, Zpp16s* lsf);

/* As above. Returns 0 when ten roots were found, else 1, and then lsf holds nothing of use. */
ZPPAPI int _zppsLPCToLSF_Norm_G723_16s(const Zpp16s* lpc, Zpp16s* lsf);

/* Predictive split vector quantisation: *index = band 1 (LSF 1..3) in bits 16..23, band 2 (4..6) in bits 8..15, band 3 (7..10)
 * in bits 0..7.
 * lsf: 10; prevLsf: 10, the decoded LSF of the previous frame. */
ZPPAPI ZppStatus zppsLSFQuant_G723_16s32s(const Zpp16s* lsf, const Zpp16s* prevLsf, Zpp32s* index);

/* As above; index: three indices, one a band. lsf: replaced by the prediction residual. Returns zppStsOk. */
ZPPAPI ZppStatus _zppsLSFQuant_G723_16s_I(const Zpp16s* prevLsf, Zpp16s* lsf, Zpp16s* index);

/* Decodes an LSF set and spreads it until neighbours keep their minimum distance.
 * index: three, the low 8 bits of each count; not read (but not null) when erased is not 0, which conceals a lost frame.
 * prevLsf: 10; lsf: 10, may be prevLsf.
 * Status: zppStsOk; zppStsNullPointer; zppStsLSFLowClamped when ten passes leave the set unstable: lsf then holds the tenth
 *   pass, and the standard goes on with the previous set. */
ZPPAPI ZppStatus zppsLSFDecode_G723_16s(const Zpp16s* index, const Zpp16s* prevLsf, Zpp32s erased, Zpp16s* lsf);

/* LSF to LPC. lsf: 10; lpc: 10, Q13 */
ZPPAPI ZppStatus zppsLSFToLPC_G723_16s(const Zpp16s* lsf, Zpp16s* lpc);
ZPPAPI ZppStatus zppsLSFToLPC_G723_16s_I(Zpp16s* lsfLpc);

/* Adaptive-codebook vector of a subframe: the past excitation at lag + offset - 1 samples through the five-tap gain filter.
 * lag: 18 or more; offset: 0..3; lag + offset: up to 146. gainIndex: 0..169, with ZPP_RATE_6300 and a lag below 58 0..84, and
 *   85, which gives zeros.
 * history: the last 145 samples of excitation, oldest first; what a lag reaches before them counts as zero. dst: 60.
 * rate: ZPP_RATE_5300 or ZPP_RATE_6300.
 * Status, in the order of checks: zppStsNullPointer; zppStsBadCodedParam for offset, lag or gainIndex; zppStsOutOfRange for
 *   the rate; zppStsBadCodedParam for a gainIndex above 85 where the rate and lag have the small codebook. */
ZPPAPI ZppStatus zppsDecodeAdaptiveVector_G723_16s(Zpp16s lag, Zpp16s offset, Zpp16s gainIndex, const Zpp16s* history,
                                                   Zpp16s* dst, ZppSpeechRate rate);

/* The samples that the filter takes: work (64) = two samples, then the last `delay` (1..145) samples of history (145) repeated.
 * Samples before the history count as zero. Returns zppStsOk. */
ZPPAPI ZppStatus _zppsExcitationDelay_G723_16s(const Zpp16s* history, Zpp16s* work, int delay);

/* dst[n] (60) = the sum of taps[k] * work[n + k], k = 0..4, taps Q14, rounded and saturated. work: 64. Returns zppStsOk. */
ZPPAPI ZppStatus _zppsAdaptiveCodebookDecode_G723_16s(const Zpp16s* taps, const Zpp16s* work, Zpp16s* dst);

#ifdef __cplusplus
}
#endif

#endif
