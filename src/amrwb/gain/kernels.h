// The kernels of the gains of AMR-WB. Arguments are trusted.
#pragma once

#include "amrwb/rate.h"
#include "core/variants.h"

namespace zpp::amrwb {

// The error of a pair of gains (gp, gc): the sum of coefficients times gp^2, gp, gc^2, gc and gp gc. coarse: their upper parts,
// Q15 of the largest at most a quarter; fine: 12 bits below these, 0 or more
struct GainError {
  Zpp16s coarse[5], fine[5];
};

}  // namespace zpp::amrwb

// ownSearchGains_AMRWB_16s: the pair with the least error, the first of equals. pairs: count of them, a multiple of 8, pitch
// gain and
//   factor of the predicted code gain, 0 or more; predicted: its mantissa, 0 or more.
#define ZPP_AMRWB_GAIN_KERNELS(KERNEL) \
  KERNEL(ownSearchGains_AMRWB_16s, W7, \
         int(const Zpp16s(*pairs)[2], int count, Zpp16s predicted, const zpp::amrwb::GainError* error))

ZPP_AMRWB_GAIN_KERNELS(ZPP_DECLARE_KERNEL)

void ownGainQuant_AMRWB_16s(const Zpp16s* target, const Zpp16s* filteredVector, const Zpp16s* filteredCode, const Zpp16s* code,
                            const Zpp16s* coef, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* index, Zpp16s* mem, int scale,
                            bool clip, zpp::amrwb::Mode mode);
void ownDecodeGain_AMRWB_16s(Zpp16s index, const Zpp16s* code, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* mem, bool badFrame,
                             bool prevBadFrame, bool unusable, int state, int vadHist, zpp::amrwb::Mode mode);
