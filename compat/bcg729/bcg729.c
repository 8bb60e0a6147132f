/* libbcg729's interface over zppcodecs. */
#include <stdlib.h>
#include <string.h>

#include "bcg729/decoder.h"
#include "bcg729/encoder.h"
#include "rfc3389.h"
#include "zppcodecs.h"

enum { kFrame = 80 };

struct bcg729EncoderChannelContextStruct_struct {
  ZppcEncoder* coder;
  LsfTracker tracker;
};
struct bcg729DecoderChannelContextStruct_struct {
  ZppcDecoder* coder;
  LsfTracker tracker;
};

bcg729EncoderChannelContextStruct* initBcg729EncoderChannel(uint8_t enableVAD) {
  bcg729EncoderChannelContextStruct* const context = malloc(sizeof *context);
  if (context == NULL) return NULL;
  const ZppcOptions options = {.dtx = enableVAD != 0};
  trackerInit(&context->tracker);
  context->coder = zppcEncoderCreate(zppcFindCodec("g729a"), &options, NULL);
  if (context->coder != NULL) return context;
  free(context);
  return NULL;
}

void closeBcg729EncoderChannel(bcg729EncoderChannelContextStruct* context) {
  if (context == NULL) return;
  zppcEncoderDestroy(context->coder);
  free(context);
}

void bcg729Encoder(bcg729EncoderChannelContextStruct* context, const int16_t pcm[], uint8_t octets[], uint8_t* length) {
  const int written = zppcEncode(context->coder, pcm, kFrame, octets, kSpeechOctets);
  *length = (uint8_t)(written > 0 ? written : 0);
  trackerFollow(&context->tracker, octets, *length);
}

void bcg729GetRFC3389Payload(bcg729EncoderChannelContextStruct* context, uint8_t payload[]) {
  rfc3389FromDescriptor(&context->tracker, payload);
}

bcg729DecoderChannelContextStruct* initBcg729DecoderChannel(void) {
  bcg729DecoderChannelContextStruct* const context = malloc(sizeof *context);
  if (context == NULL) return NULL;
  trackerInit(&context->tracker);
  context->coder = zppcDecoderCreate(zppcFindCodec("g729a"), NULL, NULL);
  if (context->coder != NULL) return context;
  free(context);
  return NULL;
}

void closeBcg729DecoderChannel(bcg729DecoderChannelContextStruct* context) {
  if (context == NULL) return;
  zppcDecoderDestroy(context->coder);
  free(context);
}

/* Callers mark a frame that was not sent as erased, or as a descriptor without octets; the decoder tells a loss from a pause by
 * what came before. */
void bcg729Decoder(bcg729DecoderChannelContextStruct* context, const uint8_t octets[], uint8_t length, uint8_t erased,
                   uint8_t descriptor, uint8_t rfc3389, int16_t pcm[]) {
  uint8_t nearest[kSidOctets];
  if (octets == NULL || length == 0) {
    if (!descriptor) erased = 1;
    length = 0;
    octets = nearest; /* nothing is read */
  } else if (descriptor && rfc3389 && !erased) {
    descriptorFromRfc3389(&context->tracker, octets, length, nearest);
    octets = nearest;
    length = kSidOctets;
  } else if (length != kSidOctets && length != kSpeechOctets) {
    erased = 1;
  } else if (descriptor) {
    length = kSidOctets;
  }
  if (erased) octets = NULL;
  trackerFollow(&context->tracker, octets, length);
  (void)zppcDecode(context->coder, octets, length, pcm, kFrame);
}
