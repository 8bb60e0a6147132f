// Constant tables of the single-precision LP analysis and LSP quantisation. Content, shape, the standard's name. They are the
// tables of ITU-T G.729 Annexes C and C+; those of lsp_tables.h are the same numbers truncated to their Q formats.
#pragma once

#include "zppsc.h"

// A codebook turned for searches of several entries at a time: element j of all entries, one behind the other
template <int entries>
struct TurnedCodebook {
  alignas(16) Zpp32f at[10][entries];
};
// First-stage LSF codebook: 10 x 128, radians, name lspcb1
extern const TurnedCodebook<128> LSPCode1_32f;
// Second-stage LSF codebook: 10 x 32, radians, name lspcb2; rows 0..4 are the lower, 5..9 the upper half vectors
extern const TurnedCodebook<32> LSPCode2_32f;
// Moving-average predictors: 2 modes x 4 frames, newest first, x 10, name fg
extern const Zpp32f fg_32f[2][4][10];
// 1 minus the sum of the predictor coefficients, and the inverse of that: 2 modes x 10, names fg_sum, fg_sum_inv
extern const Zpp32f fg_sum_32f[2][10];
extern const Zpp32f fg_sum_inv_32f[2][10];
// The same three for SID frames: names noise_fg, noise_fg_sum, noise_fg_sum_inv
extern const Zpp32f noise_fg_32f[2][4][10];
extern const Zpp32f noise_fg_sum_32f[2][10];
extern const Zpp32f noise_fg_sum_inv_32f[2][10];
// Weight of the first-stage error under each SID predictor: 2, name Mp
extern const Zpp32f Mp_32f[2];
// Grids on which the Chebyshev polynomials are evaluated, cosines of equidistant angles: 60 intervals (name grid) and 50
// (Annex A)
extern const Zpp32f w_eval_60_32f[61];
extern const Zpp32f w_eval_50_32f[51];
// Hybrid window of the backward LP analysis: 145, entry 0 for the newest sample, name hw
extern const Zpp32f hw_32f[145];
