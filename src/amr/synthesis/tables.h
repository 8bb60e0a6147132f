// Constant tables of the decoder's excitation. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// Strong dispersion: 40, Q15, ph_imp_low
extern const Zpp16s phImpLow[40];
// Medium dispersion: 40, Q15, ph_imp_mid
extern const Zpp16s phImpMid[40];
// Strong dispersion at 7.95 kbit/s: 40, Q15, ph_imp_low_MR795
extern const Zpp16s phImpLowMR795[40];
// Medium dispersion at 7.95 kbit/s: 40, Q15, ph_imp_mid_MR795
extern const Zpp16s phImpMidMR795[40];
