#include <stdio.h>
#include <zppcodecs.h>

int main(void) {
  const ZppcCodec* const codec = zppcFindCodec("g729a");
  ZppcEncoder* const encoder = zppcEncoderCreate(codec, NULL, NULL);
  ZppcDecoder* const decoder = zppcDecoderCreate(codec, NULL, NULL);
  int16_t speech[80] = {0}, heard[80];
  uint8_t payload[10];
  const int octets = zppcEncode(encoder, speech, 80, payload, sizeof payload);
  printf("%d octets, %d samples\n", octets, zppcDecode(decoder, payload, octets, heard, 80));
  zppcDecoderDestroy(decoder);
  zppcEncoderDestroy(encoder);
  return 0;
}
