// Constant tables of this folder. Content, shape, Q format, the standard's name (3GPP TS 26.173).
#pragma once

#include "zppsc.h"

namespace zpp::amrwb {

// Mean ISFs: 16 entries, mean_isf
extern const Zpp16s meanIsf[16];
// First stage, ISFs 0..8: 256 vectors, dico1_isf
extern const Zpp16s isfStage1Low[256][9];
// First stage, ISFs 9..15: 256 vectors, dico2_isf
extern const Zpp16s isfStage1High[256][7];
// Second stage of 46 bits, ISFs 0..2: 64 vectors, dico21_isf
extern const Zpp16s isfStage2Part1[64][3];
// ISFs 3..5: 128 vectors, dico22_isf
extern const Zpp16s isfStage2Part2[128][3];
// ISFs 6..8: 128 vectors, dico23_isf
extern const Zpp16s isfStage2Part3[128][3];
// ISFs 9..11: 32 vectors, dico24_isf
extern const Zpp16s isfStage2Part4[32][3];
// ISFs 12..15: 32 vectors, dico25_isf
extern const Zpp16s isfStage2Part5[32][4];
// Second stage of 36 bits, ISFs 0..4: 128 vectors, dico21_isf_36b
extern const Zpp16s isfStage2LowRatePart1[128][5];
// ISFs 5..8: 128 vectors, dico22_isf_36b
extern const Zpp16s isfStage2LowRatePart2[128][4];
// ISFs 9..15: 64 vectors, dico23_isf_36b
extern const Zpp16s isfStage2LowRatePart3[64][7];
// Mean ISFs of comfort noise: 16 entries, mean_isf_noise
extern const Zpp16s meanIsfNoise[16];
// Comfort noise, ISFs 0..1: 64 vectors, dico1_isf_noise
extern const Zpp16s isfNoisePart1[64][2];
// ISFs 2..4: 64 vectors, dico2_isf_noise
extern const Zpp16s isfNoisePart2[64][3];
// ISFs 5..7: 64 vectors, dico3_isf_noise
extern const Zpp16s isfNoisePart3[64][3];
// ISFs 8..11: 32 vectors, dico4_isf_noise
extern const Zpp16s isfNoisePart4[32][4];
// ISFs 12..15: 32 vectors, dico5_isf_noise
extern const Zpp16s isfNoisePart5[32][4];

}  // namespace zpp::amrwb
