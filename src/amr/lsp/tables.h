// Constant tables of the LSP quantisation. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// Mean LSFs of the three-way quantiser: 10, 16384 = 4000 Hz, mean_lsf_3
extern const Zpp16s meanLsf3[10];
// Mean LSFs of the five-way quantiser: 10, 16384 = 4000 Hz, mean_lsf_5
extern const Zpp16s meanLsf5[10];
// Prediction of the three-way quantiser from the last residual: 10, Q15, pred_fac
extern const Zpp16s predFac[10];
// Starting predictors of the silence descriptor: 8 x 10, 16384 = 4000 Hz, past_rq_init
extern const Zpp16s pastRqInit[8][10];
// Three-way quantiser, residuals 0 to 2: 256 x 3, 16384 = 4000 Hz, dico1_lsf_3
extern const Zpp16s dico1Lsf3[256][3];
// Three-way quantiser, residuals 3 to 5: 512 x 3, 16384 = 4000 Hz, dico2_lsf_3
extern const Zpp16s dico2Lsf3[512][3];
// Three-way quantiser, residuals 6 to 9: 512 x 4, 16384 = 4000 Hz, dico3_lsf_3
extern const Zpp16s dico3Lsf3[512][4];
// Residuals 6 to 9 at 4.75 and 5.15 kbit/s: 128 x 4, 16384 = 4000 Hz, mr515_3_lsf
extern const Zpp16s mr515Lsf3[128][4];
// Residuals 0 to 2 at 7.95 kbit/s: 512 x 3, 16384 = 4000 Hz, mr795_1_lsf
extern const Zpp16s mr795Lsf1[512][3];
// Five-way quantiser, two residuals of the first LSF set, two of the second: 128 x 4, 16384 = 4000 Hz, dico1_lsf_5
extern const Zpp16s dico1Lsf5[128][4];
// The same for residuals 2 and 3: 256 x 4, dico2_lsf_5
extern const Zpp16s dico2Lsf5[256][4];
// The same for residuals 4 and 5, used with both signs: 256 x 4, dico3_lsf_5
extern const Zpp16s dico3Lsf5[256][4];
// The same for residuals 6 and 7: 256 x 4, dico4_lsf_5
extern const Zpp16s dico4Lsf5[256][4];
// The same for residuals 8 and 9: 64 x 4, dico5_lsf_5
extern const Zpp16s dico5Lsf5[64][4];
