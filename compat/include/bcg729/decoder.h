/* G.729A and B by the interface of libbcg729: the decoder. */
#ifndef DECODER_H
#define DECODER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define BCG729_VERSION_NUMBER 0x010101

typedef struct bcg729DecoderChannelContextStruct_struct bcg729DecoderChannelContextStruct;

/* Null where there is no memory. */
bcg729DecoderChannelContextStruct* initBcg729DecoderChannel(void);
void closeBcg729DecoderChannel(bcg729DecoderChannelContextStruct* context);

/* Decodes a frame to 80 samples. */
void bcg729Decoder(bcg729DecoderChannelContextStruct* context, const uint8_t octets[], uint8_t length, uint8_t erased,
                   uint8_t descriptor, uint8_t rfc3389, int16_t pcm[]);

#ifdef __cplusplus
}
#endif

#endif
