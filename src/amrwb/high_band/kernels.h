// The kernels of the high band, 6.4 to 7 kHz (3GPP TS 26.190 clauses 5.10 and 6.3). Arguments are trusted.
#pragma once

#include "amrwb/arithmetic.h"

inline constexpr int kHighBandSubframe = 80;  // at 16 kHz

void ownHighBandNoise_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int scale, Zpp16s* seed);
Zpp16s ownHighBandGain_AMRWB_16s(const Zpp16s* src, int vadHist);
int ownHighBandGainQuant_AMRWB_16s(const Zpp16s* speech, const Zpp16s* noise, Zpp16s estimate, Zpp16s weight);
// isf: 16; extended: 20, at 16 kHz
void ownISFExtrapolate_AMRWB_16s(const Zpp16s* isf, Zpp16s* extended);
