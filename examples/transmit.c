/* Codes a WAV file frame by frame, loses some of the frames on the way, and writes what a listener hears.
 *
 *     transmit CODEC LOSS_PERCENT IN.wav OUT.wav
 *
 * Link with zppcodecs and sndfile.
 */
#include <sndfile.h>
#include <stdio.h>
#include <stdlib.h>

#include "zppcodecs.h"

int main(int argc, char** argv) {
  if (argc != 5) {
    fprintf(stderr, "usage: transmit CODEC LOSS_PERCENT IN.wav OUT.wav\n");
    return 1;
  }
  const ZppcCodec* codec = zppcFindCodec(argv[1]);
  if (codec == NULL) {
    fprintf(stderr, "transmit: there is no codec %s\n", argv[1]);
    return 1;
  }
  const int lossPercent = atoi(argv[2]);

  SF_INFO format = {0};
  SNDFILE* in = sf_open(argv[3], SFM_READ, &format);
  if (in == NULL || format.channels != 1 || format.samplerate != codec->sampleRate) {
    fprintf(stderr, "transmit: %s is no sound file of one channel at %d Hz\n", argv[3], codec->sampleRate);
    return 2;
  }
  SNDFILE* out = sf_open(argv[4], SFM_WRITE, &format);
  if (out == NULL) {
    fprintf(stderr, "transmit: cannot write %s\n", argv[4]);
    return 2;
  }

  ZppcOptions options = {0};
  options.dtx = (codec->features & ZPPC_FEATURE_DTX) != 0;
  ZppcEncoder* encoder = zppcEncoderCreate(codec, &options, NULL);
  ZppcDecoder* decoder = zppcDecoderCreate(codec, &options, NULL);
  short* pcm = calloc((size_t)codec->frameSamples, sizeof *pcm);
  unsigned char* payload = calloc((size_t)codec->maxPayload, 1);
  if (encoder == NULL || decoder == NULL || pcm == NULL || payload == NULL) {
    fprintf(stderr, "transmit: out of memory\n");
    return 2;
  }

  long frames = 0, lost = 0, octets = 0;
  while (sf_read_short(in, pcm, codec->frameSamples) == codec->frameSamples) {
    const int size = zppcEncode(encoder, pcm, codec->frameSamples, payload, codec->maxPayload);
    if (size < 0) {
      fprintf(stderr, "transmit: %s\n", zppcErrorText(size));
      return 2;
    }
    octets += size;
    ++frames;
    /* The network: a frame arrives, or is lost. What was never sent cannot be lost. */
    const int isLost = size > 0 && rand() % 100 < lossPercent;
    lost += isLost;
    const int samples = zppcDecode(decoder, isLost ? NULL : payload, size, pcm, codec->frameSamples);
    if (samples < 0 || sf_write_short(out, pcm, samples) != samples) {
      fprintf(stderr, "transmit: %s\n", samples < 0 ? zppcErrorText(samples) : "the output cannot be written");
      return 2;
    }
  }
  printf("%s: %ld frames, %ld lost, %ld octets\n", codec->standard, frames, lost, octets);

  free(payload);
  free(pcm);
  zppcDecoderDestroy(decoder);
  zppcEncoderDestroy(encoder);
  sf_close(in);
  return sf_close(out) == 0 ? 0 : 2;
}
