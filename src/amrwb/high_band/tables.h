// Constant tables of this step. Content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// High-band gains at 23.85 kbit/s: 16 entries, Q14, HP_gain
extern const Zpp16s highBandGains[16];
