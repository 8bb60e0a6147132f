// Tables of the ITU-T G.729 postfilter (clause 4.2) and of the phase dispersion of Annex D.
#pragma once

#include "zppsc.h"

// powers of 0.7, each rounded from the one before, Q15, 32767 for 1: weights of the denominator
extern const Zpp16s facGamma1_pst[11];
// powers of 0.55, as above: weights of the numerator
extern const Zpp16s facGamma2_pst[11];
// short filters of 1/8 resolution, phases 1 to 7, Q15; ITU-T G.729 name tab_hup_s
extern const Zpp16s tab_hup_s[7][4];
// long filters, as above; tab_hup_l
extern const Zpp16s tab_hup_l[7][16];
// impulse response for a low pitch gain, Q15; Annex D name ph_imp_low
extern const Zpp16s ph_imp_low[40];
// for a medium pitch gain; ph_imp_mid
extern const Zpp16s ph_imp_mid[40];
