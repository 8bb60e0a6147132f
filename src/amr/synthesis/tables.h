// Constant tables of the decoder's excitation. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// A response of 40 samples, twice: from any sample on it goes round.
struct DispersionResponse {
  Zpp16s twice[80];

  const Zpp16s* from(int position) const { return twice + 40 - position; }  // delayed by 0..39
};

// Strong dispersion: 40, Q15, ph_imp_low
extern const DispersionResponse phImpLow;
// Medium dispersion: 40, Q15, ph_imp_mid
extern const DispersionResponse phImpMid;
// Strong dispersion at 7.95 kbit/s: 40, Q15, ph_imp_low_MR795
extern const DispersionResponse phImpLowMR795;
// Medium dispersion at 7.95 kbit/s: 40, Q15, ph_imp_mid_MR795
extern const DispersionResponse phImpMidMR795;
