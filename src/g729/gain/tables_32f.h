// Gain codebooks in single precision (ITU-T G.729 Annex C; at 6.4 kbit/s those of Annex D in Annex C+): content, shape, the
// standard's name. They are not the 16-bit tables scaled: those were cut to their word length. The maps between rows and
// transmitted indices are those of gain_tables.h.
#pragma once

#include "zppsc.h"

// 8 rows, first codebook at 8 kbit/s: pitch gain part, code gain correction part; gbk1
extern const Zpp32f gbk1_32f[8][2];
// 16 rows, second codebook at 8 kbit/s, as above; gbk2
extern const Zpp32f gbk2_32f[16][2];
// 8 rows, first codebook at 6.4 kbit/s, as above; gbk1_6k
extern const Zpp32f gbk1_6k_32f[8][2];
// 8 rows, second codebook at 6.4 kbit/s, as above; gbk2_6k
extern const Zpp32f gbk2_6k_32f[8][2];
// pre-selection at 8 kbit/s; coef
extern const Zpp32f coef_32f[2][2];
// at 6.4 kbit/s; coef_6k
extern const Zpp32f coef_6k_32f[2][2];
// pre-selection thresholds of gbk1; thr1
extern const Zpp32f thr1_32f[4];
// of gbk2; thr2
extern const Zpp32f thr2_32f[8];
// of gbk1_6k; thr1_6k
extern const Zpp32f thr1_6k_32f[2];
// of gbk2_6k; thr2_6k
extern const Zpp32f thr2_6k_32f[2];
// MA predictor of the code gain, newest subframe first; pred
extern const Zpp32f pred_32f[4];
