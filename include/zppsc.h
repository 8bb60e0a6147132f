/* zppsc: bit-exact speech-coding primitives with a C ABI.
 *
 * Every function performs one step of a speech codec on buffers that the caller owns. The integer functions reproduce the
 * fixed-point arithmetic of the standard that they name bit for bit. The library allocates nothing, keeps no hidden state,
 * prints nothing, and may be called from any number of threads as long as two calls do not share an output or a state block.
 *
 * Conventions, common to all functions:
 *
 * - Arguments: sources, destinations, lengths, then controls (rate, mode, scale factor); state blocks as each function says.
 *   Lengths count elements, never bytes. Buffers may have any alignment of their element type; state blocks any at all.
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

/* ---- Types --------------------------------------------------------------------------------------------------------------- */

typedef uint8_t Zpp8u;  /* companded samples, bit-stream bytes */
typedef int16_t Zpp16s; /* speech samples, fixed-point values */
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

/* ---- Vector primitives ------------------------------------------------------------------------------------------------------
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

/* ---- Companding (ITU-T G.711) -------------------------------------------------------------------------------------------- */

/* Compresses len 16-bit linear samples to code words as transmitted: mu-law from the upper 14 bits, magnitude bits inverted;
 * A-law from the upper 13 bits, even bits inverted.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1. */
ZPPAPI ZppStatus zppsLinToMuLaw_16s8u(const Zpp16s* src, Zpp8u* dst, int len);
ZPPAPI ZppStatus zppsLinToALaw_16s8u(const Zpp16s* src, Zpp8u* dst, int len);

/* ---- ADPCM at 16, 24, 32 and 40 kbit/s (ITU-T G.726) ------------------------------------------------------------------------
 *
 * One state a stream and direction: ask for its size, allocate it at any alignment, Init it, then code in calls of any length;
 * the stream is the concatenation of the calls. Init may be repeated to reset. A refused call leaves the state as it is.
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

/* ---- Linear prediction shared by codecs ---------------------------------------------------------------------------------- */

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

/* ---- G.729: LP analysis and LSP quantisation (clause 3.2) -------------------------------------------------------------------
 *
 * Formats and shapes, unless a function says otherwise:
 *
 * - a: LP coefficients, 11 values, Q12, a[0] = 4096. refl: reflection coefficients, Q15.
 * - lsp: line spectral pairs in the cosine domain, 10 values, Q15, descending. lsf: line spectral frequencies in radians, 10
 *   values, Q13, ascending. lsfNorm: the same over 2 pi, 10 values, Q15 (0..0.5).
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

/* Decodes the LSFs of a silence-descriptor frame. sidIdx: the low one, five and four bits count; nothing is refused.
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
 * delay: integer delay, 18..144, and fraction in thirds, -1..1. _I: exc holds 154 samples of past excitation, oldest first, and
 * the 40 samples behind them are written. The other form: pastExc, those 154 samples; dst: 40 samples.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadCodedParam for a delay or fraction outside its range.
 * Source: ITU-T G.729 clause 3.7.1. */
ZPPAPI ZppStatus zppsDecodeAdaptiveVector_G729_16s_I(const Zpp16s* delay, Zpp16s* exc);
ZPPAPI ZppStatus zppsDecodeAdaptiveVector_G729_16s(const Zpp16s* delay, const Zpp16s* pastExc, Zpp16s* dst);

/* The in-place form in single precision. delay: two values as above. exc: 194 values: 154 of past excitation, oldest first,
 * which are read, and the 40 behind them, which are written.
 * Status as above. Source: ITU-T G.729 Annex C, clause 3.7.1. */
ZPPAPI ZppStatus zppsDecodeAdaptiveVector_G729_32f_I(const Zpp16s* delay, Zpp32f* exc);

/* Filtered adaptive vector and adaptive-codebook gain <target, filtered> / <filtered, filtered>, Q14, 0..19661 (1.2).
 * target, adaptive: 40 samples; filtered: 40 samples, written, apart from the others: the convolution with impulse, 40 values,
 * Q12, truncated (_G729), or the adaptive vector through 1/A(z) from rest with a[0..10], Q12 (_G729A). gain: one value.
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
 *   through the impulse response.
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

/* ---- Transform and region coding of ITU-T G.722.1 ---------------------------------------------------------------------------
 *
 * The signal-processing core of the 7 kHz codec at 24 and 32 kbit/s: frames of 320 samples at 16 kHz, a modulated lapped
 * transform (MLT) of two frames, and the vector Huffman code of its coefficients in regions of 20. Region powers, categories,
 * bit stream and noise fill are the caller's. Buffers of any alignment; nothing is read or written outside the extents below.
 * Unless listed otherwise the status is zppStsOk, or zppStsNullPointer for a null pointer.
 */

/* Windows and folds the old and the new frame into the input of the DCT-IV; then the new frame becomes the old one.
 * src: 320 new samples. srcDstOld: the 320 samples of the frame before (zeros at first), replaced by src. dst: 320 values,
 * round half up of window times samples, window 18318 = 1.0 as Q15; the block scaling before the transform is the caller's.
 * dst must not overlap the others. Source: ITU-T G.722.1 clause 3.1. */
ZPPAPI ZppStatus zppsDecomposeMLTToDCT_G722_16s(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst);

/* Forward DCT-IV with the analysis bias: dst[0..319] = the MLT coefficients of src[0..319], scaled to 16 bits by halving in
 * every splitting stage. src is unchanged unless dst is the same buffer. The sums of the 10-point core are exact and saturate
 * once. Source: ITU-T G.722.1 clause 3.2. */
ZPPAPI ZppStatus zppsDCTFwd_G722_16s(const Zpp16s* src, Zpp16s* dst);

/* Inverse DCT-IV with dither and synthesis bias: src: 320 MLT coefficients, unchanged unless dst is the same buffer; dst: 320
 * values for the synthesis window, once the caller has undone the block scaling. Stages saturate.
 * Source: ITU-T G.722.1 clause 4.6. */
ZPPAPI ZppStatus zppsDCTInv_G722_16s(const Zpp16s* src, Zpp16s* dst);

/* Windows the inverse transform's output and adds it to the overlap of the frame before.
 * src: 320 values. srcDstOld: 160 values, src[160..319] of the call before (zeros at first), replaced by those of this call.
 * dst: 320 samples, rounded half up and saturated, window 18096 = about 1.0 as Q13 after the transform's scaling.
 * dst must not overlap the others. Source: ITU-T G.722.1 clause 4.7. */
ZPPAPI ZppStatus zppsDecomposeDCTToMLT_G722_16s(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst);

/* Quantises and codes one region.
 * category: 0 (finest) to 7; category 7 carries no codes: one zero word, 0 bits. qp: power index 0..63, the region's power in
 * steps of a factor 2 (amplitude sqrt 2), 24 for amplitude 1. src: 20 MLT coefficients; -32768 counts as -32767.
 * dst: the codes, most significant bit first in 32-bit words, bits behind the end 0: max(1, ceil(*bitCount / 32)) words are
 * written, at most 6. bitCount: number of bits, at most 180.
 * Status also: zppStsBadScale for another category or power index. Source: ITU-T G.722.1 clause 3.6. */
ZPPAPI ZppStatus zppsHuffmanEncode_G722_16s32u(Zpp32s category, Zpp32s qp, const Zpp16s* src, Zpp32u* dst, Zpp32s* bitCount);

#ifdef __cplusplus
}
#endif

#endif /* ZPPSC_H */
