// The kernels of this room and their processor variants (see core/variants.h).
//
// Frames of 320 samples, half frames of 160, regions of 20 MLT coefficients. Destinations do not overlap sources; the
// transforms also work in place.
#pragma once

#include "core/variants.h"

#define ZPP_G7221_KERNELS(KERNEL)                                                                    \
  KERNEL(ownDecomposeMLTToDCT_G722_16s, W7, void(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst)) \
  KERNEL(ownDecomposeDCTToMLT_G722_16s, W7, void(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst)) \
  KERNEL(ownDCTFwd_G722_16s, W7, void(const Zpp16s* src, Zpp16s* dst))                               \
  KERNEL(ownDCTInv_G722_16s, W7, void(const Zpp16s* src, Zpp16s* dst))                               \
  KERNEL(ownPreHuffman_16s, W7, void(const Zpp16s* src, Zpp16s* levels, Zpp32s category, Zpp32s powerIndex))

ZPP_G7221_KERNELS(ZPP_DECLARE_KERNEL)

void ownHuffmanEncode_G722_16s32u(Zpp32s category, Zpp32s powerIndex, const Zpp16s* src, Zpp32u* dst, Zpp32s* bitCount);
