// The kernels of discontinuous transmission and comfort noise (3GPP TS 26.192). Arguments are trusted.
#pragma once

#include "amrwb/arithmetic.h"

inline constexpr int kDtxHistory = 8, kDtxDistances = 28;  // frames averaged, pairs among them

Zpp16s ownLogEnergy_AMRWB_16s(const Zpp16s* src);
void ownISFAverageDTX_AMRWB_16s(const Zpp16s* isfHistory, const Zpp16s* logEnergyHistory, int newest, Zpp32s* distance,
                                Zpp32s* sumDistance, Zpp16s* isf, Zpp16s* dither);
void ownISFDither_AMRWB_16s_I(Zpp16s* isf, Zpp32s* logEnergy, Zpp16s* seed);
void ownComfortNoise_AMRWB_16s(Zpp16s* dst, Zpp32s logEnergy, Zpp16s* seed);
