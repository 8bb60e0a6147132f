/* zppsc: AMR-WB, 3GPP TS 26.171 to 26.204, ITU-T G.722.2. Include zppsc.h. */
#ifndef ZPPSC_AMRWB_H
#define ZPPSC_AMRWB_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- AMR-WB ----------------------------------------------------------------------------------------------------------------
 *
 * Steps of one frame: 320 samples at 16 kHz, 256 at 12.8 kHz in four subframes of 64 (3GPP TS 26.190 and 26.173, ITU-T G.722.2).
 * LP order 16, 20 in the high band at 6.60 kbit/s. "With h before": elements -h..-1 of the pointer are read. mem arrays are read
 * and rewritten; what a stream starts with is said at each.
 * rate: ZPP_RATE_6600, _8850, _12650, _14250, _15850, _18250, _19850, _23050 or _23850. subframe: 0..3.
 * Status of every function: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another rate, subframe or flag; what else, it says.
 * A buffer that is only read must not overlap one that is written, unless it is said to be allowed.
 */

/* State-size queries: *size receives the bytes that the caller provides for the state block, at any alignment. */
ZPPAPI ZppStatus zppsAdaptiveCodebookDecodeGetSize_AMRWB_16s(Zpp32s* size); /* 24 */
ZPPAPI ZppStatus zppsVADGetSize_AMRWB_16s(Zpp32s* size);                    /* 148 */
/* As above for the high-pass filters; *size = 40. order: 2 or 3. */
ZPPAPI ZppStatus zppsHighPassFilterGetSize_AMRWB_16s(Zpp32s order, Zpp32s* size);

/* ---- AMR-WB: sampling rates and filters (TS 26.190 clauses 5.1, 5.4.1, 6.2 and 6.3.3) ----------------------------------- */

/* 16 kHz to 12.8 kHz. src: len samples, len a multiple of 5, 5..320; dst: len * 4 / 5; mem: 30 past inputs, oldest first.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsDownSampling_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem);

/* 12.8 kHz to 16 kHz. src: len samples, len a multiple of 4, 4..256; dst: len * 5 / 4; mem: 24 past inputs, oldest first.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsUpSampling_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem);

/* High-pass filters of order 2 or 3. state: 40 bytes.
 * Init: the history becomes 0. coef: 2 * order + 1 values: b0..b[order], then a1..a[order], factors of past outputs that are
 *   added.
 * Filter: len samples in place, len 1 or more. shift: 2 for coefficients in Q13 (50 Hz and weighted-speech filters: Q12 with
 *   order 3's gain), 1 for Q14 (400 Hz filter, whose output is a sixteenth).
 * Scale: the history times 2^shift, shift -31..31.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for the length; zppStsOutOfRange for the order; zppStsBadScale for the
 * shift. */
ZPPAPI ZppStatus zppsHighPassFilterInit_AMRWB_16s(const Zpp16s* coef, int order, void* state);
ZPPAPI ZppStatus zppsHighPassFilter_AMRWB_16s_I(Zpp16s* srcDst, int len, int shift, void* state);
ZPPAPI ZppStatus zppsHighPassFilterScale_AMRWB_16s(int shift, void* state);

/* Headroom of the pre-emphasis. *shift: the largest left shift, 0..8, that leaves a bit of headroom to src[n] - gamma * src[n -
 * 1]. src: len samples, len 1 or more; prev: the one before; gamma: Q15. Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsPreemphasisScale_AMRWB_16s(const Zpp16s* src, int len, Zpp16s gamma, Zpp16s prev, int* shift);

/* srcDst[n] = (srcDst[n] - gamma * srcDst[n - 1]) * 2^(shift - 1), from past inputs, rounded and saturated. len 1 or more;
 * gamma: Q15; shift: 0..15; mem: 1: the input before srcDst[0], on return the last one.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize; zppStsBadScale. */
ZPPAPI ZppStatus zppsPreemphasize_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s gamma, int shift, Zpp16s* mem);

/* y[n] = x[n] / 2 + gamma * y[n - 1]. len 1 or more; gamma: Q15; mem: 1: the output before, on return the last one. The second
 * form takes the 28-bit output of zppsSynthesisFilter_AMRWB_16s32s. Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsDeemphasize_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s gamma, Zpp16s* mem);
ZPPAPI ZppStatus zppsDeemphasize_AMRWB_32s16s(const Zpp32s* src, Zpp16s* dst, int len, Zpp16s gamma, Zpp16s* mem);

/* Decimates the weighted speech by 2 in place: the first len / 2 samples become the output, the others stay. len: even, 4..256;
 * mem: 3 past inputs, oldest first. Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsDecimateBy2_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s* mem);

/* srcDst[n] += gain * srcDst[n - lag], n = lag..len-1 ascending, rounded; nothing before srcDst is read. gain: Q15; len and lag:
 * 1 or more. Status: zppStsOk; zppStsNullPointer; zppStsBadSize; zppStsOutOfRange for the lag. */
ZPPAPI ZppStatus zppsHarmonicFilter_AMRWB_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len);

/* ---- AMR-WB: linear prediction ---------------------------------------------------------------------------------------- */

/* Windowing, autocorrelation and lag window (TS 26.190 clauses 5.2.1 and 5.2.2). src: 384, Q0. dst: lags 0..16, lag 0
 * normalised, the lowest bit of each clear. */
ZPPAPI ZppStatus zppsAutoCorr_AMRWB_16s32s(const Zpp16s* src, Zpp32s* dst);

/* Levinson-Durbin recursion (TS 26.190 clause 5.2.3). src: 17 lags as above. lpc: 17, Q12. mem: 16, coefficients 1..16 of the
 * last stable frame (at the start 0), which an unstable one gets. */
ZPPAPI ZppStatus zppsLevinsonDurbin_AMRWB_32s16s(const Zpp32s* src, Zpp16s* lpc, Zpp16s* mem);

/* Immittance spectral pairs (TS 26.190 clause 5.2.4). lpc: 17, Q12. isp: 16, cosines in Q15, descending but for the last one,
 * which is the last reflection coefficient. prevIsp: 16, delivered where fewer than 15 roots are found; isp may be prevIsp. */
ZPPAPI ZppStatus zppsLPCToISP_AMRWB_16s(const Zpp16s* lpc, Zpp16s* isp, const Zpp16s* prevIsp);

/* ISPs to frequencies and back (TS 26.190 clause 5.2.5). order: 16 or 20. isp: order elements, Q15. isf: order elements, 16384
 * is half the sampling rate, and the last element on half that scale. ISFs outside 0..16384 count as the nearest of these. In
 * place is allowed.
 * Status also: zppStsBadSize for an order other than 16 and 20. */
ZPPAPI ZppStatus zppsISPToISF_AMRWB_16s(const Zpp16s* isp, Zpp16s* isf, int order);
ZPPAPI ZppStatus zppsISFToISP_AMRWB_16s(const Zpp16s* isf, Zpp16s* isp, int order);

/* ISPs to the LP filter (TS 26.190 clause 5.2.7). order: 16 or 20. isp: order, Q15. lpc: order + 1, Q12. scaling: 0,
 * coefficients beyond 16 bits wrap; 1, the Q format is lowered by as many bits q (at most 4) as keep all in range, and lpc[0]
 * is 4096 >> q.
 * Status also: zppStsBadSize for an order other than 16 and 20. */
ZPPAPI ZppStatus zppsISPToLPC_AMRWB_16s(const Zpp16s* isp, Zpp16s* lpc, int order, int scaling);

/* The filters of the four subframes between two frames' ISPs (TS 26.190 clause 5.2.6): weights of the new ones 0.45, 0.8, 0.96
 * and 1. prevIsp, isp: 16, Q15. lpc: 4 x 17, Q12. */
ZPPAPI ZppStatus zppsInterpolateISP_AMRWB_16s(const Zpp16s* prevIsp, const Zpp16s* isp, Zpp16s* lpc);

/* LP residual, A(z). lpc: 17, Q12. src: len, with 16 before. dst: len. Status also: zppStsBadSize for a len below 1. */
ZPPAPI ZppStatus zppsResidualFilter_AMRWB_16s(const Zpp16s* lpc, const Zpp16s* src, Zpp16s* dst, int len);

/* LP synthesis, 1/A(z), in place. order: 16 or 20. lpc: order + 1, lpc[0] telling the Q format. mem: order past outputs, oldest
 * first; the last ones on return. Status also: zppStsBadSize for a len below 1; zppStsOutOfRange for the order. */
ZPPAPI ZppStatus zppsSynthesisFilter_AMRWB_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, int len, int order, Zpp16s* mem);

/* LP synthesis in double precision. lpc: 17. src: len, scaled by 2^scale. scale: 0..8, else zppStsBadScale. dst: len, with 16
 * past outputs before: 28 bits, 256 times the signal. Status also: zppStsBadSize for a len below 1. */
ZPPAPI ZppStatus zppsSynthesisFilter_AMRWB_16s32s(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale);

/* ---- AMR-WB: ISF quantisation ----------------------------------------------------------------------------------------- */

/* Predictive multi-stage split vector quantisation (TS 26.190 clause 5.2.6). isf: 16. pastResidual: 16, of the last frame (at
 * the start 0); on return this frame's. quantIsf: 16, may be isf. index: 5 words of 8, 8, 7, 7 and 6 bits at 6.60 kbit/s, 7 words
 * of 8, 8, 6, 7, 7, 5 and 5 bits at the others. */
ZPPAPI ZppStatus zppsISFQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* pastResidual, Zpp16s* quantIsf, Zpp16s* index,
                                        ZppSpeechRate rate);

/* Decoding, and concealment where badFrame is 1 (TS 26.190 clause 6.1, TS 26.191). index: as above, bits beyond a field's width
 * are ignored; not read in a bad frame. pastResidual: as above. prevIsf: 16, of the last frame. isfHistory: 3 x 16, the last good
 * frames' before they were put in order, newest first (at the start the initial ISFs); a bad frame leaves it. isf: 16. */
ZPPAPI ZppStatus zppsISFDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* pastResidual, const Zpp16s* prevIsf, Zpp16s* isfHistory,
                                         Zpp16s* isf, int badFrame, ZppSpeechRate rate);

/* The ISFs of comfort noise (TS 26.192). isf, quantIsf: 16, quantIsf may be isf. index: 5 words of 6, 6, 6, 5 and 5 bits; decoding
 * ignores other bits. */
ZPPAPI ZppStatus zppsSIDQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* quantIsf, Zpp16s* index);
ZPPAPI ZppStatus zppsSIDDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* isf);

/* Stability of the spectrum (TS 26.190 clause 6.1). isf, prevIsf: 16. *factor: Q15, 0 where it moves .. 32767 where it stands. */
ZPPAPI ZppStatus zppsISFStability_AMRWB_16s(const Zpp16s* isf, const Zpp16s* prevIsf, Zpp16s* factor);

/* ---- AMR-WB: pitch and adaptive codebook (TS 26.190 clauses 5.4 to 5.7 and 6.1, TS 26.191 clause 6.3) ------------------- */

/* Open-loop lag. wsp: len samples of the weighted speech at 6.4 kHz, hpWsp: its high-passed form, each with 115 before; len 64
 * or 128. mem: 8: median lag, weight, weighting flag, five past lags. *lag: 18..115; *gain: Q15.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsOpenLoopPitchSearch_AMRWB_16s(const Zpp16s* wsp, const Zpp16s* hpWsp, int len, Zpp16s* lag, Zpp16s* gain,
                                                   Zpp16s* mem);

/* LP residual, targets and impulse response of a subframe. speech: 64 and 16 before; weightLpc, quantLpc: 17 each, Q12; synMem:
 * the past 16 synthesised samples, only read; weightMem: the last weighted target sample.
 * residual, target: 64 each; residualTarget: 64, the target in the domain of the residual; impulse: 64, Q15. */
ZPPAPI ZppStatus zppsImpulseResponseTarget_AMRWB_16s(const Zpp16s* speech, const Zpp16s* weightLpc, const Zpp16s* quantLpc,
                                                     const Zpp16s* synMem, Zpp16s* residual, Zpp16s* target,
                                                     Zpp16s* residualTarget, Zpp16s* impulse, Zpp16s weightMem);

/* Closed-loop pitch search. Subframe 0, and 2 above 6.60, code their lag by itself, the others within a range around it.
 * target: 64; impulse: 64, Q14. excitation: 65 and 248 before: the first 64 hold the LP residual on entry, all 65 the adaptive
 * vector on return. minLag: 1: the first lag of the relative subframes' range, written by the absolute ones and read, within
 * 34..216, by the others. openLoopLag: at 12.8 kHz, the centre of an absolute search.
 * lag: 33..231; fraction: quarters, 0..3; index: the codeword.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for the subframe or the rate. */
ZPPAPI ZppStatus zppsAdaptiveCodebookSearch_AMRWB_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* excitation,
                                                      Zpp16s* minLag, Zpp16s* lag, Zpp16s* fraction, Zpp16s* index,
                                                      Zpp16s openLoopLag, int subframe, ZppSpeechRate rate);

/* Chooses the filtered or, above 8.85, the plain adaptive vector and takes its contribution away. target, impulse: as above.
 * excitation: 65 and 1 before, the first 64 become the chosen vector. residualTarget: 64, in and out.
 * target2: 64, the target without the contribution; filteredVector: 64; gain: Q14, 0..1.2, with clip 1 0..0.95; clip: 0 or 1;
 * coef: 4: mantissa and exponent of the filtered vector's energy, then of its correlation with the target; select: 0 filtered,
 * 1 plain.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for clip other than 0 and 1 or the rate. */
ZPPAPI ZppStatus zppsAdaptiveCodebookContribution_AMRWB_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* excitation,
                                                            Zpp16s* residualTarget, Zpp16s* target2, Zpp16s* filteredVector,
                                                            Zpp16s* gain, Zpp16s* coef, Zpp16s* select, int clip,
                                                            ZppSpeechRate rate);

/* dst[n] = 0.18 src[n - 1] + 0.64 src[n] + 0.18 src[n + 1]. src: len samples, one before and one behind; dst: len, 1 or more.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsAdaptiveCodebookLowPass_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int len);

/* Decodes the lag, substitutes it in bad frames, and builds the adaptive vector. state: 24 bytes; Init writes all of it, Reset,
 * after comfort noise, the last good lag.
 * index: its low 9, 8, 6 or 5 bits count, none in an unusable frame. gainHistory: pitch gains of the last five good subframes,
 * oldest first, Q14. excitation: 65, written, and 248 before. lag: 34..231; fraction: quarters, 0..3. badFrame: 1 for a damaged
 * frame; unusable: 1 where its bits are unknown as well.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for the subframe, a flag other than 0 and 1, or the rate. */
ZPPAPI ZppStatus zppsAdaptiveCodebookDecodeInit_AMRWB_16s(void* state);
ZPPAPI ZppStatus zppsAdaptiveCodebookDecodeReset_AMRWB_16s(void* state);
ZPPAPI ZppStatus zppsAdaptiveCodebookDecode_AMRWB_16s(Zpp16s index, const Zpp16s* gainHistory, Zpp16s* excitation, Zpp16s* lag,
                                                      Zpp16s* fraction, int subframe, int badFrame, int unusable, void* state,
                                                      ZppSpeechRate rate);

/* ---- AMR-WB: algebraic codebook --------------------------------------------------------------------------------------- */

/* Codebook search (TS 26.190 clause 5.8). target: 64, without the adaptive codebook's contribution. residualTarget: 64, the same
 * in the domain of the residual. impulse: 64, Q12, response of the weighted synthesis filter with the sharpening.
 * code: 64, Q9, without the sharpening; Q8 where the search halved a strong response (15.85 kbit/s and more: the doubled sum of
 * the response's squares reaches 1025 * 2^16). filteredCode: 64, Q9, in its halved scale then.
 * index: 1 word of 12 bits at 6.60 kbit/s; 4 words at 8.85 (5 bits each), 12.65 (9), 14.25 (13, 13, 9, 9) and 15.85 (13); 8 at
 * 18.25 (four of 2, four of 14), 19.85 (10, 10, 2, 2, 10, 10, 14, 14), 23.05 and 23.85 (11). */
ZPPAPI ZppStatus zppsAlgebraicCodebookSearch_AMRWB_16s(const Zpp16s* target, const Zpp16s* residualTarget, const Zpp16s* impulse,
                                                       Zpp16s* code, Zpp16s* filteredCode, Zpp16s* index, ZppSpeechRate rate);

/* Decodes the words of the search. index: 1, 4 or 8 words as above, bits beyond a field's width are ignored. code: 64, Q9, not
 * sharpened. */
ZPPAPI ZppStatus zppsAlgebraicCodebookDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* code, ZppSpeechRate rate);

/* ---- AMR-WB: gains ---------------------------------------------------------------------------------------------------- */

/* Joint quantisation of the gains (TS 26.190 clause 5.9), 6 bits up to 8.85 kbit/s, 7 above.
 * target, filteredVector: 64, scaled by 2^scale. scale: beyond 16 bits, the nearest of these. index: the codeword. filteredCode,
 * code: 64, Q9, code sharpened. coef: 4, mantissa and exponent of the filtered vector's energy, then of its correlation with the
 * target.
 * gainPitch: Q14; in the open-loop gain, which a search of 7 bits reads; out the quantised one. gainCode: Q16. mem: 4 past
 * quantised energies, newest first, Q10 (at the start -14336). clip: 1 keeps the pitch gain below 1. */
ZPPAPI ZppStatus zppsGainQuant_AMRWB_16s(const Zpp16s* target, const Zpp16s* filteredVector, const Zpp16s* filteredCode,
                                         const Zpp16s* code, const Zpp16s* coef, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* index,
                                         Zpp16s* mem, int scale, int clip, ZppSpeechRate rate);

/* Decoding and concealment of the gains (TS 26.190 clause 6.1, TS 26.191). index: bits beyond 6 or 7 are ignored; not used in a
 * bad frame. code: 64, Q9. gainPitch: Q14. gainCode: Q16. mem: 22, four energies as above (at the start -14336), then past gains
 * (at the start 0), words 17..21 the pitch gains of the last good subframes, oldest first. badFrame, prevBadFrame, unusable: 0 or
 * 1. state: 0..6, how long frames have been bad. vadHist: frames since the last active one, 0 or more. */
ZPPAPI ZppStatus zppsDecodeGain_AMRWB_16s(Zpp16s index, const Zpp16s* code, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* mem,
                                          int badFrame, int prevBadFrame, int unusable, int state, int vadHist, ZppSpeechRate rate);

/* ---- AMR-WB: excitation ----------------------------------------------------------------------------------------------- */

/* How voiced a subframe is (TS 26.190 clause 6.1). vector: 64, scaled by 2^scale. scale: beyond 16 bits, the nearest of
 * these. code: 64, Q9. gainPitch: Q14. gainCode: Q0.
 * *factor: Q15, -32767 unvoiced .. 32767 voiced. */
ZPPAPI ZppStatus zppsVoiceFactor_AMRWB_16s(const Zpp16s* vector, const Zpp16s* code, int scale, Zpp16s gainPitch, Zpp16s gainCode,
                                           Zpp16s* factor);

/* srcDst[n] = gainPitch * srcDst[n] + gainCode * code[n], rounded. code, srcDst: 64; code Q9, gainCode Q0, gainPitch Q14. */
ZPPAPI ZppStatus zppsExcitation_AMRWB_16s_I(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch);

/* Noise and pitch enhancement, then the sum of both parts (TS 26.190 clause 6.1). code: 64, Q9. srcDst: 64, in the adaptive vector
 * scaled by 2^scale, out the enhanced excitation. scale: 0..8, else zppStsBadScale. gainPitch: Q14. gainCode: Q16. stability,
 * voiceFactor: Q15. mem: 1, smoothed code gain, Q16 (at the start 0). */
ZPPAPI ZppStatus zppsExcitationEnhance_AMRWB_16s_I(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainPitch, Zpp32s gainCode,
                                                   Zpp16s stability, Zpp16s voiceFactor, int scale, Zpp32s* mem);

/* Emphasises the adaptive vector in the enhanced excitation, at its level; for 6.60 and 8.85 kbit/s. vector, srcDst: 64.
 * gainPitch: Q14; up to 0.5 nothing changes. */
ZPPAPI ZppStatus zppsPitchSharpening_AMRWB_16s_I(const Zpp16s* vector, Zpp16s* srcDst, Zpp16s gainPitch);

/* Spreads the pulses of unvoiced speech (TS 26.190 clause 6.1): acts at 6.60 and 8.85 kbit/s, and keeps count at the others.
 * srcDst: 64, code vector, Q9. gainCode: Q0. gainPitch: Q14. mem: 8 (at the start 0). */
ZPPAPI ZppStatus zppsPhaseDispersion_AMRWB_16s_I(Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch, Zpp16s* mem,
                                                 ZppSpeechRate rate);

/* ---- AMR-WB: high band (TS 26.190 clauses 5.10 and 6.3) ----------------------------------------------------------------- */

/* Noise of 80 samples with the energy of src: 64, an excitation scaled by 2^scale. scale: beyond 16 bits, the nearest of these.
 * seed: 1. */
ZPPAPI ZppStatus zppsHighBandNoise_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int scale, Zpp16s* seed);

/* Gain of the high band from the spectral tilt. *gain: Q15, 0.1 at least. src: 64, the synthesis behind the 400 Hz filter.
 * vadHist: frames since the last active one. */
ZPPAPI ZppStatus zppsHighBandGain_AMRWB_16s(const Zpp16s* src, int vadHist, Zpp16s* gain);

/* Coded gain of the high band at 23.85 kbit/s. *index: 0..15. speech, noise: 80 each, behind the 6 to 7 kHz filter; estimate:
 * Q15, the gain from the tilt; weight: Q15, of the measured gain. */
ZPPAPI ZppStatus zppsHighBandGainQuant_AMRWB_16s(const Zpp16s* speech, const Zpp16s* noise, Zpp16s estimate, Zpp16s weight,
                                                 Zpp16s* index);

/* The high band's ISPs at 6.60 kbit/s from the ISFs. isf: 16, at 12.8 kHz. isp: 20, Q15, at 16 kHz. */
ZPPAPI ZppStatus zppsISFExtrapolate_AMRWB_16s(const Zpp16s* isf, Zpp16s* isp);

/* Filters of 31 taps in place. len 1 or more. band 0: 6 to 7 kHz, of a quarter of the input; 1: low-pass 7 kHz. mem: 30 past
 * inputs, for band 0 quartered, oldest first. Status: zppStsOk; zppStsNullPointer; zppStsBadSize; zppStsOutOfRange. */
ZPPAPI ZppStatus zppsHighBandFilter_AMRWB_16s_I(Zpp16s* srcDst, int len, int band, Zpp16s* mem);

/* ---- AMR-WB: voice activity and discontinuous transmission (TS 26.192 to 26.194) ---------------------------------------- */

/* Voice activity detection. state: 148 bytes. src: 256, pre-emphasised speech at half its level. toneFlag: 1: the caller's
 * register of pitch gains: shifted right after each open-loop search, bit 14 set where the gain exceeds 0.65; a silent frame
 * clears its upper bits. *vad: 0 or 1. */
ZPPAPI ZppStatus zppsVADInit_AMRWB_16s(void* state);
ZPPAPI ZppStatus zppsVAD_AMRWB_16s(const Zpp16s* src, Zpp16s* toneFlag, Zpp16s* vad, void* state);

/* Level of a frame. src: 256. *logEnergy: base-2 logarithm of half the energy, Q7. */
ZPPAPI ZppStatus zppsLogEnergy_AMRWB_16s(const Zpp16s* src, Zpp16s* logEnergy);

/* The average ISFs of eight frames, outliers replaced. isfHistory: eight vectors of 16. hist: 0..7, the newest of
 * them. logEnergyHistory: 8, Q7; distance: 28, in and out, the distances between the frames; sumDistance: 8, in and out, their
 * sums; isf: 16; dither: 1
 * where the noise is not stationary. Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for hist. */
ZPPAPI ZppStatus zppsISFAverageDTX_AMRWB_16s(const Zpp16s* isfHistory, const Zpp16s* logEnergyHistory, int hist,
                                             Zpp32s* distance, Zpp32s* sumDistance, Zpp16s* isf, Zpp16s* dither);

/* Dithers the parameters of comfort noise in place. isf: 16; logEnergy: 1, Q25; seed: 1. */
ZPPAPI ZppStatus zppsISFDither_AMRWB_16s_I(Zpp16s* isf, Zpp32s* logEnergy, Zpp16s* seed);

/* Random excitation of a frame. dst: 256; logEnergy: base-2 logarithm of its level, Q16; seed: 1. */
ZPPAPI ZppStatus zppsComfortNoise_AMRWB_16s(Zpp16s* dst, Zpp32s logEnergy, Zpp16s* seed);

#ifdef __cplusplus
}
#endif

#endif
