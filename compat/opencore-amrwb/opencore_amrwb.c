/* libopencore-amrwb's interface over zppcodecs. */
#include "amr_frames.h"
#include "opencore-amrwb/dec_if.h"

enum { kFrame = 320 };

void* D_IF_init(void) { return zppcDecoderCreate(zppcFindCodec("amr-wb"), NULL, NULL); }

void D_IF_exit(void* state) { zppcDecoderDestroy(state); }

void D_IF_decode(void* state, const unsigned char* bits, short* synth, int bfi) {
  static const unsigned char octets[16] = {18, 24, 33, 37, 41, 47, 51, 59, 61, 6, 0, 0, 0, 0, 0, 1};
  if (bfi != _good_frame || octets[typeOf(bits)] == 0)
    (void)zppcDecode(state, NULL, 0, synth, kFrame);
  else
    decodeGoodFrame(state, bits, octets[typeOf(bits)], synth, kFrame);
}
