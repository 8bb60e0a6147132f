/* Silence descriptors of G.729 Annex B as comfort-noise payloads of RFC 3389, and back. */
#ifndef COMPAT_BCG729_RFC3389_H
#define COMPAT_BCG729_RFC3389_H

#include <stdint.h>

#include "zppsc.h"

enum { kOrder = 10, kRfc3389Octets = 1 + kOrder, kSpeechOctets = 10, kSidOctets = 2 };

/* Follows the LSFs of a stream of payloads: descriptors are coded against the frames before them. */
typedef struct {
  Zpp16s maMem[4 * kOrder];
  Zpp16s lsf[kOrder]; /* of the last frame of speech */
  Zpp16s maMode;
  int silent;
  uint8_t descriptor[kSidOctets]; /* the last one */
  Zpp16s noiseLsf[kOrder];        /* its LSFs */
} LsfTracker;

void trackerInit(LsfTracker* tracker);
/* A frame of 10, 2 or 0 octets; null: lost */
void trackerFollow(LsfTracker* tracker, const uint8_t* octets, int length);

/* Level and reflection coefficients of the last descriptor */
void rfc3389FromDescriptor(const LsfTracker* tracker, uint8_t payload[kRfc3389Octets]);
/* The descriptor that is nearest to a payload of 1 octet or more; coefficients beyond the tenth are left out. */
void descriptorFromRfc3389(const LsfTracker* tracker, const uint8_t* payload, int length, uint8_t descriptor[kSidOctets]);

#endif
