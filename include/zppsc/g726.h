/* zppsc: ADPCM, ITU-T G.726. Include zppsc.h. */
#ifndef ZPPSC_G726_H
#define ZPPSC_G726_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- ADPCM at 16, 24, 32 and 40 kbit/s (ITU-T G.726) ------------------------------------------------------------------------
 *
 * One state a stream and direction: ask for its size, allocate it at any alignment, Init it, then code in calls of any length;
 * the stream is the concatenation of the calls. Init may be repeated to reset. A refused call leaves the state as it is.
 * rate: ZPP_RATE_16000, ZPP_RATE_24000, ZPP_RATE_32000 or ZPP_RATE_40000, else zppStsOutOfRange.
 * Codes are the standard's I: 2, 3, 4 or 5 bits, the sign on top; packing them into bytes is left to the application.
 * Source: ITU-T G.726 (12/90) clause 4.2, exact to the test sequences of its Appendix II.
 */

/* *size = 88, *size = 92: bytes of an encoder's and of a decoder's state. Status: zppStsOk, zppStsNullPointer. */
ZPPAPI ZppStatus zppsEncodeGetStateSize_G726_16s8u(Zpp32s* size);
ZPPAPI ZppStatus zppsDecodeGetStateSize_G726_8u16s(Zpp32s* size);

/* Writes the reset state of the standard, all of the 88 bytes. Status: zppStsOk, zppStsNullPointer, zppStsOutOfRange. */
ZPPAPI ZppStatus zppsEncodeInit_G726_16s8u(void* state, Zpp32s rate);

/* Writes the reset state of the standard, all of the 92 bytes.
 * law: what the decoder delivers: 0 mu-law code words, 1 A-law code words, both with synchronous coding adjustment; 2 linear
 * samples. Status: zppStsOk, zppStsNullPointer, zppStsOutOfRange for the rate, then for the law. */
ZPPAPI ZppStatus zppsDecodeInit_G726_8u16s(void* state, Zpp32s rate, Zpp32s law);

/* Codes len samples.
 * src: len samples of 14-bit uniform PCM, -8192..8191 (16-bit speech shifted right by 2; expanded G.711 code words on the scale
 * where mu-law reaches 8031 and A-law 8064); others are coded as they are, a difference to the prediction beyond 16 bits
 * saturating. dst: len codes, one in the low 2, 3, 4 or 5 bits of each byte, the upper bits zero.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len 0. */
ZPPAPI ZppStatus zppsEncode_G726_16s8u(void* state, const Zpp16s* src, Zpp8u* dst, Zpp32u len);

/* Decodes len codes.
 * src: len codes, one a byte; the bits above the rate's width are ignored. dst: len values: linear samples -8192..8191 (times 4
 * for 16-bit speech), or law code words as transmitted, 0..255.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len 0. */
ZPPAPI ZppStatus zppsDecode_G726_8u16s(void* state, const Zpp8u* src, Zpp16s* dst, Zpp32u len);

#ifdef __cplusplus
}
#endif

#endif
