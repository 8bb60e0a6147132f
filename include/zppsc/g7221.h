/* zppsc: ITU-T G.722.1. Include zppsc.h. */
#ifndef ZPPSC_G7221_H
#define ZPPSC_G7221_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Transform and region coding of ITU-T G.722.1 ---------------------------------------------------------------------------
 *
 * The signal-processing core of the 7 kHz codec at 24 and 32 kbit/s: frames of 320 samples at 16 kHz, a modulated lapped
 * transform (MLT) of two frames, and the vector Huffman code of its coefficients in regions of 20. Region powers, categories,
 * bit stream and noise fill are the caller's. Buffers of any alignment; nothing is read or written outside the extents below.
 * Unless listed otherwise the status is zppStsOk, or zppStsNullPointer for a null pointer.
 */

/* Windows and folds the old and the new frame into the input of the DCT-IV; then the new frame becomes the old one.
 * src: 320 new samples. srcDstOld: the 320 samples of the frame before (zeros at first), replaced by src. dst: 320 values,
 * round half up of window times samples, window 18318 = 1.0 as Q15; the block scaling before the transform is the caller's.
 * dst must not overlap the others. Source: ITU-T G.722.1 clause 3.1. */
ZPPAPI ZppStatus zppsDecomposeMLTToDCT_G722_16s(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst);

/* Forward DCT-IV with the analysis bias. src: 320 values, unchanged unless dst is the same buffer. dst: 320 MLT coefficients,
 * scaled to 16 bits by halving in every splitting stage. The sums of the 10-point core are exact and saturate
 * once. Source: ITU-T G.722.1 clause 3.2. */
ZPPAPI ZppStatus zppsDCTFwd_G722_16s(const Zpp16s* src, Zpp16s* dst);

/* Inverse DCT-IV with dither and synthesis bias. src: 320 MLT coefficients, unchanged unless dst is the same buffer; dst: 320
 * values for the synthesis window, once the caller has undone the block scaling. Stages saturate.
 * Source: ITU-T G.722.1 clause 4.6. */
ZPPAPI ZppStatus zppsDCTInv_G722_16s(const Zpp16s* src, Zpp16s* dst);

/* Windows the inverse transform's output and adds it to the overlap of the frame before.
 * src: 320 values. srcDstOld: 160 values, src[160..319] of the call before (zeros at first), replaced by those of this call.
 * dst: 320 samples, rounded half up and saturated, window 18096 = about 1.0 as Q13 after the transform's scaling.
 * dst must not overlap the others. Source: ITU-T G.722.1 clause 4.7. */
ZPPAPI ZppStatus zppsDecomposeDCTToMLT_G722_16s(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst);

/* Quantises and codes one region.
 * category: 0 (finest) to 7; category 7 carries no codes: one zero word, 0 bits. qp: power index 0..63, the region's power in
 * steps of a factor 2 (amplitude sqrt 2), 24 for amplitude 1. src: 20 MLT coefficients; -32768 counts as -32767.
 * dst: the codes, most significant bit first in 32-bit words, bits behind the end 0: max(1, ceil(*bitCount / 32)) words are
 * written, at most 6. bitCount: number of bits, at most 180.
 * Status also: zppStsBadScale for another category or power index. Source: ITU-T G.722.1 clause 3.6. */
ZPPAPI ZppStatus zppsHuffmanEncode_G722_16s32u(Zpp32s category, Zpp32s qp, const Zpp16s* src, Zpp32u* dst, Zpp32s* bitCount);

#ifdef __cplusplus
}
#endif

#endif
