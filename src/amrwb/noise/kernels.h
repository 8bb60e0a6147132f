// White noise, which high band and comfort noise share. Arguments are trusted.
#pragma once

#include "core/variants.h"

// ownNoise: the next len values of the random generator, >> shift; len a multiple of 8.
#define ZPP_AMRWB_NOISE_KERNELS(KERNEL) KERNEL(ownNoise_AMRWB_16s, W7, void(Zpp16s * dst, int len, int shift, Zpp16s* seed))

ZPP_AMRWB_NOISE_KERNELS(ZPP_DECLARE_KERNEL)
