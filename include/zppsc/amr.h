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
 *   to 143 and to the rate's smallest.
 * vector: 40, a copy of the vector. badFrame: not 0 for an erased frame. rate: ZPP_RATE_DTX decodes as ZPP_RATE_10200.
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

#ifdef __cplusplus
}
#endif

#endif
