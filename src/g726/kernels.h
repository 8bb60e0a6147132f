// Kernels of ITU-T G.726 and their processor variants.
#pragma once

#include "core/variants.h"

// Write the reset state; rate 0..3 for 16, 24, 32 and 40 kbit/s, law 0 mu, 1 A, 2 linear.
void ownEncodeInit_G726_16s8u(void* state, int rate);
void ownDecodeInit_G726_8u16s(void* state, int rate, int law);

#define ZPP_G726_KERNELS(KERNEL)                                                                 \
  KERNEL(ownEncode_G726_16s8u, W7, void(void* state, const Zpp16s* src, Zpp8u* dst, Zpp32u len)) \
  KERNEL(ownDecode_G726_8u16s, W7, void(void* state, const Zpp8u* src, Zpp16s* dst, Zpp32u len))
ZPP_G726_KERNELS(ZPP_DECLARE_KERNEL)
