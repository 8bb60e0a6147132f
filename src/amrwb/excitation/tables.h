// Constant tables of this folder. Content, shape, Q format, the standard's name (3GPP TS 26.173).
#pragma once

#include "zppsc.h"

namespace zpp::amrwb {

// Impulse response of strong phase dispersion: 64 entries, Q15, ph_imp_low
extern const Zpp16s strongDispersion[64];
// and of medium dispersion, ph_imp_mid
extern const Zpp16s mediumDispersion[64];

}  // namespace zpp::amrwb
