// Constant tables of this folder. Content, shape, Q format, the standard's name (3GPP TS 26.173).
#pragma once

#include "zppsc.h"

namespace zpp::amrwb {

// Gain codebook of 6.60 and 8.85 kbit/s, pitch gain in Q14 and code-gain factor in Q11: 64 pairs, t_qua_gain6b
extern const Zpp16s gainCodebook6[64][2];
// and of the other rates, by ascending pitch gain: 128 pairs, t_qua_gain7b
extern const Zpp16s gainCodebook7[128][2];
// MA prediction of the code energy, newest first: 4 entries, Q13, pred
extern const Zpp16s energyPrediction[4];
// Attenuation of the pitch gain in unusable frames by state: 7 entries, Q15, pdown_unusable
extern const Zpp16s pitchGainDownUnusable[7];
// and in other bad frames, pdown_usable
extern const Zpp16s pitchGainDownUsable[7];
// Attenuation of the code gain in unusable frames by state: 7 entries, Q15, cdown_unusable
extern const Zpp16s codeGainDownUnusable[7];
// and in other bad frames, cdown_usable
extern const Zpp16s codeGainDownUsable[7];

}  // namespace zpp::amrwb
