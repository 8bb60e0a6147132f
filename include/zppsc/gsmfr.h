/* zppsc: GSM full rate, 3GPP TS 46.010. Include zppsc.h. */
#ifndef ZPPSC_GSMFR_H
#define ZPPSC_GSMFR_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- GSM full rate (RPE-LTP) ------------------------------------------------------------------------------------------------
 *
 * A frame of 160 samples at 8 kHz has four subframes of 40. LAR: log area ratio, Q14. Memories are the caller's, in and out;
 * zeros at the start of a stream. Where a comment lists no status: zppStsOk, zppStsNullPointer, and zppStsBadSize for a length
 * below 1. There are no warnings.
 * Source: 3GPP TS 46.010 (GSM 06.10), clauses as given; TS 46.032 (GSM 06.32) for voice activity detection, TS 46.012 (GSM
 * 06.12) for silence descriptors.
 */

/* ---- GSM full rate: pre-processing ------------------------------------------------------------------------------------ */

/* Downscaling and offset compensation (clauses 5.2.1, 5.2.2).
 * src: len samples of 13 bits, left-justified; the low 3 bits are ignored. dst: len samples at half the scale of src; may be
 * src. memory: 2 values: the last scaled input, and the recursive part, Q15. */
ZPPAPI ZppStatus zppsOffsetCompensation_GSMFR_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory);

/* dst[n] = src[n] - 0.86 src[n-1] (clause 5.2.3). src: len samples; dst: len samples, may be src. *memory: src[-1]; afterwards
 * the last of src. */
ZPPAPI ZppStatus zppsPreemphasize_GSMFR_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory);

/* ---- GSM full rate: LPC analysis -------------------------------------------------------------------------------------- */

/* Autocorrelation with dynamic scaling (clause 5.2.4). srcDst: the 160 samples of a frame, scaled down by 2^scale with rounding
 * for the sums and up again, without saturation: low bits are lost, and 32760 and more become -32768 at scale 4.
 * autoCorr: 9 lags, doubled sums. *scale: 0..4. */
ZPPAPI ZppStatus zppsAutoCorr_GSMFR_16s32s_I(Zpp16s* srcDst, Zpp32s* autoCorr, Zpp32s* scale);

/* Schur recursion (clause 5.2.5). autoCorr: 9 lags, none of a magnitude above that of lag 0; what others give is of no use.
 * refl: 8 reflection coefficients, Q15; 0 from the first unstable stage on. */
ZPPAPI ZppStatus zppsSchur_GSMFR_32s16s(const Zpp32s* autoCorr, Zpp16s* refl);

/* Reflection coefficients to LAR (clause 5.2.6). refl: 8, Q15. lar: 8, -26620..26620; may be refl. */
ZPPAPI ZppStatus zppsReflToLAR_GSMFR_16s(const Zpp16s* refl, Zpp16s* lar);

/* Quantises LAR (clause 5.2.7). lar: 8. larCode: 8 codes from 0 to 63, 63, 31, 31, 15, 15, 7, 7; may be lar. */
ZPPAPI ZppStatus zppsLARQuant_GSMFR_16s(const Zpp16s* lar, Zpp16s* larCode);

/* ---- GSM full rate: short-term filters -------------------------------------------------------------------------------- */

/* LAR of their codes (clause 5.2.8). larCode: 8, of which the low 6, 6, 5, 5, 4, 4, 3, 3 bits count. lar: 8; may be larCode. */
ZPPAPI ZppStatus zppsLARDecode_GSMFR_16s(const Zpp16s* larCode, Zpp16s* lar);

/* Interpolation with the previous frame and conversion to reflection coefficients (clause 5.2.9). prevLar, lar: 8 each, as
 * decoded. refl: 4 sets of 8, Q15, -32767..32767, for the samples 0..12, 13..26, 27..39 and 40..159. */
ZPPAPI ZppStatus zppsLARToRefl_GSMFR_16s(const Zpp16s* prevLar, const Zpp16s* lar, Zpp16s* refl);

/* Analysis lattice of order 8 (clause 5.2.10). refl: 8, Q15. srcDst: len samples. memory: 8 values. */
ZPPAPI ZppStatus zppsShortTermAnalysisFilter_GSMFR_16s_I(const Zpp16s* refl, Zpp16s* srcDst, int len, Zpp16s* memory);

/* Synthesis lattice of order 8 (clause 5.3.3). refl: 8, Q15. src: len samples; dst: len samples, may be src. memory: 8
 * values. */
ZPPAPI ZppStatus zppsShortTermSynthesisFilter_GSMFR_16s(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len,
                                                        Zpp16s* memory);

/* ---- GSM full rate: Long-term predictor ------------------------------------------------------------------------------- */

/* Lag and gain (clause 5.2.11). src: 40 samples of the short-term residual. history: the last 120 samples of the reconstructed
 * one, oldest first. *lag: 40..120, the smallest of equals; 40 where no correlation is positive. *gain: code 0..3. */
ZPPAPI ZppStatus zppsLTPSearch_GSMFR_16s(const Zpp16s* src, const Zpp16s* history, Zpp16s* lag, Zpp16s* gain);

/* Estimate of a subframe (clauses 5.2.12, 5.3.2). history: as above. dst: 40 samples.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadCodedParam for a lag outside 40..120 or a gain outside 0..3. */
ZPPAPI ZppStatus zppsLTPPredict_GSMFR_16s(const Zpp16s* history, Zpp16s* dst, Zpp16s lag, Zpp16s gain);

/* ---- GSM full rate: Regular pulse excitation -------------------------------------------------------------------------- */

/* Weighting filter (clause 5.2.13). src, dst: 40 samples each; samples outside the subframe count as zero. */
ZPPAPI ZppStatus zppsWeightingFilter_GSMFR_16s(const Zpp16s* src, Zpp16s* dst);

/* Grid selection and quantisation of the pulses (clauses 5.2.14, 5.2.15). src: 40 weighted samples. pulses: 13 codes 0..7.
 * *grid: 0..3. *amplitude: code 0..63. *maximum: the largest magnitude on the grid, before coding, 0..32767. */
ZPPAPI ZppStatus zppsRPEQuant_GSMFR_16s(const Zpp16s* src, Zpp16s* pulses, Zpp16s* grid, Zpp16s* amplitude, Zpp16s* maximum);

/* Pulses of their codes (clauses 5.2.16, 5.2.17). pulses: 13 codes, of which the low 3 bits count. amplitude: 0..63; grid:
 * 0..3. dst: 40 samples, zero off the grid.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadScale for an amplitude outside 0..63; zppStsBadCodedParam for a grid outside
 * 0..3. */
ZPPAPI ZppStatus zppsRPEQuantDecode_GSMFR_16s(const Zpp16s* pulses, Zpp16s* dst, Zpp16s amplitude, Zpp16s grid);

/* ---- GSM full rate: post-processing ----------------------------------------------------------------------------------- */

/* De-emphasis, upscaling by 2 and truncation to 13 bits (clauses 5.3.5 to 5.3.7). srcDst: len samples. *memory: the last
 * sample before upscaling. */
ZPPAPI ZppStatus zppsDeemphasize_GSMFR_16s_I(Zpp16s* srcDst, int len, Zpp16s* memory);

/* A frame in one call: the synthesis lattice with the four sets of coefficients of zppsLARToRefl_GSMFR_16s, each for its samples,
 * and de-emphasis of its output, in little more than the time of the lattice. refl: 32, Q15. src, dst: 160 samples; dst may be
 * src. memory: 8 values of the lattice. *emphasis: the memory of the de-emphasis. Status: zppStsOk, zppStsNullPointer. */
ZPPAPI ZppStatus zppsSpeechSynthesis_GSMFR_16s(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, Zpp16s* memory,
                                               Zpp16s* emphasis);

/* ---- GSM full rate: Voice activity detection and comfort noise -------------------------------------------------------- */

/* *size = 320, bytes of a detector's state. Status: zppStsOk, zppStsNullPointer. */
ZPPAPI ZppStatus zppsVADGetSize_GSMFR_16s(Zpp32s* size);

/* Writes the start values of the standard, all of the 320 bytes. direction: 0 uplink, without tone detection; 1 downlink.
 * Status: zppStsOk, zppStsNullPointer, zppStsOutOfRange. */
ZPPAPI ZppStatus zppsVADInit_GSMFR_16s(void* state, Zpp32s direction);

/* Decides about one frame, behind its encoding (TS 46.032).
 * autoCorr, scale: 9 lags and their scale, 0..4, as zppsAutoCorr_GSMFR_16s32s_I gives them; lags that no signal has give no
 * useful decision, but do no harm. offsetFree: 160 samples behind offset compensation, before pre-emphasis. lags: the frame's 4
 * LTP lags.
 * *vad: 1 where there is speech, else 0.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadScale for a scale outside 0..4; zppStsBadCodedParam for a lag outside 40..120.
 * */
ZPPAPI ZppStatus zppsVAD_GSMFR_16s(const Zpp32s* autoCorr, const Zpp16s* offsetFree, const Zpp16s* lags, Zpp16s* vad,
                                   Zpp32s scale, void* state);

/* Silence descriptor of four noise frames (TS 46.012 clause 5.2). lar: 4 sets of 8 LAR before quantisation. maxima: 16 block
 * maxima as zppsRPEQuant_GSMFR_16s gives them; negative ones count as 0. larCode: 8 codes of the mean LAR. *amplitude: code of
 * the mean maximum. Means round half up. */
ZPPAPI ZppStatus zppsSIDQuant_GSMFR_16s(const Zpp16s* lar, const Zpp16s* maxima, Zpp16s* larCode, Zpp16s* amplitude);

#ifdef __cplusplus
}
#endif

#endif
