// The kernels of Annex A of ITU-T G.723.1: voice activity, silence descriptors, comfort noise. Arguments are trusted.
#pragma once

#include "zppsc.h"

bool ownVAD_G723_16s(const Zpp16s* src, const Zpp16s* lags, const Zpp16s* noiseLpc, Zpp32s* levels, Zpp16s* counters,
                     bool sine);
Zpp16s ownAutoCorrSum_G723_16s(const Zpp16s* autocorr, const Zpp16s* exponents, Zpp16s* dst,
                               int count);                       // returns the exponent
Zpp16s ownLPCAutoCorr_G723_16s(const Zpp16s* lpc, Zpp16s* dst);  // returns the shift
bool ownLPCSimilarity_G723_16s(const Zpp16s* lpcAutoCorr, const Zpp16s* autocorr, int shift, Zpp16s energy);
int ownSIDGainQuant_G723_16s(const Zpp16s* energies, const Zpp16s* exponents, int count);
Zpp16s ownSIDGainDecode_G723_16s(int index);
void ownComfortNoise_G723_16s(Zpp16s* history, Zpp16s* seed, Zpp16s* dst, Zpp16s* lags, Zpp16s* gainIndices, Zpp16s gain);
