// Constant tables of the open-loop pitch search. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// Lag weights at 10.2 kbit/s: 251, Q15, corrweight
extern const Zpp16s corrWeight[251];
