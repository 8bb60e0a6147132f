// Constant tables of this step. Content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// 16 to 12.8 kHz, one filter a fraction f/4 of an input sample: 4 x 30 taps and two zeros, Q14, fir_down[3 - f + 4k]
extern const Zpp16s downSamplingTaps[4][32];
// 12.8 to 16 kHz, one filter a fraction f/5 of an input sample: 5 x 24 taps, Q14, fir_up[4 - f + 5k]
extern const Zpp16s upSamplingTaps[5][24];
// Low-pass before the decimation of the weighted speech: 5 taps, Q15, h_fir
extern const Zpp16s decimationTaps[5];
// Band-pass 6 to 7 kHz of the high band, gain 4: 31 taps and a zero, Q15, fir_6k_7k
extern const Zpp16s bandPass6To7kHz[32];
// Low-pass 7 kHz of the high band at 23.85 kbit/s: 31 taps and a zero, Q15, fir_7k
extern const Zpp16s lowPass7kHz[32];
