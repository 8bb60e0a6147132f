// Constant tables of the pitch analysis. Content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// Interpolation filter of the normalised correlation in steps of 1/3, one side: 13, Q15, ITU-T G.729 name inter_3
extern const Zpp16s inter_3[13];
// Interpolation filter of the past excitation in steps of 1/3, one side: 31, Q15, ITU-T G.729 name inter_3l
extern const Zpp16s inter_3l[31];
// The same in single precision, as Annex C gives it: 31, ITU-T G.729 Annex C name inter_3l
extern const Zpp32f inter_3l_32f[31];

// The same filter by phase 0..2, the thirds by which the centre lies behind sample 0: samples -9..10 and four zeros
struct ExcitationTaps {
  alignas(16) Zpp16s at[3][24];
};
extern const ExcitationTaps inter_3l_taps;

// The same filters for eight lanes, by phase 0..2, the thirds by which the centre lies behind sample 0. Excitation: samples
// -9..10 in pairs, each pair four times. Correlation: samples -3..4.
struct ExcitationTapPairs {
  alignas(16) Zpp16s at[3][10][8];
};
struct CorrelationTaps {
  alignas(16) Zpp16s at[3][8];
};
extern const ExcitationTapPairs inter_3l_pairs;
extern const CorrelationTaps inter_3_taps;
