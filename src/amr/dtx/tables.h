// Constant tables of comfort noise. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// LSPs after reset: 10, Q15, lsp_init_data
extern const Zpp16s lspInitData[10];
// Level adjustment by mode, 4.75 to 12.2 kbit/s, then silence descriptor: 9, Q11, dtx_log_en_adjust
extern const Zpp16s dtxLogEnAdjust[9];
// Scale of the LSF variation: 10, Q15, lsf_hist_mean_scale
extern const Zpp16s lsfHistMeanScale[10];
