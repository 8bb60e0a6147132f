/* What the AMR interfaces share: frames of the storage format of RFC 4867 that come without a length, and where every frame has
 * at least an octet. */
#ifndef COMPAT_AMR_FRAMES_H
#define COMPAT_AMR_FRAMES_H

#include <string.h>

#include "zppcodecs.h"

enum { kMostOctets = 61, kGoodBit = 4, kNoData = 15 };

static inline int typeOf(const unsigned char* frame) { return frame[0] >> 3 & 15; }

/* The octets of the frame, or 1 where nothing is sent; 0 on an error */
static inline int encodeFrame(ZppcEncoder* encoder, const short* pcm, int samples, unsigned char* out) {
  unsigned char frame[kMostOctets];
  int octets = zppcEncode(encoder, pcm, samples, frame, sizeof frame);
  if (octets < 0) return 0;
  if (octets == 0) {
    frame[0] = kNoData << 3 | kGoodBit;
    octets = 1;
  }
  memcpy(out, frame, (size_t)octets);
  return octets;
}

/* The caller says which frames are bad; the quality bit does not. octets: those of a frame of this type */
static inline void decodeGoodFrame(ZppcDecoder* decoder, const unsigned char* in, int octets, short* pcm, int samples) {
  unsigned char frame[kMostOctets];
  memcpy(frame, in, (size_t)octets);
  frame[0] |= kGoodBit;
  (void)zppcDecode(decoder, frame, octets, pcm, samples);
}

#endif
