// Constant tables of this folder. Content, shape, Q format, the standard's name (3GPP TS 26.173).
// Codebooks lie by component, then by entry, as the search goes.
#pragma once

#include "zppsc.h"

namespace zpp::amrwb {

// Mean ISFs: 16 entries, mean_isf
extern const Zpp16s meanIsf[16];
// First stage, ISFs 0..8: 9 x 256, dico1_isf
extern const Zpp16s isfStage1Low[9][256];
// First stage, ISFs 9..15: 7 x 256, dico2_isf
extern const Zpp16s isfStage1High[7][256];
// Second stage of 46 bits, ISFs 0..2: 3 x 64, dico21_isf
extern const Zpp16s isfStage2Part1[3][64];
// ISFs 3..5: 3 x 128, dico22_isf
extern const Zpp16s isfStage2Part2[3][128];
// ISFs 6..8: 3 x 128, dico23_isf
extern const Zpp16s isfStage2Part3[3][128];
// ISFs 9..11: 3 x 32, dico24_isf
extern const Zpp16s isfStage2Part4[3][32];
// ISFs 12..15: 4 x 32, dico25_isf
extern const Zpp16s isfStage2Part5[4][32];
// Second stage of 36 bits, ISFs 0..4: 5 x 128, dico21_isf_36b
extern const Zpp16s isfStage2LowRatePart1[5][128];
// ISFs 5..8: 4 x 128, dico22_isf_36b
extern const Zpp16s isfStage2LowRatePart2[4][128];
// ISFs 9..15: 7 x 64, dico23_isf_36b
extern const Zpp16s isfStage2LowRatePart3[7][64];
// Mean ISFs of comfort noise: 16 entries, mean_isf_noise
extern const Zpp16s meanIsfNoise[16];
// Comfort noise, ISFs 0..1: 2 x 64, dico1_isf_noise
extern const Zpp16s isfNoisePart1[2][64];
// ISFs 2..4: 3 x 64, dico2_isf_noise
extern const Zpp16s isfNoisePart2[3][64];
// ISFs 5..7: 3 x 64, dico3_isf_noise
extern const Zpp16s isfNoisePart3[3][64];
// ISFs 8..11: 4 x 32, dico4_isf_noise
extern const Zpp16s isfNoisePart4[4][32];
// ISFs 12..15: 4 x 32, dico5_isf_noise
extern const Zpp16s isfNoisePart5[4][32];

}  // namespace zpp::amrwb
