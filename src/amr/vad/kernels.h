// The voice activity detectors (3GPP TS 26.094). Arguments are trusted; state blocks may have any alignment.
#pragma once

#include "zppsc.h"

inline constexpr int kVad1StateSize = 116, kVad2StateSize = 188;

void ownVAD1Init_GSMAMR(void* state);
bool ownVAD1_GSMAMR_16s(const Zpp16s* speech, Zpp16s* vadMem, void* state);
void ownVAD2Init_GSMAMR(void* state);
bool ownVAD2_GSMAMR_16s(const Zpp16s* speech, bool ltpFlag, void* state);
