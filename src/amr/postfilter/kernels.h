// The kernels of the postfilter and their processor variants (3GPP TS 26.090 clause 6.2). Arguments are trusted.
#pragma once

#include "amr/rate.h"
#include "core/variants.h"

// ownCompensateTilt: srcDst[n] -= srcDst[n - 1] * factor (Q15, truncated) as it was, 40 samples with one before them.
#define ZPP_AMR_POSTFILTER_KERNELS(KERNEL) KERNEL(ownCompensateTilt_GSMAMR_16s_I, W7, void(Zpp16s factor, Zpp16s * srcDst))

ZPP_AMR_POSTFILTER_KERNELS(ZPP_DECLARE_KERNEL)

void ownPostFilter_GSMAMR_16s_I(const Zpp16s* a, Zpp16s* speech, Zpp16s* mem, zpp::amr::Mode mode);
