// Constant tables of the postfilter. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// Weights 0.55^i of the numerator: 10, Q15, gamma3
extern const Zpp16s gamma3[10];
// Weights 0.7^i of the denominator: 10, Q15, gamma4
extern const Zpp16s gamma4[10];
// Weights 0.7^i of the numerator at 10.2 and 12.2 kbit/s: 10, Q15, gamma3_MR122
extern const Zpp16s gamma3MR122[10];
// Weights 0.75^i of the denominator at 10.2 and 12.2 kbit/s: 10, Q15, gamma4_MR122
extern const Zpp16s gamma4MR122[10];
