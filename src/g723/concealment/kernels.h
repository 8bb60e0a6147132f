// The kernels of the frame interpolation of ITU-T G.723.1. Arguments are trusted.
#pragma once

#include "zppsc.h"

// src: 385 block-scaled samples. Returns the period, 0 for unvoiced.
int ownVoicingDecision_G723_16s(const Zpp16s* src, int lag, Zpp16s* energy);
void ownResidualInterpolation_G723_16s(Zpp16s* history, Zpp16s* seed, Zpp16s* dst, int period, Zpp16s gain, bool muted);
