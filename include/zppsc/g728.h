/* zppsc: ITU-T G.728. Include zppsc.h. */
#ifndef ZPPSC_G728_H
#define ZPPSC_G728_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- G.728: low-delay CELP in the fixed-point arithmetic of Annex G, concealment of Annex I ---------------------------------
 *
 * The codec works on vectors of 5 samples; 4 vectors are an adaptation cycle (20 samples, 2.5 ms at 8 kHz). Signals and
 * histories are oldest sample first. Forms of data:
 *
 * - block: 6 words: 5 mantissas, oldest first, and their common Q (value = mantissa * 2^-Q; Q of any sign).
 * - gain: 2 words: positive normalised mantissa (16384..32767), and its Q.
 * - logGain: dB less 32 dB, Q9: -16384 is 0 dB (gain 1), 14336 is 60 dB.
 * - Predictor coefficients are a1, a2 ... of A(z) = 1 + a1 z^-1 + a2 z^-2 + ..., Q14 unless told otherwise.
 * - rate: ZPP_RATE_9600, ZPP_RATE_12800 or ZPP_RATE_16000. The codebooks of the two lower rates (Annex H) are not part of the
 *   library: after all other checks they give zppStsBadArgument.
 *
 * Any 16-bit value is allowed as a Q of a block or gain; those beyond +-64 count as +-64. State blocks are the caller's, of any
 * alignment. Where a comment lists no status, the function returns zppStsOk, or zppStsNullPointer for a null pointer. Nothing
 * is written on an error. */

/* ---- Weighting filter W(z) of order 10 on the input speech (clause 3.3, block 4) ----------------------------------------- */

/* *size = 64 */
ZPPAPI ZppStatus zppsIIR16sGetStateSize_G728_16s(Zpp32s* size);
/* Zero memory. */
ZPPAPI ZppStatus zppsIIR16sInit_G728_16s(void* state);
/* dst = W(z) src, 5 samples of any common Q. coefZero, coefPole: 10 words each. dst may be src. */
ZPPAPI ZppStatus zppsIIR16s_G728_16s(const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* src, Zpp16s* dst,
                                     void* state);

/* ---- Synthesis filter of order 50 (clause 4.4, block 32) ----------------------------------------------------------------- */

/* *size = 144 */
ZPPAPI ZppStatus zppsSynthesisFilterGetStateSize_G728_16s(Zpp32s* size);
/* Ten zero vectors of Q 16. */
ZPPAPI ZppStatus zppsSynthesisFilterInit_G728_16s(void* state);
/* One vector of speech: what the memory gives by itself plus the response to exc, clipped to +-4095, normalised to 14 bits.
 * coef: 50 words. exc: block. dst: block; may be exc. erased: 0, or 1 in an erased frame (Annex I), where the Q of the result
 * is at most 16.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another value of erased. */
ZPPAPI ZppStatus zppsSynthesisFilter_G728_16s(const Zpp16s* coef, const Zpp16s* exc, Zpp16s* dst, Zpp32s erased, void* state);

/* ---- Synthesis and weighting filter in cascade (clause 3.5, blocks 9, 10 and 22) ----------------------------------------- */

/* *size = 208 */
ZPPAPI ZppStatus zppsCombinedFilterGetStateSize_G728_16s(Zpp32s* size);
/* As the synthesis filter, and ten zero outputs of the weighting filter. */
ZPPAPI ZppStatus zppsCombinedFilterInit_G728_16s(void* state);
/* Zero-input response of the cascade. coef: 50 words; coefZero, coefPole: 10 words each; dst: 5 words, Q2. The state keeps both
 * filters' responses for the function below: the two are called in turns. */
ZPPAPI ZppStatus zppsCombinedFilterZeroInput_G728_16s(const Zpp16s* coef, const Zpp16s* coefZero, const Zpp16s* coefPole,
                                                      Zpp16s* dst, void* state);
/* Adds the responses of both filters at rest to exc, a block, which completes the memories. Of coef, coefZero and coefPole the
 * first 4 words are read. dst: block, the vector of quantised speech, as that of the synthesis filter; may be exc. */
ZPPAPI ZppStatus zppsCombinedFilterZeroState_G728_16s(const Zpp16s* coef, const Zpp16s* coefZero, const Zpp16s* coefPole,
                                                      const Zpp16s* exc, Zpp16s* dst, void* state);

/* ---- Hybrid window and autocorrelation (clauses 3.3, 3.7 and 3.8, blocks 36, 43 and 49) -------------------------------------
 *
 * The window covers n = order + lenNew + lenNonRec samples and moves on by lenNew. The codec's geometries (order, lenNew,
 * lenNonRec, decay): 50, 20, 35, 2 for the synthesis filter, 10, 20, 30, 1 for the weighting filter, 10, 4, 20, 2 for the log
 * gain. */

/* *size = 16 + 2 (order + 1) + 4 n + 2 ceil(n / 5), rounded up to a multiple of 4. order: 1..50; lenNew, lenNonRec: 1 or more,
 * n 256 at most.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize unless order is 1..50, lenNew and lenNonRec are 1 or more and n is 256 or
 * less. */
ZPPAPI ZppStatus zppsWinHybridGetStateSize_G728_16s(Zpp32s order, Zpp32s lenNew, Zpp32s lenNonRec, Zpp32s* size);
/* Copies the window; zero history, of Q 16, and zero recursive sums. order, lenNew, lenNonRec: as above. window: n words, Q15,
 * word k for the k-th newest sample.
 * decay: the recursive sums are multiplied by 1 - 2^-decay at each call.
 * Status: as above; zppStsBadScale unless decay is 1..15. */
ZPPAPI ZppStatus zppsWinHybridInit_G728_16s(const Zpp16s* window, Zpp32s order, Zpp32s lenNew, Zpp32s lenNonRec, Zpp32s decay,
                                            void* state);
/* One analysis. src: the lenNew newest samples, of any Q common to all calls. dst: order + 1 autocorrelations, normalised by
 * lag 0. *valid: 1, or 0 when the last lag is zero before it is rounded, which asks to keep the predictor of before; dst and
 * the state are written in either case. */
ZPPAPI ZppStatus zppsWinHybrid_G728_16s(const Zpp16s* src, Zpp16s* dst, Zpp32s* valid, void* state);
/* The same for blocks. src: lenNew / 5 blocks, oldest first. *valid: as above. A state serves one of the two forms.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize when lenNew or n is not a multiple of 5. */
ZPPAPI ZppStatus zppsWinHybridBlock_G728_16s(const Zpp16s* src, Zpp16s* dst, Zpp32s* valid, void* state);

/* ---- Levinson-Durbin recursion and bandwidth expansion (blocks 37, 38, 44, 45, 50, 51 and 85) ---------------------------- */

/* The recursion from its beginning.
 * src: order + 1 autocorrelations. order: 1..50. dst: order predictor coefficients, Q *scale. *rc1: first reflection
 * coefficient, Q15.
 * *residual: prediction error, in the scale of src. *scale: 15, 14 or 13.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize unless order is 1..50; zppStsLpcCalcErr, nothing written, for a breakdown
 * at one of the first eleven stages (stage m computes the predictor of order m): a prediction error or an energy that is not
 * positive, a reflection coefficient of 1 or more, a coefficient of 4 or more; zppStsOverflowWarn for a breakdown at a later
 * stage: dst holds the predictor of the stages completed with zeros behind it, *scale and *residual are its own. The standard
 * keeps the predictor of before in both cases. */
ZPPAPI ZppStatus zppsLevinsonDurbin_G728_16s_Sfs(const Zpp16s* src, int order, Zpp16s* dst, Zpp16s* rc1, Zpp16s* residual,
                                                 int* scale);
/* Continues a recursion that has reached startOrder. srcDst: startOrder coefficients in, order out. *residual, *scale: in and
 * out. startOrder 0 begins anew: *residual and srcDst are only written, *scale is checked but not used. *rc1 is written by a
 * new recursion only. order: 1..50; startOrder: 0..order; where both are the same nothing changes.
 * Status: as above; zppStsOutOfRange unless startOrder is 0..order; zppStsBadScale unless *scale is 0..15. */
ZPPAPI ZppStatus zppsLevinsonDurbin_G728_16s_ISfs(const Zpp16s* src, int startOrder, int order, Zpp16s* srcDst, Zpp16s* rc1,
                                                  Zpp16s* residual, int* scale);
/* dst[i] = src[i] * weight[i], Q14. src: len words, Q scale; weight: len words, Q14; scale: 13..15. dst may be src.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsBadScale unless scale is 13, 14 or 15;
 * zppStsOverflowWarn, nothing written, when a result does not fit. */
ZPPAPI ZppStatus zppsWeightLPC_G728_16s_Sfs(const Zpp16s* src, const Zpp16s* weight, Zpp16s* dst, int len, int scale);

/* ---- Backward gain adapter (clause 3.8, blocks 20 and 30) ---------------------------------------------------------------- */

/* Predicts the gain of the next vector (blocks 46 to 48). coef: 10 words; src: the ten last logGains, oldest first.
 * previous: null, or the logGain predicted for the vector before, over which the result may grow by 2 dB at most (after an
 * erasure).
 * logGain: one word; gain: 2 words. */
ZPPAPI ZppStatus zppsLogGainPredict_G728_16s(const Zpp16s* coef, const Zpp16s* src, const Zpp16s* previous, Zpp16s* logGain,
                                             Zpp16s* gain);
/* logGain of the scaled excitation (blocks 39, 40, 67, by tables): *dst = logGain plus the level of the code vector, -16384 or
 * more. index: 0..1023, as the search gives it.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another rate; zppStsBadCodedParam unless index is 0..1023;
 * zppStsBadArgument for a rate without codebook. */
ZPPAPI ZppStatus zppsLogGainUpdate_G728_16s(Zpp16s logGain, Zpp16s* dst, Zpp32s index, Zpp32s rate);

/* ---- Excitation codebook (clause 3.9, blocks 12 to 19, 21, 24, 29 and 31) ------------------------------------------------ */

/* Impulse response of the cascade (block 12): dst = 5 words, Q13, dst[0] = 8192. Of coef, coefZero and coefPole the first 4
 * words are read. */
ZPPAPI ZppStatus zppsImpulseResponse_G728_16s(const Zpp16s* coef, const Zpp16s* coefZero, const Zpp16s* coefPole, Zpp16s* dst);
/* Energies of the 128 shape vectors filtered by the impulse response src (blocks 14, 15). src: 5 words, Q13; dst: 128 words,
 * Q5. */
ZPPAPI ZppStatus zppsShapeEnergy_G728_16s(const Zpp16s* src, Zpp16s* dst);
/* Target divided by the gain (block 16). src: 5 words, Q2; gain: 2 words; dst: block normalised to 16 bits. */
ZPPAPI ZppStatus zppsTargetNormalize_G728_16s(const Zpp16s* src, const Zpp16s* gain, Zpp16s* dst);
/* Best shape and gain (blocks 13, 17, 18). target: block; response: 5 words, Q13; energy: 128 words, Q5.
 * *index: shape * 8 + gain, 0..1023; bit 2 of the gain is its sign. The first of equally good shapes is taken.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another rate; zppStsBadArgument for a rate without codebook. */
ZPPAPI ZppStatus zppsCodebookSearch_G728_16s(const Zpp16s* target, const Zpp16s* response, const Zpp16s* energy, Zpp32s* index,
                                             Zpp32s rate);
/* Gain-scaled code vector (blocks 19, 21 and 29, 31). gain: 2 words; dst: block; index: 0..1023. Status as
 * zppsLogGainUpdate_G728_16s. */
ZPPAPI ZppStatus zppsExcitationVector_G728_16s(const Zpp16s* gain, Zpp16s* dst, Zpp32s index, Zpp32s rate);
/* dst = the block src as 5 words of Q scale, rounded and saturated.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadScale unless scale is 0..15. */
ZPPAPI ZppStatus zppsConvertBlock_G728_16s_Sfs(const Zpp16s* src, Zpp16s* dst, int scale);

/* ---- Postfilter adapter (clause 4.7, blocks 81 to 84) -------------------------------------------------------------------- */

/* *size = 176 */
ZPPAPI ZppStatus zppsPostFilterAdapterGetStateSize_G728(Zpp32s* size);
/* Zero memories, pitch period 50. */
ZPPAPI ZppStatus zppsPostFilterAdapterInit_G728(void* state);
/* LPC inverse filter of order 10 (block 81) on 5 samples. coef: 10 words, Q13; src: decoded speech, Q2; dst: residual, Q1; may
 * be src. */
ZPPAPI ZppStatus zppsLPCInverseFilter_G728_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, void* state);
/* Pitch period (block 82), once a cycle. *pitch: 20..140. src: the 20 newest residual samples, Q1; the 220 before the pointer
 * are read.
 * Correlations beyond 32 bits count as the largest value of 32 bits. */
ZPPAPI ZppStatus zppsPitchPeriod_G728_16s(const Zpp16s* src, Zpp32s* pitch, void* state);
/* Long-term postfilter coefficients (blocks 83, 84). pitch: 20..140. src: 100 samples of decoded speech, Q0; the pitch samples
 * before the pointer are read. *tap: single-tap pitch predictor, Q14, 0..16384. ltp: 2 words: the factor of a sample, Q14, and
 * that of the sample a pitch period before, Q16.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange unless pitch is 20..140. */
ZPPAPI ZppStatus zppsLongTermPostFilterCoeffs_G728_16s(const Zpp16s* src, Zpp32s pitch, Zpp16s* tap, Zpp16s* ltp);

/* ---- Postfilter (clause 4.6, blocks 71 to 77) ---------------------------------------------------------------------------- */

/* *size = 64 */
ZPPAPI ZppStatus zppsPostFilterGetStateSize_G728_16s(Zpp32s* size);
/* Zero memories, gain 1. */
ZPPAPI ZppStatus zppsPostFilterInit_G728_16s(void* state);
/* Long-term and short-term postfilter, tilt compensation and gain control on 5 samples. ltp: 2 words; coefZero, coefPole: 10
 * words each; tilt: Q14. src: 5 samples, Q2; history: points at these samples' place in the decoded speech of Q0, of which
 * history[-pitch .. 4 - pitch] is read; pitch: 20..140. dst: 5 samples, Q2; may be src.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange unless pitch is 20..140. */
ZPPAPI ZppStatus zppsPostFilter_G728_16s(const Zpp16s* ltp, const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* src,
                                         const Zpp16s* history, Zpp16s* dst, Zpp32s pitch, Zpp16s tilt, void* state);

/* ---- Frame-erasure concealment (Annex I) --------------------------------------------------------------------------------- */

/* State of the excitation of the last 140 samples and of the extrapolation: *size = 384 */
ZPPAPI ZppStatus zppsExtrapolationGetStateSize_G728_16s(Zpp32s* size);
/* Zero excitation, first state of the random generator. */
ZPPAPI ZppStatus zppsExtrapolationInit_G728_16s(void* state);
/* Keeps a received vector's excitation. exc: block. */
ZPPAPI ZppStatus zppsExtrapolationUpdate_G728_16s(const Zpp16s* exc, void* state);
/* To be called before the first vector of an erasure, with step 0, and after every 10 ms of it, with step 1, 2 ... pitch and
 * tap (Q14) of the postfilter adapter are used by step 0 only: the erasure is voiced when tap exceeds 7022.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange unless pitch is 20..140 and step 0 or more. */
ZPPAPI ZppStatus zppsExtrapolationSetup_G728_16s(Zpp32s pitch, Zpp16s tap, Zpp32s step, void* state);
/* One vector of extrapolated excitation, which is kept as well. dst: block. logGain: one word, its level. */
ZPPAPI ZppStatus zppsExtrapolation_G728_16s(Zpp16s* dst, Zpp16s* logGain, void* state);

#ifdef __cplusplus
}
#endif

#endif
