// Constant tables of this room. Content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// Inverse square root, Q15 over mantissas 1/4..1: 49 entries, ITU-T G.729 name tabsqr
extern const Zpp16s tabsqr[49];
// tabsqr[i] - tabsqr[i+1]: 48 entries
extern const Zpp16s tabsqr_diff[48];
// Base-2 logarithm, Q15 over mantissas 1..2: 33 entries, ITU-T G.729 name tablog
extern const Zpp16s tablog[33];
// tablog[i] - tablog[i+1]: 32 entries
extern const Zpp16s tablog_diff[32];
// Power of two, Q14 over fractions 0..1: 33 entries, ITU-T G.729 name tabpow
extern const Zpp16s tabpow[33];
// tabpow[i] - tabpow[i+1]: 32 entries
extern const Zpp16s tabpow_diff[32];
