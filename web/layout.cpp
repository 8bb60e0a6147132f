// zppcodecs.ts reads and writes the structures of the C API in the module's memory: these are the places that it relies on.
#include <cstddef>

#include "zppcodecs.h"

static_assert(sizeof(void*) == 4 && sizeof(int) == 4);
static_assert(offsetof(ZppcCodec, name) == 0 && offsetof(ZppcCodec, standard) == 4 && offsetof(ZppcCodec, rtpEncoding) == 8);
static_assert(offsetof(ZppcCodec, sampleRate) == 12 && offsetof(ZppcCodec, frameSamples) == 16);
static_assert(offsetof(ZppcCodec, delaySamples) == 20 && offsetof(ZppcCodec, maxPayload) == 24);
static_assert(offsetof(ZppcCodec, bitRates) == 28 && offsetof(ZppcCodec, bitRateCount) == 32);
static_assert(offsetof(ZppcCodec, defaultBitRate) == 36 && offsetof(ZppcCodec, features) == 40 && sizeof(ZppcCodec) == 44);
static_assert(offsetof(ZppcOptions, bitRate) == 0 && offsetof(ZppcOptions, dtx) == 4);
static_assert(offsetof(ZppcOptions, variant) == 8 && sizeof(ZppcOptions) == 12);
