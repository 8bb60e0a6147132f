/* zppsc: GSM-AMR, 3GPP TS 26.071 to 26.104. Include zppsc.h. */
#ifndef ZPPSC_AMR_H
#define ZPPSC_AMR_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- GSM-AMR ----------------------------------------------------------------------------------------------------------------
 *
 * Steps of one subframe of 40 samples (3GPP TS 26.090 and 26.073). rate: ZPP_RATE_4750, _5150, _5900, _6700, _7400, _7950,
 * _10200 or _12200, written below as kbit/s; functions that also accept ZPP_RATE_DTX say so. subframe: 0..3. A buffer that is
 * only read must not overlap one that is written.
 */

/* ---- GSM-AMR: algebraic codebook (TS 26.090 clauses 5.7 and 6.1) ------------------------------------------------------ */

/* Searches the algebraic codebook (TS 26.090 clause 5.7).
 * lag: integer pitch lag of the subframe; from 1 to 39 impulse and code are sharpened: x[n] += (g * x[n - lag]) >> 15,
 *   ascending, g the doubled gain, saturated at 4.75, 5.15, 5.9 and 12.2 kbit/s, else kept to 16 bits.
 * gain: sharpening gain, Q14.
 * target: 40, Q0, without the adaptive codebook's contribution. ltpResidual: 40, Q0, used at 10.2 and 12.2 kbit/s only.
 * impulse: 40, Q12, response of the weighted synthesis filter, sharpened on return.
 * code: 40, the code vector, Q13, at 12.2 kbit/s Q12. filteredCode: 40, code before its sharpening filtered by the sharpened
 *   impulse, in the target's scale for a pulse of 1.0 (a quarter of it at 12.2 kbit/s).
 * codeword: 2 words up to 7.95 kbit/s: index, then signs, a set bit k for a positive pulse k; 7 at 10.2: four signs, two words
 *   of 10 bits and one of 7; 10 at 12.2: five of 4 bits, five of 3.
 * rate: ZPP_RATE_DTX acts as ZPP_RATE_12200.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for the subframe, then for the rate. */
ZPPAPI ZppStatus zppsAlgebraicCodebookSearch_GSMAMR_16s(Zpp16s lag, Zpp16s gain, const Zpp16s* target,
                                                        const Zpp16s* ltpResidual, Zpp16s* impulse, Zpp16s* code,
                                                        Zpp16s* filteredCode, Zpp16s* codeword, Zpp16s subframe,
                                                        ZppSpeechRate rate);

/* The same for callers that pass work memory, which is not touched: any pointer but null will do.
 * Status: as above; a null work is tested first. */
ZPPAPI ZppStatus zppsAlgebraicCodebookSearchEX_GSMAMR_16s(Zpp16s lag, Zpp16s gain, const Zpp16s* target,
                                                          const Zpp16s* ltpResidual, Zpp16s* impulse, Zpp16s* code,
                                                          Zpp16s* filteredCode, Zpp16s* codeword, Zpp16s subframe,
                                                          ZppSpeechRate rate, void* work);

/* Decodes a codeword (TS 26.090 clause 6.1). codeword: 2, 7 or 10 words as the search writes them; bits beyond a field are
 * ignored, and any values leave the other memory alone. code: 40, Q formats as in the search, not sharpened.
 * rate: ZPP_RATE_DTX acts as ZPP_RATE_12200.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for the subframe, then for the rate. */
ZPPAPI ZppStatus zppsFixedCodebookDecode_GSMAMR_16s(const Zpp16s* codeword, Zpp16s* code, Zpp16s subframe, ZppSpeechRate rate);

/* The correlation matrix of the impulse response with the pulses' signs, cor_h of TS 26.073. impulse: 40, Q12, sharpened;
 * sign: 40 values of 32767 or -32767; matrix: 40 x 40 by rows, symmetric, values of 16 bits, Q15 of the normalised response.
 * The first form writes all of it, the others the diagonal and the pairs of tracks that a search reads: r74 for 7.4 and 7.95
 * kbit/s, r67 for 6.7, r59 for 5.9, r515 for 4.75 and 5.15 in that subframe. Other entries keep what they held. */
ZPPAPI void _zppsToeplizMatrix_GSMAMR_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix);
ZPPAPI void _zppsToeplizMatrix_GSMAMR_r74_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix);
ZPPAPI void _zppsToeplizMatrix_r67_GSMAMR_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix);
ZPPAPI void _zppsToeplizMatrix_r59_GSMAMR_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix);
ZPPAPI void _zppsToeplizMatrix_r515_GSMAMR_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix, Zpp16s subframe);

/* ---- GSM-AMR: adaptive codebook (TS 26.090 clauses 5.5, 5.6 and 6.1) -------------------------------------------------- */

/* Closed-loop pitch search (TS 26.090 clause 5.6).
 * target: 40, Q0. impulse: 40, Q12. openLoopLags: 2, the first for subframes 0 and 1, the second for 2 and 3.
 * lag: in: the previous subframe's integer lag, read in subframes coded relative to it (1, 3, and 2 at 4.75 and 5.15 kbit/s);
 *   out: this subframe's. Ranges: 18..143 at 12.2 kbit/s, else 20..143, and a fraction of a sample below.
 * excitation: 194: 154 past samples, then the subframe's, which hold the LP residual on entry and the adaptive-codebook vector
 *   on return.
 * fraction: in thirds of a sample, -1..1; at 12.2 kbit/s in sixths, -2..3. lagIndex: the codeword. vector: 40, a copy of the
 *   vector.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for the subframe; zppStsOutOfRange for the rate, ZPP_RATE_DTX too. */
ZPPAPI ZppStatus zppsAdaptiveCodebookSearch_GSMAMR_16s(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* openLoopLags,
                                                       Zpp16s* lag, Zpp16s* excitation, Zpp16s* fraction, Zpp16s* lagIndex,
                                                       Zpp16s* vector, Zpp16s subframe, ZppSpeechRate rate);

/* Decodes the pitch lag and builds the adaptive-codebook vector (TS 26.090 clause 6.1), with substitution of the lag in erased
 * frames (TS 26.091).
 * lastGoodLag: the lag around which delta subframes are coded, except at 12.2 kbit/s. In an erased frame it takes the decoded
 *   lag's place, at the other rates increased by one first, here too, unless it is 143 or above. At 4.75, 5.15 and 5.9 kbit/s
 *   the decoded lag stays when backgroundNoise is not 0 and voicedHangover exceeds 4. The caller stores each subframe's lag.
 * decodedLag: the lag as decoded; at 12.2 kbit/s written only where the last good lag replaces it: in erased frames and for the
 *   indices from 61 on in subframes 1 and 3.
 * excitation: 194: 154 past samples, read only, then the vector, written.
 * lag: out: the integer lag of the vector; at 12.2 kbit/s in: the previous subframe's. Lags that no encoder sends are limited
 *   to 143 and to the rate's smallest; 144, where it is coded relative to the lag before, is sent, and may be repeated.
 * vector: 40, a copy of the vector. badFrame: not 0 for an erased frame. backgroundNoise: not 0 in background noise.
 * voicedHangover: 0..10, how long the voiced hangover lasts. rate: ZPP_RATE_DTX decodes as ZPP_RATE_10200.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for the subframe; zppStsOutOfRange for the rate, then, except at 12.2
 * kbit/s, for a lagIndex outside 0..511. */
ZPPAPI ZppStatus zppsAdaptiveCodebookDecode_GSMAMR_16s(Zpp16s lagIndex, Zpp16s* lastGoodLag, Zpp16s* decodedLag,
                                                       Zpp16s* excitation, Zpp16s* lag, Zpp16s* vector, Zpp16s subframe,
                                                       Zpp16s badFrame, Zpp16s backgroundNoise, Zpp16s voicedHangover,
                                                       ZppSpeechRate rate);

/* Pitch gain (TS 26.090 clause 5.6). target, filteredVector: 40, Q0, the vector filtered by the impulse response.
 * gain: Q14, 0..19661 (1.2). coefficients: 4: energy of the filtered vector as mantissa and 15 - exponent, its correlation with
 * the target likewise. Status: zppStsOk, zppStsNullPointer. */
ZPPAPI ZppStatus zppsAdaptiveCodebookGain_GSMAMR_16s(const Zpp16s* target, const Zpp16s* filteredVector, Zpp16s* gain);
ZPPAPI ZppStatus zppsAdaptiveCodebookGainCoeffs_GSMAMR_16s(const Zpp16s* target, const Zpp16s* filteredVector, Zpp16s* gain,
                                                           Zpp16s* coefficients);

/* Impulse response, LP residual and target of a subframe (TS 26.090 clause 5.5).
 * speech: 50, Q0: ten samples of history, then the subframe. weight1, weight2, quantLpc: 11 each, Q12: A(z/g1), A(z/g2) and the
 *   quantised A(z). errorMem, weightMem: 10 each, oldest first: outputs of the error and of the weighting filter before the
 *   subframe, not updated.
 * impulse: 40, Q12. residual, target: 40 each, Q0. Status: zppStsOk, zppStsNullPointer. */
ZPPAPI ZppStatus zppsImpulseResponseTarget_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* weight1, const Zpp16s* weight2,
                                                      const Zpp16s* quantLpc, const Zpp16s* errorMem, const Zpp16s* weightMem,
                                                      Zpp16s* impulse, Zpp16s* residual, Zpp16s* target);

/* ---- GSM-AMR, whole codec ---------------------------------------------------------------------------------------------------
 *
 * The steps of a frame of 160 samples beside codebooks and closed-loop pitch (3GPP TS 26.073, described in TS 26.090
 * to 26.094). rate: the eight rates above unless a function names others. Flags are 0 or not 0. Lengths of buffers stand in the
 * comments; a source and a destination must not overlap unless told. Status of all: zppStsNullPointer for any null pointer,
 * then zppStsOutOfRange for a rate, subframe, state or frame type that the function does not name, and nothing is written; else
 * zppStsOk.
 *
 * condition: 7 words on the frame, kept by the caller for the decoder's steps: [0] bad (erased), [1] the frame before was bad,
 * [2] degraded, [3] the frame before was degraded, [4] background noise, [5] voiced hangover count, 0..10, [6] concealment
 * state, 0..6. gainMem: 8 words, prediction memory of the code gain, newest first: [0..3] energies for 12.2 kbit/s, Q10 of
 * log2, at first -2381; [4..7] energies for the other rates, Q10 of dB, at first -14336.
 */

/* ---- GSM-AMR: LSPs (TS 26.090 clause 5.2) ----------------------------------------------------------------------------- */

/* LP coefficients to LSPs (TS 26.090 clause 5.2.3). a: 11, Q12. prevLsp, lsp: 10, Q15, may be one buffer; with fewer than ten
 * roots lsp = prevLsp. */
ZPPAPI ZppStatus zppsLPCToLSP_GSMAMR_16s(const Zpp16s* a, const Zpp16s* prevLsp, Zpp16s* lsp);

/* LP filters of the four subframes by interpolation (TS 26.090 clause 5.2.6). prevLsp: 10, Q15, of the end of the frame before.
 * lsp: 10; at 12.2 kbit/s 20, of the middle and of the end of the frame. a: 4 x 11, Q12. */
ZPPAPI ZppStatus zppsInterpolateLSP_GSMAMR_16s(const Zpp16s* prevLsp, const Zpp16s* lsp, Zpp16s* a, ZppSpeechRate rate);

/* Quantises LSPs (TS 26.090 clause 5.2.5). lsp, quantLsp: 10, at 12.2 kbit/s 20 as above, Q15. residualMem: 10, in and out, the
 * quantised LSF residual of the frame before, 16384 = 4000 Hz, at first 0. idx: 3 indices, at 12.2 kbit/s 5; for ZPP_RATE_DTX,
 * the silence descriptor, 4, the first one of the starting predictor; residualMem is only written then. */
ZPPAPI ZppStatus zppsLSPQuant_GSMAMR_16s(const Zpp16s* lsp, Zpp16s* residualMem, Zpp16s* quantLsp, Zpp16s* idx,
                                         ZppSpeechRate rate);

/* Decodes LSPs, or substitutes those of an erased frame (TS 26.090 clause 6.1, TS 26.091). idx: as the quantiser writes it,
 * bits beyond an index's width are ignored; not used in a bad frame. badFrame: not 0 for an erased frame. residualMem: 10, in
 * and out; zeros after ZPP_RATE_DTX, which is never a bad frame. lsf: 10, in: the quantised LSFs of the frame before, out: this
 * one's, 16384 = 4000 Hz, at first the mean of the five-way quantiser. quantLsp: 10, at 12.2 kbit/s 20. */
ZPPAPI ZppStatus zppsLSPDecode_GSMAMR_16s(const Zpp16s* idx, Zpp16s badFrame, Zpp16s* residualMem, Zpp16s* lsf,
                                          Zpp16s* quantLsp, ZppSpeechRate rate);

/* ---- GSM-AMR: open-loop pitch (TS 26.090 clause 5.3) ------------------------------------------------------------------ */

/* Open-loop pitch search (TS 26.090 clause 5.3): the lags of the two half frames.
 * weighted: 160, weighted speech, Q0; 143 samples before it are read. lags: 2.
 * lagMem: 8 words, in and out, touched at 10.2 kbit/s only: [0..4] past lags, newest first, at first 40, [5] their median, at
 *   first 40, [6] weight of the past, Q15, at first 0, [7] whether it is in use, at first 0.
 * gainFlag: 2, above 0 for a periodic half frame; 0 but at 10.2 kbit/s. */
ZPPAPI ZppStatus zppsOpenLoopPitchSearchNonDTX_GSMAMR_16s(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* gainFlag,
                                                          Zpp16s* lags, ZppSpeechRate rate);

/* The same with the measurements for voice activity detection, option 1 (TS 26.094 clause 3.3). vadMem: 5 words, in and out:
 * [0] tone register, [1] correlation of the high-passed signal, Q15, at first 13106, [2] pitch register, [3] count of similar
 * lags, [4] last lag; the others at first 0. */
ZPPAPI ZppStatus zppsOpenLoopPitchSearchDTXVAD1_GSMAMR_16s(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* vadMem,
                                                           Zpp16s* gainFlag, Zpp16s* lags, ZppSpeechRate rate);

/* The same with the measurements for option 2 (TS 26.094 clause 4.3). correlation: 2: the sum of the correlations at the lags
 * and that of the energies. ltpFlag: 1 where prediction gains much, else 0. */
ZPPAPI ZppStatus zppsOpenLoopPitchSearchDTXVAD2_GSMAMR_16s32s(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* gainFlag,
                                                              Zpp16s* lags, Zpp32s* correlation, Zpp16s* ltpFlag,
                                                              ZppSpeechRate rate);

/* ---- GSM-AMR: voice activity detection and silence descriptors (TS 26.092 to 26.094) ---------------------------------- */

/* Voice activity detection, option 1 (TS 26.094 clause 3). state: any alignment. speech: 160, the high-passed new samples; 40
 * samples before it are read. vadMem: as above; [2] in and out, the others read. flag: 0 or 1. */
ZPPAPI ZppStatus zppsVAD1GetSize_GSMAMR_16s(Zpp32s* size); /* 116 */
ZPPAPI ZppStatus zppsVAD1Init_GSMAMR_16s(void* state);
ZPPAPI ZppStatus zppsVAD1_GSMAMR_16s(const Zpp16s* speech, Zpp16s* vadMem, Zpp16s* flag, void* state);

/* Voice activity detection, option 2 (TS 26.094 clause 4). state: any alignment. speech: 160, the high-passed new samples.
 * ltpFlag: of the frame before. flag: 0 or 1. */
ZPPAPI ZppStatus zppsVAD2GetSize_GSMAMR_16s(Zpp32s* size); /* 188 */
ZPPAPI ZppStatus zppsVAD2Init_GSMAMR_16s(void* state);
ZPPAPI ZppStatus zppsVAD2_GSMAMR_16s(const Zpp16s* speech, Zpp16s ltpFlag, Zpp16s* flag, void* state);

/* Which frames become silence descriptors (TS 26.093 clause 5.1). vadFlag: of this frame. dtxMem: 2 words, in and out: hangover
 * count, at first 7, and frames since the last analysis, at first 32767. silence: 1 for a frame of silence. newSid: 1 when its
 * descriptor is to be computed. */
ZPPAPI ZppStatus zppsDTXDecision_GSMAMR_16s(Zpp16s vadFlag, Zpp16s* dtxMem, Zpp16s* silence, Zpp16s* newSid);

/* What descriptors are made of (TS 26.092 clause 5.1). speech: 160. lsp: 10, unquantised, of the frame's end. lspHist: 80,
 * logEnergyHist: 8, in and out: of the last eight frames, oldest first; at first the LSPs after reset, and zeros. */
ZPPAPI ZppStatus zppsDTXHistory_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* lsp, Zpp16s* lspHist, Zpp16s* logEnergyHist);

/* The silence descriptor of the last eight frames (TS 26.092 clause 5.2). lspHist: 80, logEnergyHist: 8, as above.
 * gainMem: 8, written. sid: 5: starting predictor,
 * three LSF indices, energy index 0..63. */
ZPPAPI ZppStatus zppsSIDQuant_GSMAMR_16s(const Zpp16s* lspHist, const Zpp16s* logEnergyHist, Zpp16s* gainMem, Zpp16s* sid);

/* ---- GSM-AMR: gains (TS 26.090 clauses 5.6.2, 5.8 and 6.1, TS 26.091) ------------------------------------------------- */

/* Quantises the pitch gain at 12.2 kbit/s (TS 26.090 clause 5.6.2). limit: Q14, 32767 for none. gain: Q14, in and out.
 * idx: 0..15. */
ZPPAPI ZppStatus zppsPitchGainQuant_GSMAMR_16s(Zpp16s limit, Zpp16s* gain, Zpp16s* idx);

/* Quantises the gains of a subframe (TS 26.090 clause 5.8).
 * target: 40, before the adaptive codebook. codeTarget: 40, target of the fixed codebook. filteredVector, filteredCode: 40, of
 * the two codebooks. code: 40. residual: 40, LP residual; vector: 40, adaptive-codebook vector (these two at 7.95 kbit/s only).
 * coefficients: 4, from zppsAdaptiveCodebookGainCoeffs_GSMAMR_16s, not at 12.2 kbit/s. limit: of the pitch gain, Q14.
 * gainMem: in and out. adaptMem: 8 words, in and out, at 7.95 kbit/s only, at first 0.
 * pitchGain: Q14, in at 7.95 kbit/s: unquantised; out; left alone at 12.2 kbit/s. codeGain: Q1.
 * idx: 1 index; at 7.95 kbit/s 2, of the pitch and of the code gain. rate: all but 4.75. */
ZPPAPI ZppStatus zppsGainQuant_GSMAMR_16s(const Zpp16s* target, const Zpp16s* codeTarget, const Zpp16s* filteredVector,
                                          const Zpp16s* filteredCode, const Zpp16s* code, const Zpp16s* residual,
                                          const Zpp16s* vector, const Zpp16s* coefficients, Zpp16s limit, Zpp16s* gainMem,
                                          Zpp16s* adaptMem, Zpp16s* pitchGain, Zpp16s* codeGain, Zpp16s* idx,
                                          ZppSpeechRate rate);

/* 4.75 kbit/s, subframes 0 and 2: measures for the next one. target, codeTarget, filteredVector, filteredCode, code,
 * coefficients: as above. gainMem: read. unquantMem: 8, written: the prediction memory of the next subframe. first: 14 words,
 * written for zppsGainQuantSecond_GSMAMR_16s. codeGain: Q1, provisional. */
ZPPAPI ZppStatus zppsGainQuantFirst_GSMAMR_16s(const Zpp16s* target, const Zpp16s* codeTarget, const Zpp16s* filteredVector,
                                               const Zpp16s* filteredCode, const Zpp16s* code, const Zpp16s* coefficients,
                                               const Zpp16s* gainMem, Zpp16s* unquantMem, Zpp16s* first, Zpp16s* codeGain);

/* 4.75 kbit/s, subframes 1 and 3: quantises the gains of both. target, codeTarget, filteredVector, filteredCode, code,
 * coefficients: as above, this subframe's. limit: of the pitch gain, Q14. unquantMem, first: of the subframe before. gainMem:
 * in and out. pitchGain, codeGain: 2 each, Q14 and Q1. idx: 0..255. */
ZPPAPI ZppStatus zppsGainQuantSecond_GSMAMR_16s(const Zpp16s* target, const Zpp16s* codeTarget, const Zpp16s* filteredVector,
                                                const Zpp16s* filteredCode, const Zpp16s* code, const Zpp16s* coefficients,
                                                Zpp16s limit, const Zpp16s* unquantMem, const Zpp16s* first, Zpp16s* gainMem,
                                                Zpp16s* pitchGain, Zpp16s* codeGain, Zpp16s* idx);

/* Decodes a pitch gain of its own (TS 26.090 clause 6.1). idx: its low 4 bits count. gain: Q14. rate: 7.95 and 12.2 kbit/s. */
ZPPAPI ZppStatus zppsPitchGainDecode_GSMAMR_16s(Zpp16s idx, Zpp16s* gain, ZppSpeechRate rate);

/* Decodes the gains of a subframe. idx: the gain index, at 7.95 and 12.2 kbit/s that of the code gain; bits beyond its width
 * are ignored. code: 40, sharpened. gainMem: in and out. pitchGain: Q14, left alone at 7.95 and 12.2 kbit/s. codeGain: Q1.
 * subframe: 0..3. */
ZPPAPI ZppStatus zppsGainDecode_GSMAMR_16s(Zpp16s idx, const Zpp16s* code, Zpp16s* gainMem, Zpp16s* pitchGain, Zpp16s* codeGain,
                                           Zpp16s subframe, ZppSpeechRate rate);

/* Substitute gains in bad frames, limits after them, and the memory of both; every subframe (TS 26.091). gain: in and out, in a
 * bad frame only out. mem: 7 words, in and out: the last five gains, oldest first, the last gain, the last one of a good frame;
 * at first 1640 five times, 0, 16384 for the pitch gain, 1 five times, 0, 1 for the code gain. In a bad frame gainMem moves on
 * too. */
ZPPAPI ZppStatus zppsPitchGainConceal_GSMAMR_16s_I(Zpp16s* gain, Zpp16s* mem, const Zpp16s* condition);
ZPPAPI ZppStatus zppsCodeGainConceal_GSMAMR_16s_I(Zpp16s* gain, Zpp16s* mem, Zpp16s* gainMem, const Zpp16s* condition);

/* The code gain smoothed in stationary noise (TS 26.090 clause 6.1). codeGain: Q1. prevLsf, lsf: 10, of the frame before and of
 * this one.
 * lsfMean: 10, their long-term mean. mem: 9 words, in and out: seven past gains, oldest first, count of changes, count of
 * stationary subframes; at first 0. smoothed: equal to codeGain at 7.4, 7.95 and 12.2 kbit/s. subframe: 0..3. */
ZPPAPI ZppStatus zppsCodeGainSmooth_GSMAMR_16s(Zpp16s codeGain, const Zpp16s* prevLsf, const Zpp16s* lsf, const Zpp16s* lsfMean,
                                               Zpp16s* mem, Zpp16s* smoothed, const Zpp16s* condition, Zpp16s subframe,
                                               ZppSpeechRate rate);

/* ---- GSM-AMR: excitation, synthesis and postfilter (TS 26.090 clause 6) ----------------------------------------------- */

/* Anti-sparseness processing (TS 26.090 clause 6.1). pitchGain: Q14. codeGain: Q1. code: 40, in and out, changed at 4.75 to 6.7
 * and at 7.95 kbit/s. mem: 8
 * words, in and out: five past pitch gains, newest first, last choice 0..2, last code gain, onset count; at first 0. */
ZPPAPI ZppStatus zppsPhaseDispersion_GSMAMR_16s_I(Zpp16s pitchGain, Zpp16s codeGain, Zpp16s* code, Zpp16s* mem,
                                                  const Zpp16s* condition, ZppSpeechRate rate);

/* Level of the excitation in background noise, at 4.75, 5.15 and 5.9 kbit/s, and its history at all (TS 26.091). excitation:
 * 40, in and out. energyHist: 9, in and out, oldest first, at first 0. */
ZPPAPI ZppStatus zppsExcitationControl_GSMAMR_16s_I(Zpp16s* excitation, Zpp16s* energyHist, const Zpp16s* condition,
                                                    ZppSpeechRate rate);

/* Emphasis of the pitch (TS 26.090 clause 6.1). vector: 40, of the adaptive codebook. excitation: 40. sharpening: Q15, acts
 * above 16384. pitchGain: Q14. dst: 40, equal to excitation when nothing acts. */
ZPPAPI ZppStatus zppsPitchEmphasis_GSMAMR_16s(const Zpp16s* vector, const Zpp16s* excitation, Zpp16s sharpening,
                                              Zpp16s pitchGain, Zpp16s* dst, ZppSpeechRate rate);

/* 1/A(z) of order 10 with the standard's saturation at every step. a: 11, Q12. src, dst: len, may be one buffer. hist: 10 past
 * outputs, oldest first, only read.
 * Status: also zppStsBadSize for len below 1; zppStsOverflowWarn, with everything written, when anything saturated. */
ZPPAPI ZppStatus zppsSynthesisFilter_GSMAMR_16s(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist);

/* Detects background noise, once a speech frame (TS 26.091). speech: 160, before the postfilter. pitchGainHist: 9, oldest
 * first. energyHist: 60, in and out, oldest first, at first 0. noiseCount: in and out, at first 0. voicedHangover: 0..10, in
 * and out, at first 0.
 * backgroundNoise: 0 or 1. */
ZPPAPI ZppStatus zppsBackgroundNoise_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* pitchGainHist, Zpp16s* energyHist,
                                                Zpp16s* noiseCount, Zpp16s* voicedHangover, Zpp16s* backgroundNoise);

/* Postfilter of a frame (TS 26.090 clause 6.2.1). a: 4 x 11, Q12. speech: 160, in and out. mem: 22 words, in and out: 10 past
 * inputs, 10 past outputs of the all-pole part, oldest first, the last sample before it, the gain, Q12; at first 4096, the
 * others 0. */
ZPPAPI ZppStatus zppsPostFilter_GSMAMR_16s_I(const Zpp16s* a, Zpp16s* speech, Zpp16s* mem, ZppSpeechRate rate);

/* ---- GSM-AMR: comfort noise (TS 26.092 clause 6) ---------------------------------------------------------------------- */

/* Comfort noise (TS 26.092 clause 6, TS 26.093 clause 5.2). state: any alignment. Frame types: 0 good speech, 1 degraded
 * speech, 2 onset, 3 bad speech, 4 first silence descriptor, 5 update of it, 6 bad silence descriptor, 7 no data. States of the
 * decoder: 0 speech, 1 comfort noise, 2 comfort noise that fades. */
ZPPAPI ZppStatus zppsComfortNoiseGetSize_GSMAMR_16s(Zpp32s* size); /* 416 */
ZPPAPI ZppStatus zppsComfortNoiseInit_GSMAMR_16s(void* state);

/* Takes note of a frame. frameType: 0..7, as above. prevState: after the frame before, at first 1. newState: of this one. */
ZPPAPI ZppStatus zppsDTXReceive_GSMAMR_16s(Zpp16s frameType, Zpp16s prevState, Zpp16s* newState, void* state);

/* A frame of comfort noise, for a newState of 1 or 2. prevState, newState: as of zppsDTXReceive_GSMAMR_16s. sid: 5 words, the
 * descriptor, used after a frame of type 5 only; bits
 * beyond a word's width are ignored. residualMem: 10, lsf: 10, gainMem: 8, in and out, the decoder's. synthMem: 10, in and out,
 * past synthesis, oldest first. speech: 160. a: 4 x 11, Q12, four times the same. lsp: 10, Q15. rate: the speech rate in force.
 */
ZPPAPI ZppStatus zppsComfortNoise_GSMAMR_16s(const Zpp16s* sid, Zpp16s prevState, Zpp16s newState, Zpp16s* residualMem,
                                             Zpp16s* lsf, Zpp16s* gainMem, Zpp16s* synthMem, Zpp16s* speech, Zpp16s* a,
                                             Zpp16s* lsp, void* state, ZppSpeechRate rate);

/* After every speech frame: what comfort noise is made of until a descriptor comes. speech: 160, before the postfilter.
 * lsf: 10. */
ZPPAPI ZppStatus zppsComfortNoiseUpdate_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* lsf, void* state);

#ifdef __cplusplus
}
#endif

#endif
