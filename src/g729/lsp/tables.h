// Constant tables of the LP analysis and LSP quantisation. Content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// First-stage LSF codebook: 128 x 10, Q13, ITU-T G.729 name lspcb1
extern const Zpp16s LSPCode1[128][10];
// Second-stage LSF codebook: 32 x 10, Q13, ITU-T G.729 name lspcb2; columns 0..4 are the lower, 5..9 the upper half vectors
extern const Zpp16s LSPCode2[32][10];
// The codebooks turned for searches four entries at a time: [block][pair] holds elements 2 pair, 2 pair + 1 of the entries
// 4 block .. 4 block + 3, one behind the other. In the second stage pairs 0..2 are the lower half (elements 0..4 and a zero),
// pairs 3..5 the upper half.
struct LspCode1Quads {
  alignas(16) Zpp16s at[32][5][8];
};
struct LspCode2Quads {
  alignas(16) Zpp16s at[8][6][8];
};
extern const LspCode1Quads LSPCode1_quads;
extern const LspCode2Quads LSPCode2_quads;
// Least and largest element of each column of LSPCode1: 2 x 10, Q13
struct LspCode1Range {
  Zpp16s least[10], largest[10];
};
extern const LspCode1Range LSPCode1_range;
// Moving-average predictors: 2 modes x 4 frames, newest first, x 10, Q15, ITU-T G.729 name fg
extern const Zpp16s fg[2][4][10];
// 1 minus the sum of the predictor coefficients: 2 modes x 10, Q15, ITU-T G.729 name fg_sum
extern const Zpp16s fg_sum[2][10];
// 1 / fg_sum: 2 modes x 10, Q12, ITU-T G.729 name fg_sum_inv
extern const Zpp16s fg_sum_inv[2][10];
// The same three for SID frames: ITU-T G.729 Annex B names noise_fg, noise_fg_sum, noise_fg_sum_inv
extern const Zpp16s noise_fg[2][4][10];
extern const Zpp16s noise_fg_sum[2][10];
extern const Zpp16s noise_fg_sum_inv[2][10];
// First-stage entries of the SID quantiser: 32 indices into LSPCode1, ITU-T G.729 Annex B name PtrTab_1
extern const Zpp16s PtrTab_1[32];
// Second-stage entries of the SID quantiser: lower, upper half x 16 indices into LSPCode2, ITU-T G.729 Annex B name PtrTab_2
extern const Zpp16s PtrTab_2[2][16];
// Weight of the first-stage error under each SID predictor: 2, Q15, ITU-T G.729 Annex B name Mp
extern const Zpp16s Mp[2];
// Grid on which the Chebyshev polynomials are evaluated in Annex A, cosines of equidistant angles, Q15: 50 intervals
extern const Zpp16s w_eval_50[51];
// Slopes LSF to LSP between the samples of cos15 (lpc/tables.h): 64, Q19, ITU-T G.729 name slope_cos
extern const Zpp16s slope_cos[64];
// Lag window, lags 1..12: Q31, ITU-T G.729 names lag_h, lag_l (the last two lags: Annex B)
extern const Zpp32s wlag[12];
// Lag window of the backward LP analysis, lags 1..30: Q31, ITU-T G.729 Annex E names lag_h_bwd, lag_l_bwd
extern const Zpp32s wlagBackward[30];
// Hybrid window of the backward LP analysis: 145, Q15, the oldest sample first, ITU-T G.729 Annex E name hw (turned round)
extern const Zpp16s hw[145];
