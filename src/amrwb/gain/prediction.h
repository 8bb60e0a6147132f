// Prediction of the code gain from past energies (3GPP TS 26.190 clause 5.9).
#pragma once

#include "amrwb/arithmetic.h"
#include "amrwb/rate.h"

namespace zpp::amrwb {

inline constexpr int kPastEnergies = 4;

// mantissa * 2^exponent, mantissa of 15 bits
struct PredictedGain {
  Zpp16s mantissa;
  int exponent;
};

// level: of the code vector to be expected without a past, dB in Q24; energies: newest first, Q10
PredictedGain predictedGain(Zpp32s level, const Zpp16s* energies);
// Shifts the energies by one and adds that of the quantised factor, Q11.
void remember(Zpp16s factor, Zpp16s* energies);
// dst[0] = value; the others move up.
void shiftIn(Zpp16s value, Zpp16s* newestFirst, int len);

struct GainPair {
  Zpp16s pitch;       // Q14
  Zpp16s codeFactor;  // Q11
};
GainPair gainPair(Zpp16s index, Mode mode);

constexpr bool hasSmallGainCodebook(Mode mode) { return mode <= mode885; }

}  // namespace zpp::amrwb
