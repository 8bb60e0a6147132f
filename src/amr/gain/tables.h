// Constant tables of the gains. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// Pitch gains at 7.95 and 12.2 kbit/s: 16, Q14, qua_gain_pitch
extern const Zpp16s quaGainPitch[16];
// Code gain factors at 7.95 and 12.2 kbit/s, their energies for the predictor at 12.2 and for that of the other rates: 32 x 3,
// Q11, Q10 of log2, Q10 of dB, qua_gain_code
extern const Zpp16s quaGainCode[32][3];
// Gains at 5.15 and 5.9 kbit/s: pitch gain, code gain factor, its energies as above: 64 x 4, Q14, Q12, Q10, Q10,
// table_gain_lowrates
extern const Zpp16s tableGainLowrates[64][4];
// Gains at 6.7, 7.4 and 10.2 kbit/s: the same, 128 x 4, table_gain_highrates
extern const Zpp16s tableGainHighrates[128][4];
// Gains at 4.75 kbit/s: [subframe of a pair] pitch gain, code gain factor: 256 x 2 x 2, Q14, Q12, table_gain_MR475
extern const Zpp16s tableGainMR475[256][2][2];
// Attenuation of the pitch gain by concealment state: 7, Q15, pdown
extern const Zpp16s pdown[7];
// Attenuation of the code gain by concealment state: 7, Q15, cdown
extern const Zpp16s cdown[7];
