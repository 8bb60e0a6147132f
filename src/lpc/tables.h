// Constant tables that codecs share. Content, shape, Q format, the standards' names.
#pragma once

#include "zppsc.h"

// Grid on which the Chebyshev polynomials are evaluated, cosines of equidistant angles: 60 intervals, Q15, ITU-T G.729 and 3GPP
// TS 26.073 name grid
extern const Zpp16s w_eval_60[61];
// Cosine samples of the LSP/LSF conversions: 65, Q15, ITU-T G.729 name table2, 3GPP TS 26.073 name table
extern const Zpp16s cos15[65];
// Slopes LSP to LSF between the samples of cos15: 64, Q12, ITU-T G.729 name slope_acos, 3GPP TS 26.073 name slope
extern const Zpp16s acos12[64];
