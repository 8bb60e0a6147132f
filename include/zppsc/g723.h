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

/* ---- G.723.1: LPC and LSF --------------------------------------------------------------------------------------------- */

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
 * erased: 0, or another value for a lost frame. prevLsf: 10; lsf: 10, may be prevLsf.
 * Status: zppStsOk; zppStsNullPointer; zppStsLSFLowClamped when ten passes leave the set unstable: lsf then holds the tenth
 *   pass, and the standard goes on with the previous set. */
ZPPAPI ZppStatus zppsLSFDecode_G723_16s(const Zpp16s* index, const Zpp16s* prevLsf, Zpp32s erased, Zpp16s* lsf);

/* LSF to LPC. lsf: 10; lpc: 10, Q13. lsfLpc: 10: LSF in, LPC out. */
ZPPAPI ZppStatus zppsLSFToLPC_G723_16s(const Zpp16s* lsf, Zpp16s* lpc);
ZPPAPI ZppStatus zppsLSFToLPC_G723_16s_I(Zpp16s* lsfLpc);

/* ---- G.723.1: adaptive-codebook vector (clause 2.18) ------------------------------------------------------------------ */

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

/* ---- G.723.1: excitation, filters, Annex A ---------------------------------------------------------------------------------
 *
 * Memories belong to the caller; those of filters hold the newest sample first. A buffer that is only read must not overlap one
 * that is written. "Block-scaled" is zppsAutoScale_16s over the whole vector, then zppsRShiftC_16s_I by 3. Sums of products are
 * doubled and limited to 32 bits at every step, in time order, as the standard's basic operators do.
 *
 * lag: 18..141, one for two subframes; offset: 0..3; the delay of a subframe is lag + offset - 1.
 * weighting: 20 coefficients, the ten of the numerator (zeros) first, then the ten of the denominator (poles), Q13.
 * codeword: the five words of a subframe's fixed codebook, which are
 *
 *   gain level   0..23
 *   grid         0..1
 *   pulse train  0..1, 0 at 5.3 kbit/s
 *   positions    at 6.3 kbit/s the number of the combination, at 5.3 kbit/s 12 bits
 *   signs        6, 5, 6, 5 bits in the four subframes, at 5.3 kbit/s 4 bits
 */

/* ---- G.723.1: high-pass filter, weighting and open-loop pitch (clauses 2.3 to 2.13) ----------------------------------- */

/* High-pass filter (1 - z^-1) / (1 - 127/128 z^-1) at half the level.
 * srcDst: len samples. memory: the last input, the last output with 16 bits behind the point; 0 at first.
 * Status: zppStsNullPointer; zppStsBadSize for a len below 1. Clause 2.3. */
ZPPAPI ZppStatus zppsHighPassFilter_G723_16s_I(Zpp16s* srcDst, Zpp32s* memory, int len);

/* Coefficients of the formant weighting of a subframe, A(z/0.9) over A(z/0.5). lpc: 10, unquantised. Clause 2.8. */
ZPPAPI ZppStatus zppsWeightingLPC_G723_16s(const Zpp16s* lpc, Zpp16s* weighting);

/* Formant weighting of a subframe. srcDst: 60. memory: ten inputs, ten outputs; 0 at first. Clause 2.8. */
ZPPAPI ZppStatus zppsWeightingFilter_G723_16s_I(const Zpp16s* weighting, Zpp16s* srcDst, Zpp16s* memory);

/* Open-loop lag of a half frame of weighted speech: the largest normalised correlation, longer lags at a handicap of 1.25 dB.
 * src: the first of 120 block-scaled samples, of which src[-142..119] are read. *lag: 18..142. Clause 2.9. */
ZPPAPI ZppStatus zppsOpenLoopPitchSearch_G723_16s(const Zpp16s* src, Zpp16s* lag);

/* Harmonic noise shaping filter of a subframe. src: the first of 60 block-scaled samples, of which src[-145..59] are read.
 * openLoopLag: 18..142. *lag: openLoopLag - 3 to openLoopLag + 3. *gain: 0..10240, Q15.
 * Status: zppStsNullPointer; zppStsBadArgument for openLoopLag. Clause 2.11. */
ZPPAPI ZppStatus zppsHarmonicSearch_G723_16s(const Zpp16s* src, Zpp16s* lag, Zpp16s* gain, Zpp16s openLoopLag);

/* dst[n] = src[n] - gain * src[n - lag], n = 0..59. src: weighted speech, not scaled, src[-lag..59] are read. lag: 1..145.
 * Status: zppStsNullPointer; zppStsBadArgument for lag. Clause 2.11. */
ZPPAPI ZppStatus zppsHarmonicNoiseShaping_G723_16s(const Zpp16s* src, Zpp16s* dst, Zpp16s lag, Zpp16s gain);

/* Filters of the four subframes from the LSF of two frames. prevLsf, lsf: 10; lpc: 40, subframe by subframe. Clause 2.7. */
ZPPAPI ZppStatus zppsLSFInterpolation_G723_16s(const Zpp16s* prevLsf, const Zpp16s* lsf, Zpp16s* lpc);

/* Impulse response of synthesis, formant weighting and harmonic noise shaping. impulse: 60, Q13.
 * lpc: 10, quantised. lag: 1..145; gain: Q15. Status: zppStsNullPointer; zppStsBadArgument for lag. Clause 2.12. */
ZPPAPI ZppStatus zppsImpulseResponse_G723_16s(const Zpp16s* lpc, const Zpp16s* weighting, Zpp16s* impulse, Zpp16s lag,
                                              Zpp16s gain);

/* Subtracts what the same filters still ring with.
 * history: the last 145 samples behind the weighting, oldest first. memory: ten samples behind the synthesis, ten behind the
 * weighting. srcDst: 60, weighted and shaped speech in, target of the searches out.
 * Status: zppStsNullPointer; zppStsBadArgument for a lag outside 1..145. Clause 2.13. */
ZPPAPI ZppStatus zppsRingingSubtraction_G723_16s_I(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* history,
                                                   const Zpp16s* memory, Zpp16s* srcDst, Zpp16s lag, Zpp16s gain);

/* Runs the same filters on with the excitation of a subframe (60). history (145), memory (20): in and out; 0 at first.
 * Clause 2.19. */
ZPPAPI ZppStatus zppsRingingUpdate_G723_16s_I(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* excitation,
                                              Zpp16s* history, Zpp16s* memory);

/* ---- G.723.1: codebook searches (clauses 2.14 to 2.17) ---------------------------------------------------------------- */

/* Closed-loop search of delay and gain row of the adaptive codebook.
 * target, impulse: 60. history: the last 145 samples of excitation, oldest first. taming: 5, see zppsTamingUpdate_G723_32s_I.
 * *lag: in even subframes the open-loop lag (18..142) in, in odd ones the lag of the subframe before (18..141); 18..141 out.
 * *offset, *gainIndex: as zppsDecodeAdaptiveVector_G723_16s takes them. sineDetector: below 0 where the input is a sine.
 * subframe: 0..3. rate: ZPP_RATE_5300 or ZPP_RATE_6300.
 * Status: zppStsNullPointer; zppStsOutOfRange for a subframe outside 0..3 and for the rate; zppStsBadArgument for *lag.
 * Clause 2.14. */
ZPPAPI ZppStatus zppsAdaptiveCodebookSearch_G723(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* history,
                                                 const Zpp32s* taming, Zpp16s* lag, Zpp16s* offset, Zpp16s* gainIndex,
                                                 Zpp16s sineDetector, int subframe, ZppSpeechRate rate);

/* Takes the filtered adaptive vector off the target. vector: of zppsDecodeAdaptiveVector_G723_16s; impulse, target: as
 * above; all 60. Clause 2.14. */
ZPPAPI ZppStatus zppsTargetUpdate_G723_16s_I(const Zpp16s* vector, const Zpp16s* impulse, Zpp16s* target);

/* Follows how an error in the decoder's excitation would grow.
 * taming: estimates for 5 zones of 30 samples of past excitation, newest first; in and out; each 4 at first. gainIndex: 0..169.
 * rate: ZPP_RATE_5300 or ZPP_RATE_6300.
 * Status: zppStsNullPointer; zppStsOutOfRange for the rate; zppStsBadCodedParam for a lag outside 18..143, an offset outside
 *   0..3, lag + offset above 146, a gainIndex outside 0..169 (0..84 with ZPP_RATE_6300 and a lag below 58). Clause 2.14. */
ZPPAPI ZppStatus zppsTamingUpdate_G723_32s_I(Zpp32s* taming, Zpp16s lag, Zpp16s offset, Zpp16s gainIndex, ZppSpeechRate rate);

/* zppsDecodeAdaptiveVector_G723_16s without checks and codebook. taps: 5, Q14; history: 145; dst: 60; delay: 1..145.
 * Returns zppStsOk. */
ZPPAPI ZppStatus _zppsPitchPredictor_G723_16s(const Zpp16s* taps, const Zpp16s* history, Zpp16s* dst, int delay);

/* Multipulse search of 6.3 kbit/s (MP-MLQ). target, impulse: 60. codeword: all zero when no choice of pulses is of any use.
 * subframe: 0..3.
 * Status: zppStsNullPointer; zppStsOutOfRange for a subframe outside 0..3; zppStsBadCodedParam for lag. Clause 2.15. */
ZPPAPI ZppStatus zppsMultiPulseSearch_G723_16s32s(const Zpp16s* target, const Zpp16s* impulse, Zpp32s* codeword, Zpp16s lag,
                                                  int subframe);

/* Algebraic search of 5.3 kbit/s (ACELP). target, impulse: 60. filteredCode: 60, the pulses behind the response, for
 * zppsGainQuant_G723_16s. codeword: its first word is left alone.
 * *searchTime: what the subframes before have left over, in and out: 120 at the start of every frame; 0..32000.
 * lag, offset, gainIndex: of the adaptive codebook, from which the pitch contribution follows.
 * Status: zppStsNullPointer; zppStsBadCodedParam for lag, offset (0..3), gainIndex (0..169); zppStsBadArgument for *searchTime.
 * Clause 2.16. */
ZPPAPI ZppStatus zppsAlgebraicCodebookSearch_G723_16s32s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* filteredCode,
                                                         Zpp32s* codeword, Zpp16s* searchTime, Zpp16s lag, Zpp16s offset,
                                                         Zpp16s gainIndex);

/* Gain level (0..23) of the algebraic codebook. target, filteredCode: 60.
 * Status: zppStsNullPointer; zppStsBadArgument for a filteredCode that is zero after its shift to the right by 3. Clause 2.16.
 */
ZPPAPI ZppStatus zppsGainQuant_G723_16s(const Zpp16s* target, const Zpp16s* filteredCode, Zpp16s* level);

/* Fixed-codebook vector (60) of either rate, with pulse train or pitch contribution.
 * A number of a combination that does not exist gives zeros; of the signs the low bits count. gainIndex: of the adaptive
 * codebook, 0..169. subframe: 0..3. rate: ZPP_RATE_5300 or ZPP_RATE_6300.
 * Status: zppStsNullPointer; zppStsOutOfRange for a subframe outside 0..3 and for the rate; zppStsBadCodedParam for a gain
 *   level, grid or train outside its range, positions below 0 (5.3 kbit/s: or above 4095), lag, offset (0..3) or gainIndex
 *   (0..169). Clause 2.17. */
ZPPAPI ZppStatus zppsFixedCodebookDecode_G723_32s16s(const Zpp32s* codeword, Zpp16s* dst, Zpp16s lag, Zpp16s offset,
                                                     Zpp16s gainIndex, int subframe, ZppSpeechRate rate);

/* ---- G.723.1: concealment, synthesis and postfilters (clauses 3.6 to 3.10) -------------------------------------------- */

/* Class of a good frame's excitation. src: 385 block-scaled samples, 145 of the past and the frame's 240.
 * lag: of the frame's second half. *period: 0 for unvoiced, else 15..145. *energy: for the comfort noise that may follow.
 * Status: zppStsNullPointer; zppStsBadCodedParam for lag. Clause 3.10. */
ZPPAPI ZppStatus zppsVoicingDecision_G723_16s(const Zpp16s* src, Zpp16s* period, Zpp16s* energy, Zpp16s lag);

/* Excitation (240) of a lost frame: the last period repeated, or noise. history: 145, in and out.
 * *seed: in and out; 0 at first. gain: of the noise. lossCount: 1 and 2 regenerate, 3 mutes.
 * Status: zppStsNullPointer; zppStsBadArgument for a period outside 0..145 or a lossCount outside 1..3. Clause 3.10. */
ZPPAPI ZppStatus zppsResidualInterpolation_G723_16s(Zpp16s* history, Zpp16s* seed, Zpp16s* dst, Zpp16s period, Zpp16s gain,
                                                    int lossCount);

/* Pitch postfilter of a subframe. src: the frame's 385 block-scaled samples of excitation, as above.
 * *filterLag: below 0 backward, above 0 forward, 0 none. *gain, *scale: Q15. subframe: 0..3. rate: ZPP_RATE_5300 or
 * ZPP_RATE_6300.
 * Status: zppStsNullPointer; zppStsOutOfRange for a subframe outside 0..3 and for the rate; zppStsBadCodedParam for lag.
 * Clause 3.6. */
ZPPAPI ZppStatus zppsPitchPostFilterSearch_G723_16s(const Zpp16s* src, Zpp16s* filterLag, Zpp16s* gain, Zpp16s* scale,
                                                    Zpp16s lag, int subframe, ZppSpeechRate rate);

/* dst[n] = scale * src[n] + gain * src[n + filterLag], n = 0..59. src: the excitation, not scaled. filterLag: -145..145.
 * A gain of 0 with a scale of 32767 still changes loud samples. Status: zppStsNullPointer; zppStsBadArgument for filterLag.
 * Clause 3.6. */
ZPPAPI ZppStatus zppsPitchPostFilter_G723_16s(const Zpp16s* src, Zpp16s* dst, Zpp16s filterLag, Zpp16s gain, Zpp16s scale);

/* LP synthesis of a subframe at half the level. lpc: 10. srcDst: 60. memory: 10; 0 at first. Clause 3.7. */
ZPPAPI ZppStatus zppsSynthesisFilter_G723_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory);

/* Formant postfilter with tilt compensation. lpc: 10. srcDst: 60. memory: ten inputs, ten outputs; 0 at first.
 * *tilt: smoothed first reflection coefficient, Q15; in and out; 0 at first. *energy: of the input. Clause 3.8. */
ZPPAPI ZppStatus zppsFormantPostFilter_G723_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory, Zpp16s* tilt,
                                                  Zpp32s* energy);

/* Brings srcDst (60) to the energy of the function above, smoothly, and to full level. *gain: Q12; in and out; 4096 at first.
 * Status: zppStsNullPointer; zppStsBadArgument for an energy below 0. Clause 3.9. */
ZPPAPI ZppStatus zppsGainControl_G723_16s_I(Zpp16s* srcDst, Zpp16s* gain, Zpp32s energy);

/* ---- G.723.1: voice activity detection and comfort noise (Annex A) ---------------------------------------------------- */

/* Voice activity detection. src: the frame's 240 new samples behind the high-pass filter. lags: the open-loop lags of the two
 * frames before, oldest first (1, 1, 60, 60 at first). noiseLpc: 10 (0 at first). sineDetector: below 0 where the input is a
 * sine. levels: energy of the last frame, noise level; 1024, 1024 at first. counters: hangover, activity, adaptation; 3, 0, 0
 * at first. All in and out. *vad: 0 or 1. Clause A.2. */
ZPPAPI ZppStatus zppsVAD_G723_16s(const Zpp16s* src, const Zpp16s* lags, const Zpp16s* noiseLpc, Zpp32s* levels,
                                  Zpp16s* counters, Zpp16s* vad, Zpp16s sineDetector);

/* Sum of count (1..4) autocorrelations with their exponents (zppsAutoCorr_G723_16s), renormalised. autocorr: 11 lags each;
 * exponents: one each; dst: 11 lags; *exponent: their left shift.
 * Status: zppStsNullPointer; zppStsBadSize for count. Clause A.4. */
ZPPAPI ZppStatus zppsAutoCorrSum_G723_16s(const Zpp16s* autocorr, const Zpp16s* exponents, Zpp16s* dst, Zpp16s* exponent,
                                          int count);

/* Autocorrelation (11 lags, those above 0 doubled) of the coefficients of A(z), and its left shift. lpc: 10. Clause A.4. */
ZPPAPI ZppStatus zppsLPCAutoCorr_G723_16s(const Zpp16s* lpc, Zpp16s* dst, Zpp16s* shift);

/* Itakura test: *similar = 1 when the filter of lpcAutoCorr and shift fits a signal, else 0. autocorr: 11 lags of the signal.
 * energy: its residual energy behind its own filter (zppsLevinsonDurbin_G723_16s). Clause A.4. */
ZPPAPI ZppStatus zppsLPCSimilarity_G723_16s(const Zpp16s* lpcAutoCorr, const Zpp16s* autocorr, Zpp16s* similar, Zpp16s shift,
                                            Zpp16s energy);

/* Index of the comfort-noise gain. count: 0..3. energies, exponents: with a count of 1 to 3 the residual energies of as many
 * frames and their exponents; with 0 the energy of zppsVoicingDecision_G723_16s and the shift of its block-scaled samples.
 * *index: 0..63. Status: zppStsNullPointer; zppStsBadArgument for count. Clause A.4. */
ZPPAPI ZppStatus zppsSIDGainQuant_G723_16s(const Zpp16s* energies, const Zpp16s* exponents, Zpp16s* index, int count);

/* Gain of an index. index: 0..63. *gain: as zppsComfortNoise_G723_16s takes it. Status: zppStsNullPointer; zppStsBadCodedParam
 * for index. Clause A.4. */
ZPPAPI ZppStatus zppsSIDGainDecode_G723_16s(Zpp16s index, Zpp16s* gain);

/* Comfort-noise excitation of a frame. history: 145, in and out. *seed: in and out; 12345 at the start of every pause.
 * dst: 240. lags: 2, gainIndices: 4, out: what zppsTamingUpdate_G723_32s_I needs; the offsets are 1, 0, 1, 3. gain: 0..16383.
 * Status: zppStsNullPointer; zppStsBadArgument for gain. Clause A.4. */
ZPPAPI ZppStatus zppsComfortNoise_G723_16s(Zpp16s* history, Zpp16s* seed, Zpp16s* dst, Zpp16s* lags, Zpp16s* gainIndices,
                                           Zpp16s gain);

#ifdef __cplusplus
}
#endif

#endif
