// The kernels of the decoder's postfilters of ITU-T G.723.1. Arguments are trusted.
#pragma once

#include "zppsc.h"

struct PitchPostFilter {
  int lag;             // below 0: the past, above 0: the future, 0: none
  Zpp16s gain, scale;  // Q15
};

// src: the frame's 385 block-scaled samples
PitchPostFilter ownPitchPostFilterSearch_G723_16s(const Zpp16s* src, int lag, int subframe, ZppSpeechRate rate);
void ownPitchPostFilter_G723_16s(const Zpp16s* src, Zpp16s* dst, const PitchPostFilter& filter);
Zpp32s ownFormantPostFilter_G723_16s_I(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory, Zpp16s* tilt);  // returns the energy
void ownGainControl_G723_16s_I(Zpp16s* srcDst, Zpp16s* gain, Zpp32s energy);
