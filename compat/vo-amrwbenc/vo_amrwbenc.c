/* libvo-amrwbenc's interface over zppcodecs. */
#include "vo-amrwbenc/enc_if.h"

#include <stdlib.h>

#include "amr_frames.h"

enum { kFrame = 320, kHighestMode = 8 };

/* Whether transmission is discontinuous is known at the first frame only. */
typedef struct {
  int started, dtx;
  size_t bytes;
  ZppcEncoder* encoder;
  unsigned char memory[];
} Stream;

void* E_IF_init(void) {
  const size_t bytes = (size_t)zppcEncoderSize(zppcFindCodec("amr-wb"));
  Stream* const stream = malloc(sizeof *stream + bytes);
  if (stream == NULL) return NULL;
  stream->started = 0;
  stream->bytes = bytes;
  return stream;
}

void E_IF_exit(void* state) { free(state); }

int E_IF_encode(void* state, int mode, const short* speech, unsigned char* out, int dtx) {
  static const int bitRates[] = {6600, 8850, 12650, 14250, 15850, 18250, 19850, 23050, 23850};
  Stream* const stream = state;
  const ZppcOptions options = {.bitRate = bitRates[mode < 0 || mode > kHighestMode ? kHighestMode : mode], .dtx = dtx != 0};
  if (!stream->started || stream->dtx != options.dtx) {
    stream->encoder = zppcEncoderInit(stream->memory, stream->bytes, zppcFindCodec("amr-wb"), &options, NULL);
    stream->dtx = options.dtx;
    stream->started = 1;
  }
  (void)zppcEncoderSetBitRate(stream->encoder, options.bitRate);
  return encodeFrame(stream->encoder, speech, kFrame, out);
}
