/* libopencore-amrnb's interface over zppcodecs. */
#include "amr_frames.h"
#include "opencore-amrnb/interf_dec.h"
#include "opencore-amrnb/interf_enc.h"

enum { kFrame = 160 };

void* Encoder_Interface_init(int dtx) {
  const ZppcOptions options = {.dtx = dtx != 0};
  return zppcEncoderCreate(zppcFindCodec("amr"), &options, NULL);
}

void Encoder_Interface_exit(void* state) { zppcEncoderDestroy(state); }

int Encoder_Interface_Encode(void* state, enum Mode mode, const short* speech, unsigned char* out, int forceSpeech) {
  static const int bitRates[] = {4750, 5150, 5900, 6700, 7400, 7950, 10200, 12200};
  (void)forceSpeech;
  if ((unsigned)mode <= MR122) (void)zppcEncoderSetBitRate(state, bitRates[mode]);
  return encodeFrame(state, speech, kFrame, out);
}

void* Decoder_Interface_init(void) { return zppcDecoderCreate(zppcFindCodec("amr"), NULL, NULL); }

void Decoder_Interface_exit(void* state) { zppcDecoderDestroy(state); }

void Decoder_Interface_Decode(void* state, const unsigned char* in, short* out, int bfi) {
  static const unsigned char octets[16] = {13, 14, 16, 18, 20, 21, 27, 32, 6, 0, 0, 0, 0, 0, 0, 1};
  if (bfi != 0)
    (void)zppcDecode(state, NULL, 0, out, kFrame);
  else if (octets[typeOf(in)] > 0)
    decodeGoodFrame(state, in, octets[typeOf(in)], out, kFrame);
}
