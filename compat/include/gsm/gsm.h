/* GSM full rate by the interface of libgsm: eight functions, frames of 160 samples and 33 octets. */
#ifndef GSM_H
#define GSM_H

#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct gsm_state* gsm;
typedef short gsm_signal;
typedef unsigned char gsm_byte;
typedef gsm_byte gsm_frame[33];

#define GSM_MAGIC 0xD

#define GSM_MAJOR 1
#define GSM_MINOR 0
#define GSM_PATCHLEVEL 22

enum {
  GSM_OPT_VERBOSE = 1,
  GSM_OPT_FAST = 2,    /* not offered */
  GSM_OPT_LTP_CUT = 3, /* not offered */
  GSM_OPT_WAV49 = 4,
  GSM_OPT_FRAME_INDEX = 5,
  GSM_OPT_FRAME_CHAIN = 6
};

/* Null where there is no memory. */
gsm gsm_create(void);
void gsm_destroy(gsm state);

/* Returns the option's value so far, and sets it to *value unless value is null; -1 for an option that is not offered. */
int gsm_option(gsm state, int option, int* value);

/* With GSM_OPT_WAV49, calls take turns at the two frames of a pair of 65 octets, low bits first: the encoder writes the first
 * frame to octets 0 .. 32 and the second to octets 32 .. 64; the decoder reads octets 0 .. 32, then octets 33 .. 64. The half
 * octet in between waits in the state. */
void gsm_encode(gsm state, gsm_signal* pcm, gsm_byte* octets);
/* 0; -1, with state and pcm unchanged, for octets without GSM_MAGIC */
int gsm_decode(gsm state, gsm_byte* octets, gsm_signal* pcm);

/* Octets to the 76 parameters of a frame, and back; -1 as above */
int gsm_explode(gsm state, gsm_byte* octets, gsm_signal* parameters);
void gsm_implode(gsm state, gsm_signal* parameters, gsm_byte* octets);

/* Prints the parameters; -1 as above. */
int gsm_print(FILE* stream, gsm state, gsm_byte* octets);

#ifdef __cplusplus
}
#endif

#endif
