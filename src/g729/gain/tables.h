// Gain codebooks of ITU-T G.729 (clause 3.9) and of its Annex D: content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// 8 rows, first codebook at 8 kbit/s: pitch gain part Q14, code gain correction part Q13; ITU-T G.729 name gbk1
extern const Zpp16s gbk1[8][2];
// 16 rows, second codebook at 8 kbit/s, as above; gbk2
extern const Zpp16s gbk2[16][2];
// 8 rows, first codebook at 6.4 kbit/s, as above; gbk1_6k
extern const Zpp16s gbk1_6k[8][2];
// 8 rows, second codebook at 6.4 kbit/s, as above; gbk2_6k
extern const Zpp16s gbk2_6k[8][2];
// transmitted index of a row of gbk1; map1
extern const Zpp16s map1[8];
// of gbk2; map2
extern const Zpp16s map2[16];
// of gbk1_6k; map1_6k
extern const Zpp16s map1_6k[8];
// of gbk2_6k; map2_6k
extern const Zpp16s map2_6k[8];
// row of gbk1 of a transmitted index; imap1
extern const Zpp16s imap1[8];
// of gbk2; imap2
extern const Zpp16s imap2[16];
// of gbk1_6k; imap1_6k
extern const Zpp16s imap1_6k[8];
// of gbk2_6k; imap2_6k
extern const Zpp16s imap2_6k[8];
// pre-selection at 8 kbit/s, Q10 Q14 / Q16 Q19; coef
extern const Zpp16s coef[2][2];
// the same, Q26 Q30 / Q32 Q35; L_coef
extern const Zpp32s L_coef[2][2];
// pre-selection at 6.4 kbit/s, Q9 Q13 / Q16 Q18; coef_6k
extern const Zpp16s coef_6k[2][2];
// the same, Q25 Q29 / Q32 Q34; L_coef_6k
extern const Zpp32s L_coef_6k[2][2];
// pre-selection thresholds of gbk1, Q14; thr1
extern const Zpp16s thr1[4];
// of gbk2, Q15; thr2
extern const Zpp16s thr2[8];
// of gbk1_6k, Q13; thr1_6k
extern const Zpp16s thr1_6k[2];
// of gbk2_6k, Q15; thr2_6k
extern const Zpp16s thr2_6k[2];
