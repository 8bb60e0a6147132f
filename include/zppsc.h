/* zppsc: bit-exact speech-coding primitives with a C ABI.
 *
 * Every function performs one step of a speech codec on buffers that the caller owns. The integer functions reproduce the
 * fixed-point arithmetic of the standard that they name bit for bit. The library allocates nothing, keeps no hidden state,
 * prints nothing, and may be called from any number of threads as long as two calls do not share an output or a state block.
 *
 * Conventions, common to all functions:
 *
 * - Arguments: sources, destinations, lengths, then controls (rate, mode, scale factor); state blocks as each function says.
 *   Lengths count elements, never bytes. Buffers may have any alignment that their element type allows; state blocks any at all.
 * - Source and destination must not overlap unless they are the very same buffer or the function says otherwise.
 * - Checks run in a fixed order: null pointers, lengths, enumerated values, scale factors and shifts, ranges of coded
 *   parameters. The first that fails decides the status. On an error (a negative status) nothing has been written.
 *   A positive status is a warning: the function says what it has written.
 * - Names starting with an underscore are internal steps that codecs share: exported, but they trust their arguments unless
 *   their comment lists a status.
 * - "Qn" means a fixed-point value times 2^n. sat16 clamps to -32768..32767, sat32 to -2147483648..2147483647.
 * - "_I": in place. "Sfs": the exact result times 2^-scaleFactor, rounded to nearest with ties to even, saturated; factors
 *   beyond +-31 act as +-31. "NR": the final narrowing rounds half up.
 */
#ifndef ZPPSC_H
#define ZPPSC_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define ZPPAPI __attribute__((visibility("default")))
#else
#define ZPPAPI
#endif

/* ---- Types ------------------------------------------------------------------------------------------------------------- */

typedef uint8_t Zpp8u;   /* companded samples, bit-stream bytes */
typedef int16_t Zpp16s;  /* speech samples, fixed-point values */
typedef uint16_t Zpp16u;
typedef int32_t Zpp32s;  /* accumulators, energies, correlations */
typedef uint32_t Zpp32u; /* code words, sizes */
typedef int64_t Zpp64s;
typedef float Zpp32f;
typedef double Zpp64f;

typedef struct {
  Zpp16s re, im;
} Zpp16sc;

/* Result of every function: negative error, zero success, positive warning. */
typedef Zpp32s ZppStatus;

enum {
  zppStsOk = 0,
  zppStsBadArgument = -5,    /* a value that the operation cannot use */
  zppStsBadSize = -6,        /* a length below 1, or not one of those that the function supports */
  zppStsOutOfRange = -7,     /* a rate, mode, flag or subframe index that the function does not accept */
  zppStsNullPointer = -8,    /* a required pointer is null */
  zppStsBadCodedParam = -11, /* a parameter from the bit stream is outside the range that the codec defines */
  zppStsOutOfDomain = -12,   /* an input value outside the operation's domain */
  zppStsBadScale = -13,      /* a scale factor that the function does not support */
  zppStsShiftErr = -32,      /* a shift count below 0 */
  zppStsLpcCalcErr = -117,   /* the Levinson-Durbin recursion met an unstable stage early on */
  zppStsOverflowWarn = 12,   /* the computation overflowed; each function says what it has written */
  zppStsLSFLowClamped = 13,  /* the LSF stability step raised the lowest LSF */
  zppStsLSFHighClamped = 14, /* the LSF stability step lowered the highest LSF */
  zppStsLSFBothClamped = 15  /* both */
};

/* Codec rates, by ascending bit rate. A function accepts those of its own codec. */
typedef enum {
  ZPP_RATE_4750 = 0,   /* GSM-AMR */
  ZPP_RATE_5150 = 1,   /* GSM-AMR */
  ZPP_RATE_5300 = 2,   /* G.723.1 */
  ZPP_RATE_5900 = 3,   /* GSM-AMR */
  ZPP_RATE_6300 = 4,   /* G.723.1 */
  ZPP_RATE_6600 = 5,   /* AMR-WB */
  ZPP_RATE_6700 = 6,   /* GSM-AMR */
  ZPP_RATE_7400 = 7,   /* GSM-AMR */
  ZPP_RATE_7950 = 8,   /* GSM-AMR */
  ZPP_RATE_8850 = 9,   /* AMR-WB */
  ZPP_RATE_9600 = 10,  /* G.728 */
  ZPP_RATE_10200 = 11, /* GSM-AMR */
  ZPP_RATE_12200 = 12, /* GSM-AMR */
  ZPP_RATE_12650 = 13, /* AMR-WB */
  ZPP_RATE_12800 = 14, /* G.728 */
  ZPP_RATE_14250 = 15, /* AMR-WB */
  ZPP_RATE_15850 = 16, /* AMR-WB */
  ZPP_RATE_16000 = 17, /* G.728, G.726 */
  ZPP_RATE_18250 = 18, /* AMR-WB */
  ZPP_RATE_19850 = 19, /* AMR-WB */
  ZPP_RATE_23050 = 20, /* AMR-WB */
  ZPP_RATE_23850 = 21, /* AMR-WB */
  ZPP_RATE_24000 = 22, /* G.726 */
  ZPP_RATE_32000 = 23, /* G.726 */
  ZPP_RATE_40000 = 24, /* G.726 */
  ZPP_RATE_DTX = 25    /* silence-descriptor frame: GSM-AMR, AMR-WB */
} ZppSpeechRate;

typedef struct {
  Zpp32s major;          /* 4 */
  Zpp32s minor;          /* 1 */
  Zpp32s majorBuild;     /* 12 */
  Zpp32s build;          /* 5 */
  char targetCpu[4];     /* processor level of the build: "px", "a6" (SSE), "w7" (SSE2) or "t7" (SSE3), two zero bytes */
  const char* Name;      /* file name of the shared object */
  const char* Version;   /* "v4.1" */
  const char* BuildDate; /* "Jul 22 2004" */
} ZppLibraryVersion;

/* ---- Library frame ------------------------------------------------------------------------------------------------------- */

/* The version record of the library: the same static, read-only record on every call. */
ZPPAPI const ZppLibraryVersion* zppscGetLibVersion(void);

/* State-size queries: *size receives the bytes that the caller provides for the state block, at any alignment.
 * Status: zppStsOk; zppStsNullPointer when size is null. */
ZPPAPI ZppStatus zppsHighPassFilterSize_G729(Zpp32s* size);                 /* 24 */
ZPPAPI ZppStatus zppsAdaptiveCodebookDecodeGetSize_AMRWB_16s(Zpp32s* size); /* 24 */
ZPPAPI ZppStatus zppsVADGetSize_AMRWB_16s(Zpp32s* size);                    /* 148 */
ZPPAPI ZppStatus zppsPhaseDispersionGetStateSize_G729D_16s(Zpp32s* size);   /* 20 */
ZPPAPI ZppStatus zppsWinHybridGetStateSize_G729E_16s(Zpp32s* size);         /* 124 */
ZPPAPI ZppStatus zppsWinHybridGetStateSize_G729E_32f(Zpp32s* size);         /* 124 */
ZPPAPI ZppStatus zppsIIR16sGetStateSize_G728_16s(Zpp32s* size);             /* 64 */
ZPPAPI ZppStatus zppsPostFilterGetStateSize_G728_16s(Zpp32s* size);         /* 64 */
ZPPAPI ZppStatus zppsSynthesisFilterGetStateSize_G728_16s(Zpp32s* size);    /* 144 */
ZPPAPI ZppStatus zppsCombinedFilterGetStateSize_G728_16s(Zpp32s* size);     /* 208 */
ZPPAPI ZppStatus zppsPostFilterAdapterGetStateSize_G728(Zpp32s* size);      /* 176 */

/* As above for the AMR-WB high-pass filters; *size = 40.
 * order: 2 or 3. Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another order. */
ZPPAPI ZppStatus zppsHighPassFilterGetSize_AMRWB_16s(Zpp32s order, Zpp32s* size);

/* ---- Vector primitives ----------------------------------------------------------------------------------------------------
 *
 * Element-wise operations and reductions on len elements, len of 1 or more; n runs from 0 to len - 1.
 * Where a comment lists no status, the function returns zppStsOk, zppStsNullPointer for a null pointer, or zppStsBadSize for
 * len below 1. Integer results saturate. Nothing is read or written outside the len elements.
 */

/* dst[n] = 0 */
ZPPAPI ZppStatus zppsZero_16s(Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsZero_32f(Zpp32f* dst, int len);
ZPPAPI ZppStatus zppsZero_16sc(Zpp16sc* dst, int len);

/* dst[n] = value */
ZPPAPI ZppStatus zppsSet_16s(Zpp16s value, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsSet_32s(Zpp32s value, Zpp32s* dst, int len);

/* dst[n] = src[n] */
ZPPAPI ZppStatus zppsCopy_16s(const Zpp16s* src, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsCopy_32f(const Zpp32f* src, Zpp32f* dst, int len);

/* dst[n] = src[n]; the buffers may overlap in any way: the result is as if src were copied first. */
ZPPAPI ZppStatus zppsMove_16s(const Zpp16s* src, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsMove_32f(const Zpp32f* src, Zpp32f* dst, int len);

/* dst[n] = |src[n]|, 32767 for -32768 */
ZPPAPI ZppStatus zppsAbs_16s(const Zpp16s* src, Zpp16s* dst, int len);

/* dst[n] = sat16(src1[n] + src2[n]); _I: srcDst[n] += src[n], saturated */
ZPPAPI ZppStatus zppsAdd_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsAdd_16s_I(const Zpp16s* src, Zpp16s* srcDst, int len);
ZPPAPI ZppStatus zppsAdd_32f_I(const Zpp32f* src, Zpp32f* srcDst, int len);

/* dst[n] = sat16(src2[n] - src1[n]): the first source is the subtrahend; _I: srcDst[n] -= src[n], saturated */
ZPPAPI ZppStatus zppsSub_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsSub_16s_I(const Zpp16s* src, Zpp16s* srcDst, int len);
ZPPAPI ZppStatus zppsSub_32f_I(const Zpp32f* src, Zpp32f* srcDst, int len);

/* dst[n] = sat16((value - src[n]) * 2^-scaleFactor), Sfs rule, any scale factor */
ZPPAPI ZppStatus zppsSubCRev_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor);

/* dst[n] = src1[n] * src2[n] */
ZPPAPI ZppStatus zppsMul_32f(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len);

/* srcDst[n] *= value */
ZPPAPI ZppStatus zppsMulC_32f_I(Zpp32f* srcDst, Zpp32f value, int len);

/* dst[n] = sat32(src1[n] * src2[n] * 2^-scaleFactor), Sfs rule, any scale factor */
ZPPAPI ZppStatus zppsMul_16s32s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len, int scaleFactor);

/* dst[n] = sat16((src1[n] * src2[n] + half) >> scaleFactor), half = 2^(scaleFactor-1), 0 for scale factor 0.
 * scaleFactor: 0 or more; from 32 on every result is 0. Status also: zppStsBadScale for a negative scale factor. */
ZPPAPI ZppStatus zppsMul_NR_16s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor);
ZPPAPI ZppStatus zppsMul_NR_16s_ISfs(const Zpp16s* src, Zpp16s* srcDst, int len, int scaleFactor);

/* dst[n] = sat16((src[n] * value + half) >> scaleFactor), as above. Status also: zppStsBadScale. */
ZPPAPI ZppStatus zppsMulC_NR_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor);
ZPPAPI ZppStatus zppsMulC_NR_16s_ISfs(Zpp16s* srcDst, Zpp16s value, int len, int scaleFactor);

/* Weighting by powers of a constant: dst[0] = src[0]; dst[n] = sat16((src[n] * p[n] + half) >> scaleFactor) with p[1] = value
 * and p[n+1] = (p[n] * value + half) >> scaleFactor cut to 16 bits. With scale factor 15 this is the bandwidth expansion of LP
 * coefficients, a[n] * gamma^n (ITU-T G.729 clause 3.3).
 * Checks pointers, then the scale factor (0 or more, else zppStsBadScale), then the length. */
ZPPAPI ZppStatus zppsMulPowerC_NR_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor);

/* dst[n] = src[n] << shift; bits shifted out are lost, a shift beyond the width gives zeros.
 * Status also: zppStsShiftErr for a shift below 0. */
ZPPAPI ZppStatus zppsLShiftC_16s(const Zpp16s* src, Zpp16s* dst, int len, int shift);
ZPPAPI ZppStatus zppsLShiftC_16s_I(Zpp16s* srcDst, int len, int shift);
ZPPAPI ZppStatus zppsLShiftC_16u(const Zpp16u* src, Zpp16u* dst, int len, int shift);
ZPPAPI ZppStatus zppsLShiftC_16u_I(Zpp16u* srcDst, int len, int shift);
ZPPAPI ZppStatus zppsLShiftC_32s_I(Zpp32s* srcDst, int len, int shift);

/* dst[n] = src[n] >> shift, arithmetic; a shift beyond the width gives -1 for negative elements and 0 for others.
 * Status also: zppStsShiftErr for a shift below 0. */
ZPPAPI ZppStatus zppsRShiftC_16s(const Zpp16s* src, Zpp16s* dst, int len, int shift);
ZPPAPI ZppStatus zppsRShiftC_16s_I(Zpp16s* srcDst, int len, int shift);
ZPPAPI ZppStatus zppsRShiftC_32s_I(Zpp32s* srcDst, int len, int shift);

/* dst[n] = src[n], widened */
ZPPAPI ZppStatus zppsConvert_16s32s(const Zpp16s* src, Zpp32s* dst, int len);

/* dst[n] = sat16((src[n] + half) >> scaleFactor), half = 2^(scaleFactor-1), 0 for scale factor 0; at 0 it only clamps.
 * src: 32-bit values. Status also: zppStsBadScale for a negative scale factor. */
ZPPAPI ZppStatus _zppsConvert_NR_32s16s_Sfs(const Zpp32s* src, Zpp16s* dst, int len, int scaleFactor);

/* *sum = the sum of src, Sfs rule, saturated to 32 or 16 bits */
ZPPAPI ZppStatus zppsSum_16s32s_Sfs(const Zpp16s* src, int len, Zpp32s* sum, int scaleFactor);
ZPPAPI ZppStatus zppsSum_16s_Sfs(const Zpp16s* src, int len, Zpp16s* sum, int scaleFactor);

/* *sum = sat32((exact sum of src[n]^2) >> scaleFactor), truncating; a negative scale factor shifts left, +-31 at most */
ZPPAPI ZppStatus _zppsSumSquare_NS_16s32s_Sfs(const Zpp16s* src, int len, Zpp32s* sum, int scaleFactor);

/* *dp = sat32(exact sum of src1[n] * src2[n], times 2^-scaleFactor), Sfs rule */
ZPPAPI ZppStatus zppsDotProd_16s32s_Sfs(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp, int scaleFactor);

/* *value = the largest or smallest element. With NaN among the elements the result is one of the elements. */
ZPPAPI ZppStatus zppsMax_16s(const Zpp16s* src, int len, Zpp16s* value);
ZPPAPI ZppStatus zppsMin_16s(const Zpp16s* src, int len, Zpp16s* value);
ZPPAPI ZppStatus zppsMax_32f(const Zpp32f* src, int len, Zpp32f* value);
ZPPAPI ZppStatus zppsMin_32f(const Zpp32f* src, int len, Zpp32f* value);

/* *value = the extreme element, *index = its first occurrence. index may be null: the value alone is written then. */
ZPPAPI ZppStatus zppsMaxIndx_32f(const Zpp32f* src, int len, Zpp32f* value, int* index);
ZPPAPI ZppStatus zppsMinIndx_32f(const Zpp32f* src, int len, Zpp32f* value, int* index);
ZPPAPI ZppStatus zppsMinIndx_16s(const Zpp16s* src, int len, Zpp16s* value, int* index);

/* Block normalisation: shifts all elements left by the count that brings the largest magnitude (-32768 counting as 32767) into
 * 16384..32767, and reports that count. An all-zero vector keeps its zeros with count 0.
 * scale: in, 0 or more (only checked), else zppStsBadScale; out, the count. */
ZPPAPI ZppStatus zppsAutoScale_16s(const Zpp16s* src, Zpp16s* dst, int len, int* scale);
ZPPAPI ZppStatus zppsAutoScale_16s_I(Zpp16s* srcDst, int len, int* scale);

/* srcDst[n] = 1 / sqrt(srcDst[n]): Q0 in, Q30 out, 0x3fffffff for 0 and negative elements.
 * Source: Inv_sqrt of the ITU-T G.729 fixed-point reference (basic and double-precision operators). */
ZPPAPI ZppStatus zppsInvSqrt_32s_I(Zpp32s* srcDst, int len);

/* ---- Pre- and post-processing filters of ITU-T G.729 (clauses 3.1 and 4.2.5) --------------------------------------------------- */

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

/* ---- Companding (ITU-T G.711) ------------------------------------------------------------------------------------------------- */

/* Compresses len 16-bit linear samples to code words as transmitted: mu-law from the upper 14 bits, magnitude bits inverted;
 * A-law from the upper 13 bits, even bits inverted.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1. */
ZPPAPI ZppStatus zppsLinToMuLaw_16s8u(const Zpp16s* src, Zpp8u* dst, int len);
ZPPAPI ZppStatus zppsLinToALaw_16s8u(const Zpp16s* src, Zpp8u* dst, int len);

/* ---- ADPCM at 16, 24, 32 and 40 kbit/s (ITU-T G.726) ------------------------------------------------------------------------------
 *
 * One state a stream and direction: ask for its size, allocate it at any alignment, Init it, then code in calls of any length;
 * the stream is the concatenation of the calls. Init may be repeated to reset. A call that is refused leaves the state as it is.
 * rate: ZPP_RATE_16000, ZPP_RATE_24000, ZPP_RATE_32000 or ZPP_RATE_40000, else zppStsOutOfRange.
 * Codes are the standard's I: 2, 3, 4 or 5 bits, the sign on top; packing them into bytes is left to the application.
 * Source: ITU-T G.726 (12/90) clause 4.2, exact to the test sequences of its Appendix II.
 */

/* *size = 88, *size = 92: bytes of an encoder's and of a decoder's state. Status: zppStsOk, zppStsNullPointer. */
ZPPAPI ZppStatus zppsEncodeGetStateSize_G726_16s8u(Zpp32s* size);
ZPPAPI ZppStatus zppsDecodeGetStateSize_G726_8u16s(Zpp32s* size);

/* Writes the reset state of the standard, all of the 88 bytes. Status: zppStsOk, zppStsNullPointer, zppStsOutOfRange. */
ZPPAPI ZppStatus zppsEncodeInit_G726_16s8u(void* state, Zpp32s rate);

/* Writes the reset state of the standard, all of the 92 bytes.
 * law: what the decoder delivers: 0 mu-law code words, 1 A-law code words, both with synchronous coding adjustment; 2 linear
 * samples. Status: zppStsOk, zppStsNullPointer, zppStsOutOfRange for the rate, then for the law. */
ZPPAPI ZppStatus zppsDecodeInit_G726_8u16s(void* state, Zpp32s rate, Zpp32s law);

/* src: len samples of 14-bit uniform PCM, -8192..8191 (16-bit speech shifted right by 2; expanded G.711 code words on the scale
 * where mu-law reaches 8031 and A-law 8064); others are coded as they are, a difference to the prediction beyond 16 bits
 * saturating. dst: len codes, one in the low 2, 3, 4 or 5 bits of each byte, the upper bits zero.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len 0. */
ZPPAPI ZppStatus zppsEncode_G726_16s8u(void* state, const Zpp16s* src, Zpp8u* dst, Zpp32u len);

/* src: len codes, one a byte; the bits above the rate's width are ignored. dst: len values: linear samples -8192..8191 (times 4
 * for 16-bit speech), or law code words as transmitted, 0..255.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len 0. */
ZPPAPI ZppStatus zppsDecode_G726_8u16s(void* state, const Zpp8u* src, Zpp16s* dst, Zpp32u len);

/* ---- Linear prediction shared by codecs ----------------------------------------------------------------------------------------- */

/* Autocorrelation: r[k] = sum of src[n] * src[n + k], n = 0..len-1-k; 0 for k of len or more.
 * src: len samples; dst: lenDst lags, lag 0 first.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len or lenDst below 1; others as told. */

/* dst[k] = r[k] modulo 2^32, neither scaled nor saturated */
ZPPAPI ZppStatus zppsAutoCorr_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst);

/* dst[0] = (2 * r[0] + 1) << norm, dst[k] = sat32(r[k] << (norm + 1)), with norm the shift that normalises 2 * r[0] + 1.
 * *norm: 0..30; 30 for silence. zppStsOverflowWarn, and nothing written, when r[0] exceeds 1073741823: scale the frame down
 * (ITU-T G.729: by 2 bits) and call again. Source: ITU-T G.729 clause 3.2.1, on the windowed frame. */
ZPPAPI ZppStatus zppsAutoCorr_NormE_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, Zpp32s* norm);

/* dst[0] = round16(sat32(2 * r[0]) << norm), dst[k] = round16(sat32(r[k] << (norm + 1))), round16 giving the rounded upper
 * 16 bits, 32767 at most; norm normalises sat32(2 * r[0]) and is 0 for silence. A frame too loud is clamped silently. */
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
/* The first len samples of the impulse response of coef[0]/A(z), dst[0] = coef[0]; clamped without a warning */
ZPPAPI ZppStatus zppsSynthesisFilterZeroStateResponse_NR_16s(const Zpp16s* coef, Zpp16s* dst, int len, int scaleFactor);

/* The filter with coef[0..order], Q12, and `order` outputs of history, which must lie outside dst (ITU-T G.729 Annex E).
 * Status as above; zppStsBadSize also for an order below 1. */
ZPPAPI ZppStatus zppsSynthesisFilter_G729E_16s(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len,
                                               const Zpp16s* hist);

/* The filter of order 10 in Q12 with its history in dst[-10..-1]; dst may be src. Status: zppStsOk, zppStsNullPointer,
 * zppStsBadSize, zppStsOverflowWarn. */
ZPPAPI ZppStatus zppsSynthesisFilter_G729_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len);

/* LP residual: dst[n] = sat16((sum of coef[i] * src[n - i], i = 0..10, + 2048) >> 12). coef: 11 values, Q12; src: len samples,
 * and the 10 before them are read; dst must not overlap what is read. Status: zppStsOk; zppStsNullPointer; zppStsBadSize for
 * len below 1. Source: ITU-T G.729 clause 3.3. */
ZPPAPI ZppStatus zppsResidualFilter_G729_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len);

/* Harmonic sharpening: srcDst[n] = sat16(srcDst[n] + min((gain * srcDst[n - lag]) >> 15, 32767)), n ascending, so that changed
 * samples feed later ones. gain: Q15; srcDst: len samples, and the lag samples before them are read.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsOutOfRange for a lag below 1.
 * Source: 3GPP TS 26.090 clause 5.7, ITU-T G.729 clause 3.8. */
ZPPAPI ZppStatus zppsHarmonicFilter_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len);

/* Convolution cut to len values: dst[n] = sat16((sum of src1[k] * src2[n - k], k = 0..n) >> scaleFactor), truncating the exact
 * sum; factors beyond 31 act as 31. src1, src2, dst: len values; dst must not be a source.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsBadArgument for a negative scale factor.
 * Source: Convolve of the ITU-T G.729 fixed-point reference at scale factor 12. */
ZPPAPI ZppStatus zppsConvPartial_16s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor);
/* The sums modulo 2^32. Status: zppStsOk, zppStsNullPointer, zppStsBadSize. */
ZPPAPI ZppStatus zppsConvPartial_16s32s(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len);

/* Largest of c[k] = sat32(sum of src1[n] * src2[n + k], n = 0..len-1), k = 0..maxLag, and its lag. Of equal values the largest
 * lag is reported; when none is positive, 0 at maxLag. src1: len samples; src2: len + maxLag.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1; zppStsOutOfRange for maxLag below 0. */
ZPPAPI ZppStatus zppsCrossCorrLagMax_16s(const Zpp16s* src1, const Zpp16s* src2, int len, int maxLag, Zpp32s* max,
                                         Zpp32s* maxLagOut);

/* Largest of the sums of src[n] * src[n + k] (Fwd) or src[n] * src[n - k] (Inv), n = 0..len-1, k = minLag..maxLag, and its lag.
 * The sums are not doubled and are taken modulo 2^32: keep the energies below 2^31. Of equal values the smallest lag is
 * reported; for minLag above maxLag -2147483648 and 0.
 * src: len samples, and the maxLag samples behind (Fwd) or before (Inv) them are read. minLag: 0 or more.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1. Source: ITU-T G.729 clause 3.4. */
ZPPAPI ZppStatus zppsAutoCorrLagMax_Fwd_16s(const Zpp16s* src, int len, int minLag, int maxLag, Zpp32s* max, Zpp32s* lag);
ZPPAPI ZppStatus zppsAutoCorrLagMax_Inv_16s(const Zpp16s* src, int len, int minLag, int maxLag, Zpp32s* max, Zpp32s* lag);

/* Largest of sat32(2 * sum of target[n] * signal[n - k]), n = 0..len-1, k = minLag..maxLag, and its lag; of equal values the
 * smallest lag. signal[-maxLag..len-1-minLag] is read. An empty range writes nothing. Returns zppStsOk.
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
 * All vectors: len values. Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1.
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

/* ---- G.729: LP analysis and LSP quantisation (clause 3.2) -------------------------------------------------------------------------- */

/* ---- G.729: pitch analysis and adaptive codebook (clauses 3.4 and 3.7) -------------------------------------------------------------- */

/* ---- G.729: fixed codebook (clause 3.8) ------------------------------------------------------------------------------------------------ */

/* ---- G.729: gains (clause 3.9) ------------------------------------------------------------------------------------------------------------ */

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

/* Quantises the gain pair of a subframe at 8 kbit/s (ITU-T G.729 clause 3.9): writes index and gain, updates the memory.
 * target: 40; adaptive: 40, filtered adaptive vector; code: 40, code vector Q13; filtered: 40, filtered code vector Q12.
 * taming: 1 when the pitch gain must stay below 1 (clause 3.7.3: the synthesis filter could become unstable after losses), else 0.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another taming flag. */
ZPPAPI ZppStatus zppsGainQuant_G729_16s(const Zpp16s* target, const Zpp16s* adaptive, const Zpp16s* code, const Zpp16s* filtered,
                                        Zpp16s* memory, Zpp16s* index, Zpp16s* gain, Zpp16s taming);

/* As above at 6.4 kbit/s (Annex D). */
ZPPAPI ZppStatus zppsGainQuant_G729D_16s(const Zpp16s* target, const Zpp16s* adaptive, const Zpp16s* code, const Zpp16s* filtered,
                                         Zpp16s* memory, Zpp16s* index, Zpp16s* gain, Zpp16s taming);

/* ---- G.729: postfilter (clause 4.2) ---------------------------------------------------------------------------------------------------------
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
 * delayOut: one value, out: the delay selected, the next integer above when it is fractional (17..145), 0 where the filter is off.
 * Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for the delay, then for the gain factor. */
ZPPAPI ZppStatus zppsLongTermPostFilter_G729_16s(Zpp16s gainFactor, int delay, const Zpp16s* residual, Zpp16s* dst,
                                                 Zpp16s* delayOut);

/* Residual and harmonic postfilter (ITU-T G.729 clause A.4.2.1).
 * delay: 18..145, integer pitch delay of the subframe. speech: 40 samples of the synthesis and 10 before the pointer.
 * coef: weighted numerator. residual: 194 samples from the pointer on: 154 past ones, of which the last 143 are read, then 40 that
 * are written. dst: 40, out.
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

/* The harmonic postfilter alone. Trusts its arguments. delay: 18..145; residual: 40 samples and 143 before the pointer; dst: 40,
 * out, outside the residual. */
ZPPAPI ZppStatus _zppsHarmonicPostFilter_G729A_16s(Zpp16s delay, const Zpp16s* residual, Zpp16s* dst);

/* Short-term postfilter (ITU-T G.729 clause 4.2.2): scales the residual and filters it by 1/A(z/0.7).
 * coef: not weighted. residual: 40. dst: 40, in/out, with the 10 last outputs before the pointer, in. Where the response needs no
 * scaling dst is not taken from the residual but filtered in place: pass the residual in dst, or as both.
 * impulse: 20, out, Q12: response of A(z/0.55) / A(z/0.7).
 * Status: zppStsOk; zppStsNullPointer; zppStsOverflowWarn when an output was clamped, with all outputs written. */
ZPPAPI ZppStatus zppsShortTermPostFilter_G729_16s(const Zpp16s* coef, const Zpp16s* residual, Zpp16s* dst, Zpp16s* impulse);

/* 1/A(z/0.7) alone (ITU-T G.729 clause A.4.2.2). coef: weighted denominator. src: 40, may be dst. dst: 40, out, with the 10 last
 * outputs before the pointer, in. Status as above. */
ZPPAPI ZppStatus zppsShortTermPostFilter_G729A_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst);

/* Tilt compensation (ITU-T G.729 clause 4.2.3). Both members use the same arithmetic; Annex E forms the tilt from a longer response.
 * tilt: Q15, first reflection coefficient of the impulse response, -r(1)/r(0): negative for a low-pass response.
 * srcDst: 40, in/out. memory: one value, in/out: the last input sample of the subframe before, then of this one; 0 at the start. */
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
 * gain: one value, in/out: the running gain; full rate Q14, 16384 at the start, Annex A Q12, 4096 at the start. It becomes 0, and
 * srcDst stays, for a silent srcDst (full rate: unless src is silent as well, where the gain decays). */
ZPPAPI ZppStatus zppsGainControl_G729_16s_I(const Zpp16s* src, Zpp16s* srcDst, Zpp16s* gain);
ZPPAPI ZppStatus zppsGainControl_G729A_16s_I(const Zpp16s* src, Zpp16s* srcDst, Zpp16s* gain);

/* Phase dispersion of the excitation at 6.4 kbit/s (ITU-T G.729 Annex D, clause D.6).
 * state: a block of the size that zppsPhaseDispersionGetStateSize_G729D_16s tells, any alignment. Update keeps it current in
 * subframes of the other rates.
 * excitation: 40 samples, Q0; code: 40, code vector with pitch sharpening, Q13; dst: 40, out, may be the excitation.
 * codeGain: Q1; pitchGain: Q14. */
ZPPAPI ZppStatus zppsPhaseDispersionInit_G729D_16s(void* state);
ZPPAPI ZppStatus zppsPhaseDispersionUpdate_G729D_16s(Zpp16s pitchGain, Zpp16s codeGain, void* state);
ZPPAPI ZppStatus zppsPhaseDispersion_G729D_16s(const Zpp16s* excitation, const Zpp16s* code, Zpp16s* dst, Zpp16s codeGain,
                                               Zpp16s pitchGain, void* state);

/* ---- G.723.1 --------------------------------------------------------------------------------------------------------------------- */

/* ---- GSM-AMR --------------------------------------------------------------------------------------------------------------------- */

/* ---- G.722.1 --------------------------------------------------------------------------------------------------------------------- */

#ifdef __cplusplus
}
#endif

#endif /* ZPPSC_H */
