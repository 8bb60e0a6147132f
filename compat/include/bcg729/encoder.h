/* G.729A and B by the interface of libbcg729: the encoder. */
#ifndef ENCODER_H
#define ENCODER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct bcg729EncoderChannelContextStruct_struct bcg729EncoderChannelContextStruct;

/* enableVAD: discontinuous transmission (Annex B) where it is not 0. Null where there is no memory. */
bcg729EncoderChannelContextStruct* initBcg729EncoderChannel(uint8_t enableVAD);
void closeBcg729EncoderChannel(bcg729EncoderChannelContextStruct* context);

/* Codes 80 samples to 10 octets; with Annex B also to 2, a silence descriptor, or 0, which *length receives. */
void bcg729Encoder(bcg729EncoderChannelContextStruct* context, const int16_t pcm[], uint8_t octets[], uint8_t* length);

/* The last silence descriptor as a payload of RFC 3389: 11 octets, level and ten reflection coefficients */
void bcg729GetRFC3389Payload(bcg729EncoderChannelContextStruct* context, uint8_t payload[]);

#ifdef __cplusplus
}
#endif

#endif
