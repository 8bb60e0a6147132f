/* zppcodecs: complete speech codecs with a C API, on top of libzppsc.
 *
 * A codec turns frames of 16-bit mono speech into payloads, the octets that one RTP packet carries for one frame, and back.
 *
 * The caller owns all memory: a stream is one block, which zppcEncoderInit or zppcDecoderInit starts in memory at any address,
 * and which holds no pointers: a copy of the block, wherever it lies, continues the stream. Only zppcEncoderCreate and
 * zppcDecoderCreate allocate. Encoding and decoding never allocate, throw, print or lock, and need a few kilobytes of stack.
 * Different streams may be used from different threads at the same time.
 *
 * Payloads, as RTP carries them (the first bit in the most significant bit of an octet unless told otherwise):
 *
 *   g711-mulaw, g711-alaw   one octet a sample (RFC 3551 PCMU, PCMA)
 *   g726                    codes without gaps, the first in the least significant bits (RFC 3551 G726-16 ... G726-40); with
 *                           variant 1 in the most significant ones (AAL2-G726-16 ..., ITU-T I.366.2 Annex E)
 *   g722.1                  60 octets at 24 kbit/s, 80 at 32 kbit/s (RFC 5577)
 *   g723.1                  24 octets at 6.3 kbit/s, 20 at 5.3 kbit/s, 4 of a silence descriptor, told apart by the two least
 *                           significant bits of the first octet; the first bit is the least significant one of an octet
 *                           (RFC 3551). The decoder also takes the single octet that stands for nothing sent in files
 *   g728                    5 octets, four indices of 10 bits (RFC 3551)
 *   g729, g729a             10 octets of speech, 2 of a silence descriptor (RFC 3551)
 *   g729i                   8, 10 or 15 octets of speech at 6.4, 8 and 11.8 kbit/s (RFC 3551: G729D, G729, G729E), 2 of a
 *                           silence descriptor
 *   g729f, g729af           those of g729, g729a, in single precision
 *   gsm-fr                  33 octets, speech or silence descriptor: a signature of four bits, then the parameters (RFC 3551).
 *                           In discontinuous transmission every frame has a payload; a link leaves out those of a pause
 *                           behind the first descriptor, but for one in 24, and the decoder takes them as not sent
 *   amr, amr-wb             a frame of the storage format of RFC 4867: an octet with the frame's type and quality bit, then its
 *                           octet-aligned bits. A cleared quality bit marks a damaged frame, type 15 one without data
 *
 * In discontinuous transmission a frame for which nothing is sent has a payload of 0 octets.
 */
#ifndef ZPPCODECS_H
#define ZPPCODECS_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define ZPPCAPI __attribute__((visibility("default")))
#else
#define ZPPCAPI
#endif

typedef struct ZppcEncoder ZppcEncoder;
typedef struct ZppcDecoder ZppcDecoder;

/* Results below zero: errors. Nothing has been written, and the stream has not changed. */
enum {
  ZPPC_ERROR_NULL = -1,   /* a required pointer is null */
  ZPPC_ERROR_CODEC = -2,  /* a codec row that is not of this library's table */
  ZPPC_ERROR_OPTION = -3, /* a bit rate or option that the codec does not have */
  ZPPC_ERROR_SIZE = -4,   /* a number of samples or octets that no frame of this stream has; a memory block that is too small */
  ZPPC_ERROR_CAPACITY = -5, /* the output does not fit */
  ZPPC_ERROR_PAYLOAD = -6,  /* octets that are no payload of this codec */
  ZPPC_ERROR_MEMORY = -7    /* Create: no memory */
};

/* Features of a codec */
enum {
  ZPPC_FEATURE_DTX = 1,          /* discontinuous transmission can be switched on */
  ZPPC_FEATURE_CONCEALMENT = 2,  /* the standard conceals lost frames (otherwise they decode to silence) */
  ZPPC_FEATURE_SAMPLE_BASED = 4, /* a call takes any number of whole frames */
  ZPPC_FEATURE_RATE_SWITCH = 8   /* the bit rate may change from frame to frame */
};

/* What a codec is. All strings and lists are constants of the library. */
typedef struct {
  const char* name;        /* "g729", "g726": stable */
  const char* standard;    /* "ITU-T G.729" */
  const char* rtpEncoding; /* encoding name of the RTP payload format at the default bit rate; null if there is none */
  int sampleRate;          /* Hz */
  int frameSamples;    /* samples a frame; sample-based codecs: the smallest group of samples that fills whole octets at every
                          bit rate */
  int delaySamples;    /* by which decoded speech lags behind the input */
  int maxPayload;      /* octets of a frame's longest payload */
  const int* bitRates; /* bit/s, ascending */
  int bitRateCount;
  int defaultBitRate;
  unsigned features; /* ZPPC_FEATURE_..., added up */
} ZppcCodec;

/* The table of codecs, in the order in which they are listed; *count, unless count is null, receives its length. */
ZPPCAPI const ZppcCodec* zppcCodecs(int* count);

/* The row of that name; null if there is none, or if name is null. */
ZPPCAPI const ZppcCodec* zppcFindCodec(const char* name);

/* The version of this library, "major.minor". */
ZPPCAPI const char* zppcVersion(void);

/* What a result below zero means, in a few words without a full stop. Never null.
 * error: a result below zero. */
ZPPCAPI const char* zppcErrorText(int error);

/* How a stream is coded. All zero: the codec's defaults. */
typedef struct {
  int bitRate; /* bit/s; 0: the default */
  int dtx;     /* 1: discontinuous transmission; 0: none. Decoders understand it always, but for that of gsm-fr, whose silence
                  descriptors are not told from speech by their size: it looks for them where dtx is 1 */
  int variant; /* a choice of the codec's own, 0 the usual one. g726: 1, the bit order of AAL2. g723.1: 1, no high-pass filter
                  (encoder), no postfilter (decoder). g728: 1, no postfilter (decoder). amr: 1, voice activity detection option
                  2 (encoder). Another value than the codec knows is ZPPC_ERROR_OPTION. */
} ZppcOptions;

/* Bytes of memory that a stream of this codec needs, at any alignment.
 * Errors: ZPPC_ERROR_NULL, ZPPC_ERROR_CODEC. */
ZPPCAPI long zppcEncoderSize(const ZppcCodec* codec);
ZPPCAPI long zppcDecoderSize(const ZppcCodec* codec);

/* Starts a stream in the caller's memory. Returns the stream, which lies in the memory and ends with it; there is nothing to
 * release. Returns null on an error.
 * memory: at any address. bytes: of the memory, at least as many as zppc...Size tells. codec: a row of the table. options: null
 * for the defaults. error: null, or receives 0 or the error.
 * Errors, in this order: ZPPC_ERROR_NULL for codec or memory; ZPPC_ERROR_CODEC; ZPPC_ERROR_OPTION; ZPPC_ERROR_SIZE. */
ZPPCAPI ZppcEncoder* zppcEncoderInit(void* memory, size_t bytes, const ZppcCodec* codec, const ZppcOptions* options,
                                     int* error);
ZPPCAPI ZppcDecoder* zppcDecoderInit(void* memory, size_t bytes, const ZppcCodec* codec, const ZppcOptions* options,
                                     int* error);

/* The same in memory of its own, which Destroy releases; Destroy accepts null. Errors also: ZPPC_ERROR_MEMORY. */
ZPPCAPI ZppcEncoder* zppcEncoderCreate(const ZppcCodec* codec, const ZppcOptions* options, int* error);
ZPPCAPI ZppcDecoder* zppcDecoderCreate(const ZppcCodec* codec, const ZppcOptions* options, int* error);
ZPPCAPI void zppcEncoderDestroy(ZppcEncoder* encoder);
ZPPCAPI void zppcDecoderDestroy(ZppcDecoder* decoder);

/* Sets the bit rate from the next frame on. bitRate: bit/s.
 * Returns 0; ZPPC_ERROR_NULL; ZPPC_ERROR_OPTION for a rate that the codec does not have, or a codec without
 * ZPPC_FEATURE_RATE_SWITCH. */
ZPPCAPI int zppcEncoderSetBitRate(ZppcEncoder* encoder, int bitRate);

/* Codes one frame; sample-based codecs one or more.
 * samples: frameSamples, of sample-based codecs a multiple of it. pcm: as many samples. payload: the octets written.
 * capacity: octets that it has room for.
 * Returns the octets written; 0 where nothing is sent. Errors, in this order: ZPPC_ERROR_NULL; ZPPC_ERROR_SIZE for another
 * number of samples; ZPPC_ERROR_CAPACITY for a capacity below maxPayload (sample-based: below the octets of these samples),
 * whatever this frame would need. */
ZPPCAPI int zppcEncode(ZppcEncoder* encoder, const int16_t* pcm, int samples, uint8_t* payload, int capacity);

/* Decodes the payload of one frame; sample-based codecs: of one or more.
 * payload: the frame's octets; null: the frame was lost and is concealed. octets: their number, which a null payload makes
 * irrelevant; 0: nothing was sent, which a codec without discontinuous transmission takes for a loss. pcm: the samples written.
 * capacity: samples that it has room for; lost samples of sample-based codecs are silence, as many as capacity tells.
 * Returns the samples written. Errors, in this order: ZPPC_ERROR_NULL for
 * decoder or pcm; ZPPC_ERROR_SIZE for a number of octets that no payload of this stream has; ZPPC_ERROR_CAPACITY;
 * ZPPC_ERROR_PAYLOAD for octets that are no payload of this codec. */
ZPPCAPI int zppcDecode(ZppcDecoder* decoder, const uint8_t* payload, int octets, int16_t* pcm, int capacity);

#ifdef __cplusplus
}
#endif

#endif
