/* The constants of the public headers, which programs have compiled in: their values stay for good. Compiling this is the test. */
#include "zppcodecs.h"
#include "zppsc.h"

#define STAYS(name, value) _Static_assert((name) == (value), #name)
STAYS(zppStsOk, 0);
STAYS(zppStsBadArgument, -5);
STAYS(zppStsBadSize, -6);
STAYS(zppStsOutOfRange, -7);
STAYS(zppStsNullPointer, -8);
STAYS(zppStsBadCodedParam, -11);
STAYS(zppStsOutOfDomain, -12);
STAYS(zppStsBadScale, -13);
STAYS(zppStsShiftErr, -32);
STAYS(zppStsLpcCalcErr, -117);
STAYS(zppStsOverflowWarn, 12);
STAYS(zppStsLSFLowClamped, 13);
STAYS(zppStsLSFHighClamped, 14);
STAYS(zppStsLSFBothClamped, 15);

STAYS(ZPP_RATE_4750, 0);
STAYS(ZPP_RATE_5150, 1);
STAYS(ZPP_RATE_5300, 2);
STAYS(ZPP_RATE_5900, 3);
STAYS(ZPP_RATE_6300, 4);
STAYS(ZPP_RATE_6600, 5);
STAYS(ZPP_RATE_6700, 6);
STAYS(ZPP_RATE_7400, 7);
STAYS(ZPP_RATE_7950, 8);
STAYS(ZPP_RATE_8850, 9);
STAYS(ZPP_RATE_9600, 10);
STAYS(ZPP_RATE_10200, 11);
STAYS(ZPP_RATE_12200, 12);
STAYS(ZPP_RATE_12650, 13);
STAYS(ZPP_RATE_12800, 14);
STAYS(ZPP_RATE_14250, 15);
STAYS(ZPP_RATE_15850, 16);
STAYS(ZPP_RATE_16000, 17);
STAYS(ZPP_RATE_18250, 18);
STAYS(ZPP_RATE_19850, 19);
STAYS(ZPP_RATE_23050, 20);
STAYS(ZPP_RATE_23850, 21);
STAYS(ZPP_RATE_24000, 22);
STAYS(ZPP_RATE_32000, 23);
STAYS(ZPP_RATE_40000, 24);
STAYS(ZPP_RATE_DTX, 25);

STAYS(ZPPC_ERROR_NULL, -1);
STAYS(ZPPC_ERROR_CODEC, -2);
STAYS(ZPPC_ERROR_OPTION, -3);
STAYS(ZPPC_ERROR_SIZE, -4);
STAYS(ZPPC_ERROR_CAPACITY, -5);
STAYS(ZPPC_ERROR_PAYLOAD, -6);
STAYS(ZPPC_ERROR_MEMORY, -7);

STAYS(ZPPC_FEATURE_DTX, 1);
STAYS(ZPPC_FEATURE_CONCEALMENT, 2);
STAYS(ZPPC_FEATURE_SAMPLE_BASED, 4);
STAYS(ZPPC_FEATURE_RATE_SWITCH, 8);

/* Blocks that callers lay out themselves */
STAYS(sizeof(Zpp16sc), 4);
STAYS(sizeof(ZppcOptions), 3 * sizeof(int));
STAYS(sizeof(ZppStatus), 4);
