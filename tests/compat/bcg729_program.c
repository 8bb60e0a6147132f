/* Codes raw speech to G.729A by libbcg729's interface, or back: a program that scripts/verify-compat builds against Debian's header
 * and library.   bcg729_program encode|decode < in > out      decode: every seventh frame is lost */
#include <bcg729/decoder.h>
#include <bcg729/encoder.h>
#include <stdio.h>
#include <string.h>

int main(int argc, char** argv) {
  int16_t pcm[80];
  uint8_t octets[10], length;
  if (argc == 2 && strcmp(argv[1], "encode") == 0) {
    bcg729EncoderChannelContextStruct* const encoder = initBcg729EncoderChannel(0);
    while (fread(pcm, sizeof pcm, 1, stdin) == 1) {
      bcg729Encoder(encoder, pcm, octets, &length);
      fwrite(octets, 1, length, stdout);
    }
    closeBcg729EncoderChannel(encoder);
  } else {
    bcg729DecoderChannelContextStruct* const decoder = initBcg729DecoderChannel();
    for (int frame = 0; fread(octets, sizeof octets, 1, stdin) == 1; ++frame) {
      const int lost = frame % 7 == 6;
      bcg729Decoder(decoder, lost ? NULL : octets, lost ? 0 : 10, (uint8_t)lost, 0, 0, pcm);
      fwrite(pcm, sizeof pcm, 1, stdout);
    }
    closeBcg729DecoderChannel(decoder);
  }
  return 0;
}
