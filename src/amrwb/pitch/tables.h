// Constant tables of this step. Content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// Weights of the open-loop lags, and of their distances from the median lag: 199 entries, Q15, corrweight
extern const Zpp16s lagWeights[199];
// Interpolation of the normalised correlation, one filter a quarter q: 4 x 8 taps, Q14, inter4_1[3 - q + 4k]
extern const Zpp16s correlationTaps[4][8];
// Interpolation of the past excitation, one filter a quarter q: 4 x 32 taps, Q14, inter4_2[3 - q + 4k]
extern const Zpp16s excitationTaps[4][32];
