/* libgsm's interface over zppcodecs. */
#include "gsm/gsm.h"

#include <stdlib.h>
#include <string.h>

#include "zppcodecs.h"

enum { kFrame = 160, kOctets = 33, kParameters = 76, kLars = 8, kSubframe = 17 };

struct gsm_state {
  ZppcEncoder* encoder;
  ZppcDecoder* decoder;
  signed char verbose;
  int wav49;
  unsigned char frameIndex; /* WAV49: 1 between the two frames of a pair */
  unsigned char frameChain; /* WAV49: the half octet that they share */
};

/* Bits of the 76 parameters (3GPP TS 46.010 table 1.1) */
static int widthOf(int parameter) {
  static const unsigned char lars[kLars] = {6, 6, 5, 5, 4, 4, 3, 3};
  static const unsigned char subframe[4] = {7, 2, 2, 6}; /* lag, gain, grid, amplitude; pulses have 3 */
  if (parameter < kLars) return lars[parameter];
  const int place = (parameter - kLars) % kSubframe;
  return place < 4 ? subframe[place] : 3;
}

/* RTP's order: the magic, then the parameters, high bits first */
static int readFrame(const gsm_byte* octets, gsm_signal* parameters) {
  if (octets[0] >> 4 != GSM_MAGIC) return -1;
  int at = 4;
  for (int p = 0; p < kParameters; ++p) {
    int value = 0;
    for (int n = widthOf(p); n > 0; --n, ++at) value = value << 1 | (octets[at / 8] >> (7 - at % 8) & 1);
    parameters[p] = (gsm_signal)value;
  }
  return 0;
}

static void writeFrame(const gsm_signal* parameters, gsm_byte* octets) {
  memset(octets, 0, kOctets);
  octets[0] = GSM_MAGIC << 4;
  int at = 4;
  for (int p = 0; p < kParameters; ++p)
    for (int n = widthOf(p) - 1; n >= 0; --n, ++at) octets[at / 8] |= (gsm_byte)((parameters[p] >> n & 1) << (7 - at % 8));
}

/* WAV49's order: low bits first, 32 octets and a half */
static void readPaired(const gsm_byte* octets, int at, gsm_signal* parameters) {
  for (int p = 0; p < kParameters; ++p) {
    int value = 0;
    for (int n = 0; n < widthOf(p); ++n, ++at) value |= (octets[at / 8] >> at % 8 & 1) << n;
    parameters[p] = (gsm_signal)value;
  }
}

static void writePaired(const gsm_signal* parameters, int at, gsm_byte* octets) {
  for (int p = 0; p < kParameters; ++p)
    for (int n = 0; n < widthOf(p); ++n, ++at) octets[at / 8] |= (gsm_byte)((parameters[p] >> n & 1) << at % 8);
}

gsm gsm_create(void) {
  const gsm state = calloc(1, sizeof *state);
  if (state == NULL) return NULL;
  const ZppcCodec* const codec = zppcFindCodec("gsm-fr");
  state->encoder = zppcEncoderCreate(codec, NULL, NULL);
  state->decoder = zppcDecoderCreate(codec, NULL, NULL);
  if (state->encoder != NULL && state->decoder != NULL) return state;
  gsm_destroy(state);
  return NULL;
}

void gsm_destroy(gsm state) {
  if (state == NULL) return;
  zppcEncoderDestroy(state->encoder);
  zppcDecoderDestroy(state->decoder);
  free(state);
}

int gsm_option(gsm state, int option, int* value) {
  int before = -1;
  switch (option) {
    case GSM_OPT_VERBOSE:
      before = state->verbose;
      if (value != NULL) state->verbose = (signed char)*value;
      break;
    case GSM_OPT_WAV49:
      before = state->wav49;
      if (value != NULL) state->wav49 = *value != 0;
      break;
    case GSM_OPT_FRAME_INDEX:
      before = state->frameIndex;
      if (value != NULL) state->frameIndex = (unsigned char)*value;
      break;
    case GSM_OPT_FRAME_CHAIN:
      before = state->frameChain;
      if (value != NULL) state->frameChain = (unsigned char)*value;
      break;
    default:
      break;
  }
  return before;
}

int gsm_explode(gsm state, gsm_byte* octets, gsm_signal* parameters) {
  if (!state->wav49) return readFrame(octets, parameters);
  if (state->frameIndex == 1) {
    readPaired(octets, 0, parameters);
    state->frameChain = octets[kOctets - 1] >> 4;
  } else {
    gsm_byte whole[kOctets];
    whole[0] = (gsm_byte)(state->frameChain << 4);
    memcpy(whole + 1, octets, kOctets - 1);
    whole[1] |= state->frameChain >> 4;
    readPaired(whole, 4, parameters);
  }
  return 0;
}

void gsm_implode(gsm state, gsm_signal* parameters, gsm_byte* octets) {
  if (!state->wav49) {
    writeFrame(parameters, octets);
    return;
  }
  memset(octets, 0, kOctets);
  if (state->frameIndex) {
    writePaired(parameters, 0, octets);
    state->frameChain = octets[kOctets - 1];
  } else {
    octets[0] = state->frameChain & 15;
    writePaired(parameters, 4, octets);
  }
}

void gsm_encode(gsm state, gsm_signal* pcm, gsm_byte* octets) {
  if (!state->wav49) {
    (void)zppcEncode(state->encoder, pcm, kFrame, octets, kOctets);
    return;
  }
  gsm_byte frame[kOctets];
  gsm_signal parameters[kParameters];
  state->frameIndex = !state->frameIndex;
  (void)zppcEncode(state->encoder, pcm, kFrame, frame, kOctets);
  (void)readFrame(frame, parameters);
  gsm_implode(state, parameters, octets);
}

int gsm_decode(gsm state, gsm_byte* octets, gsm_signal* pcm) {
  gsm_byte frame[kOctets];
  if (state->wav49) {
    gsm_signal parameters[kParameters];
    state->frameIndex = !state->frameIndex;
    (void)gsm_explode(state, octets, parameters);
    writeFrame(parameters, frame);
    octets = frame;
  }
  return zppcDecode(state->decoder, octets, kOctets, pcm, kFrame) == kFrame ? 0 : -1;
}

int gsm_print(FILE* stream, gsm state, gsm_byte* octets) {
  (void)state;
  gsm_signal parameters[kParameters];
  if (readFrame(octets, parameters) != 0) return -1;
  const gsm_signal* p = parameters;
  fprintf(stream, "LARc:\t%2.2d  %2.2d  %2.2d  %2.2d  %2.2d  %2.2d  %2.2d  %2.2d\n", p[0], p[1], p[2], p[3], p[4], p[5], p[6],
          p[7]);
  p += kLars;
  for (int subframe = 1; subframe <= 4; ++subframe, p += kSubframe) {
    fprintf(stream, "#%d: \tNc %4.4d    bc %d    Mc %d    xmaxc %d\n", subframe, p[0], p[1], p[2], p[3]);
    for (int i = 4; i < kSubframe; ++i) fprintf(stream, "%c%2.2d", i == 4 ? '\t' : ' ', p[i]);
    fputc('\n', stream);
  }
  return 0;
}
