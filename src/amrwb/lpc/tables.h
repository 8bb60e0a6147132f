// Constant tables of this folder. Content, shape, Q format, the standard's name (3GPP TS 26.173).
#pragma once

#include "zppsc.h"

namespace zpp::amrwb {

// Analysis window of 24 ms at 12.8 kHz: 384 entries, Q15, window
extern const Zpp16s analysisWindow[384];
// Lag window of 60 Hz with white noise correction, lags 1..16: 16 entries, upper words, Q15, lag_h
extern const Zpp16s lagWindowHigh[16];
// and their lower words of 15 bits: 16 entries, lag_l
extern const Zpp16s lagWindowLow[16];
// Cosines at which the sign of the ISP polynomials is taken, descending: 101 entries, Q15, grid
extern const Zpp16s ispGrid[101];
// Cosine of the ISF scale in steps of 128: 129 entries, Q15, table
extern const Zpp16s ispCosine[129];
// Reciprocal slopes of ispCosine: 128 entries, Q11, slope
extern const Zpp16s ispSlope[128];
// Weight of the new ISPs in subframes 0..3: 4 entries, Q15, interpol_frac
extern const Zpp16s ispInterpolation[4];

}  // namespace zpp::amrwb
