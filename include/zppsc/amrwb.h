/* zppsc: AMR-WB, 3GPP TS 26.171 to 26.204, ITU-T G.722.2. Include zppsc.h. */
#ifndef ZPPSC_AMRWB_H
#define ZPPSC_AMRWB_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- AMR-WB ---- */

/* State-size queries: *size receives the bytes that the caller provides for the state block, at any alignment.
 * Status: zppStsOk; zppStsNullPointer when size is null. */
ZPPAPI ZppStatus zppsAdaptiveCodebookDecodeGetSize_AMRWB_16s(Zpp32s* size); /* 24 */
ZPPAPI ZppStatus zppsVADGetSize_AMRWB_16s(Zpp32s* size);                    /* 148 */

/* As above for the AMR-WB high-pass filters; *size = 40.
 * order: 2 or 3. Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another order. */
ZPPAPI ZppStatus zppsHighPassFilterGetSize_AMRWB_16s(Zpp32s order, Zpp32s* size);

/* Frame 320 samples at 16 kHz, 256 at 12.8 kHz: four subframes of 64 (80 at 16 kHz). LP order 16; 20 in the high band at 6.60.
 * rate: ZPP_RATE_6600, _8850, _12650, _14250, _15850, _18250, _19850, _23050 or _23850, written below as kbit/s. subframe: 0..3.
 * A buffer that is only read must not overlap one that is written. mem, seed and state are read and rewritten. Where only a
 * null pointer can be refused the status is not told. */

/* ---- Sampling rates and filters (TS 26.190 clauses 5.1, 5.4.1, 6.2 and 6.3.3) ---- */

/* 16 kHz to 12.8 kHz. src: len samples, len a multiple of 5, 5..320; dst: len * 4 / 5; mem: 30 past inputs, oldest first.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsDownSampling_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem);

/* 12.8 kHz to 16 kHz. src: len samples, len a multiple of 4, 4..256; dst: len * 5 / 4; mem: 24 past inputs, oldest first.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
ZPPAPI ZppStatus zppsUpSampling_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem);

/* High-pass filters of order 2 or 3. state: 40 bytes.
 * Init: coef: 2 * order + 1: b0..b[order], then a1..a[order], factors of past outputs that are added; the history becomes 0.
 * Filter: len samples in place, len 1 or more. shift: 2 for coefficients in Q13 (50 Hz and weighted-speech filters: Q12 with
 *   order 3's gain), 1 for Q14 (400 Hz filter, whose output is a sixteenth).
 * Scale: the history times 2^shift, shift -31..31.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for the length; zppStsOutOfRange for the order; zppStsBadScale for the
 * shift. */
ZPPAPI ZppStatus zppsHighPassFilterInit_AMRWB_16s(const Zpp16s* coef, int order, void* state);
ZPPAPI ZppStatus zppsHighPassFilter_AMRWB_16s_I(Zpp16s* srcDst, int len, int shift, void* state);
ZPPAPI ZppStatus zppsHighPassFilterScale_AMRWB_16s(int shift, void* state);

/* *shift: the largest left shift, 0..8, that leaves a bit of headroom to src[n] - gamma * src[n - 1]. src: len samples, len 1 or
 * more; prev: the one before; gamma: Q15. Status: zppStsOk; zppStsNullPointer; zppStsBadSize. */
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

/* ---- LP filters (TS 26.190 clauses 5.3, 6.1 and 6.3) ---- */

/* LP residual. lpc: 17, Q12; src: len samples and 16 before them; dst: len, 1 or more. Status: zppStsOk; zppStsNullPointer;
 * zppStsBadSize. */
ZPPAPI ZppStatus zppsResidualFilter_AMRWB_16s(const Zpp16s* lpc, const Zpp16s* src, Zpp16s* dst, int len);

/* 1/A(z) in place. lpc: order + 1, of the Q format that lpc[0] = 1.0 tells; order: 16 or 20; len 1 or more; mem: the past
 * `order` outputs, oldest first. Status: zppStsOk; zppStsNullPointer; zppStsBadSize for the length; zppStsOutOfRange. */
ZPPAPI ZppStatus zppsSynthesisFilter_AMRWB_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, int len, int order, Zpp16s* mem);

/* 1/A(z) of order 16 in double precision. lpc: 17, as above; src: len samples scaled by 2^scale, scale 0..8, len 1 or more;
 * dst: len outputs, 256 times the unscaled signal in 28 bits; the 16 before it are read.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize; zppStsBadScale. */
ZPPAPI ZppStatus zppsSynthesisFilter_AMRWB_16s32s(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale);

/* ---- Pitch and adaptive codebook (TS 26.190 clauses 5.4 to 5.7 and 6.1, TS 26.191 clause 6.3) ---- */

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
 * target2: 64, the target without the contribution; filteredVector: 64; gain: Q14, 0..1.2, with clip 1 0..0.95; coef: 4:
 * mantissa and exponent of the filtered vector's energy, then of its correlation with the target; select: 0 filtered, 1 plain.
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

/* ---- High band (TS 26.190 clauses 5.10 and 6.3) ---- */

/* Noise of 80 samples with the energy of src: 64, an excitation scaled by 2^scale. seed: 1. */
ZPPAPI ZppStatus zppsHighBandNoise_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int scale, Zpp16s* seed);

/* *gain: Q15, 0.1 at least, from the spectral tilt of src: 64, the synthesis behind the 400 Hz filter. vadHist: frames since
 * the last active one. */
ZPPAPI ZppStatus zppsHighBandGain_AMRWB_16s(const Zpp16s* src, int vadHist, Zpp16s* gain);

/* Index 0..15 of the gain at 23.85 kbit/s. speech, noise: 80 each, behind the 6 to 7 kHz filter; estimate: Q15, the gain from
 * the tilt; weight: Q15, of the measured gain. */
ZPPAPI ZppStatus zppsHighBandGainQuant_AMRWB_16s(const Zpp16s* speech, const Zpp16s* noise, Zpp16s estimate, Zpp16s weight,
                                                 Zpp16s* index);

/* isf: 16, at 12.8 kHz, to isp: 20, Q15, at 16 kHz. */
ZPPAPI ZppStatus zppsISFExtrapolate_AMRWB_16s(const Zpp16s* isf, Zpp16s* isp);

/* Filters of 31 taps in place. len 1 or more. band 0: 6 to 7 kHz, of a quarter of the input; 1: low-pass 7 kHz. mem: 30 past
 * inputs, for band 0 quartered, oldest first. Status: zppStsOk; zppStsNullPointer; zppStsBadSize; zppStsOutOfRange. */
ZPPAPI ZppStatus zppsHighBandFilter_AMRWB_16s_I(Zpp16s* srcDst, int len, int band, Zpp16s* mem);

/* ---- Voice activity and discontinuous transmission (TS 26.192 to 26.194) ---- */

/* Voice activity detection. state: 148 bytes. src: 256, pre-emphasised speech at half its level. toneFlag: 1: the caller's
 * register of pitch gains: shifted right after each open-loop search, bit 14 set where the gain exceeds 0.65; a silent frame
 * clears its upper bits. *vad: 0 or 1. */
ZPPAPI ZppStatus zppsVADInit_AMRWB_16s(void* state);
ZPPAPI ZppStatus zppsVAD_AMRWB_16s(const Zpp16s* src, Zpp16s* toneFlag, Zpp16s* vad, void* state);

/* *logEnergy: the base-2 logarithm of half the energy of src: 256, Q7. */
ZPPAPI ZppStatus zppsLogEnergy_AMRWB_16s(const Zpp16s* src, Zpp16s* logEnergy);

/* The average ISFs of eight frames, outliers replaced. isfHistory: eight vectors of 16, the newest at index hist, 0..7;
 * logEnergyHistory: 8, Q7; distance: 28 and sumDistance: 8, the distances between the frames, in and out; isf: 16; dither: 1
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
