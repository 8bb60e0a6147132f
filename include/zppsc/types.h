/* zppsc: types, statuses and rates, common to all functions. Include zppsc.h. */
#ifndef ZPPSC_TYPES_H
#define ZPPSC_TYPES_H

#include <stdint.h>

#if defined(__GNUC__)
#define ZPPAPI __attribute__((visibility("default")))
#else
#define ZPPAPI
#endif

#ifdef __cplusplus
extern "C" {
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
  zppStsLSFBothClamped = 15  /* both of these */
};

/* Codec rates, by ascending bit rate. A function accepts those of its own codec and refuses all other values; that any may come
 * is said to C++ by naming the type that C chooses. */
typedef enum
#ifdef __cplusplus
    : unsigned int
#endif
{
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
  Zpp32s major;      /* 4 */
  Zpp32s minor;      /* 1 */
  Zpp32s majorBuild; /* 12 */
  Zpp32s build;      /* 5 */
  char targetCpu[4]; /* processor level: "px", "a6" (SSE), "w7" (SSE2), "t7" (SSE3), "v3" (AVX2) or "n8" (NEON), two zero bytes
                      */
  const char* Name;  /* file name of the shared object */
  const char* Version;   /* "v4.1" */
  const char* BuildDate; /* "Jul 22 2004" */
} ZppLibraryVersion;

/* ---- Library frame ------------------------------------------------------------------------------------------------------- */

/* The version record of the library: the same static, read-only record on every call. */
ZPPAPI const ZppLibraryVersion* zppscGetLibVersion(void);

#ifdef __cplusplus
}
#endif

#endif
