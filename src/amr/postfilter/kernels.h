// The kernels of the postfilter and their processor variants (3GPP TS 26.090 clause 6.2). Arguments are trusted.
#pragma once

#include "amr/frame.h"
#include "amr/rate.h"
#include "core/variants.h"

// A subframe's A(z/g3) over A(z/g4), Q12, and the start of its impulse response
struct FormantFilter {
  Zpp16s numerator[11], denominator[11];
};
struct FormantResponse {
  static constexpr int kLength = 24;
  Zpp16s at[kLength];
};

// ownCompensateTilt: srcDst[n] -= srcDst[n - 1] * factor (Q15, truncated) as it was, 40 samples with one before them.
// ownFormantResponses: the impulse responses of the filters of four subframes.
#define ZPP_AMR_POSTFILTER_KERNELS(KERNEL)                                             \
  KERNEL(ownCompensateTilt_GSMAMR_16s_I, W7, void(Zpp16s factor, Zpp16s * srcDst))     \
  KERNEL(ownFormantResponses_GSMAMR_16s, W7, void(const FormantFilter* filters, FormantResponse* responses))

ZPP_AMR_POSTFILTER_KERNELS(ZPP_DECLARE_KERNEL)

void ownPostFilter_GSMAMR_16s_I(const Zpp16s* a, Zpp16s* speech, Zpp16s* mem, zpp::amr::Mode mode);
