// Constant tables of this room. Content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// Gray code of a 3-bit position number: 8 entries, gray; and its inverse: 8 entries, dgray
extern const Zpp16s gray[8], dgray[8];
// First positions of the tracks of pulses 0 and 1 at 4.75 and 5.15 kbit/s: [track pair][subframe][pulse], startPos
extern const Zpp16s startPos[2][4][2];
// Weights of the fourth-order interpolation of the normalised correlation at resolution 1/6, right half: 25 entries, Q15,
// inter_6
extern const Zpp16s inter6Correlation[25];
// Weights of the tenth-order interpolation of the past excitation at resolution 1/6, right half: 61 entries, Q15, inter_6
extern const Zpp16s inter6Excitation[61];

// Closed-loop pitch search of a mode, lags in samples
struct PitchSearch {
  Zpp16s maxFractionalLag;  // lags above it have no fraction outside delta subframes
  Zpp16s thirds;            // 1: fractions in thirds of a sample, 0: in sixths
  Zpp16s firstFraction, lastFraction;
  Zpp16s below, length;            // integer lags around the open-loop lag
  Zpp16s deltaBelow, deltaLength;  // and around the previous subframe's lag
  Zpp16s minLag;
};
// Rows for 4.75, 5.15, 5.9, 6.7, 7.4, 7.95, 10.2 and 12.2 kbit/s, mode_dep_parm
extern const PitchSearch searchPrm[8];
// Square root of x from 0.25 in steps of 1/64: 49, Q15, sqrt_table of sqrt_l
extern const Zpp16s sqrtTable[49];
