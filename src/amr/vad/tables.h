// Constant tables of the voice activity detector, option 2. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// Phases of the FFT: cosine and minus sine of pi k / 64: 64 x 2, Q15, phs_tbl
extern const Zpp16s phsTbl[64][2];
// First and last spectral line of each channel: 16 x 2, ch_tbl
extern const Zpp16s chTbl[16][2];
// Inverse width of each channel: 16, Q15, ch_tbl_sh
extern const Zpp16s chTblSh[16];
// Voice metric by quantised channel SNR: 90, vm_tbl
extern const Zpp16s vmTbl[90];
// Threshold of the sum of voice metrics by quantised SNR: 20, vm_threshold_table
extern const Zpp16s vmThresholdTable[20];
// Length of a burst by quantised SNR: 20, blocks of 10 ms, burstcount_table
extern const Zpp16s burstcountTable[20];
// Hangover after a burst by quantised SNR: 20, blocks of 10 ms, hangover_table
extern const Zpp16s hangoverTable[20];
