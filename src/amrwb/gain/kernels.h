// The kernels of the gains of AMR-WB. Arguments are trusted.
#pragma once

#include "amrwb/rate.h"
#include "core/variants.h"

void ownGainQuant_AMRWB_16s(const Zpp16s* target, const Zpp16s* filteredVector, const Zpp16s* filteredCode, const Zpp16s* code,
                            const Zpp16s* coef, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* index, Zpp16s* mem, int scale,
                            bool clip, zpp::amrwb::Mode mode);
void ownDecodeGain_AMRWB_16s(Zpp16s index, const Zpp16s* code, Zpp16s* gainPitch, Zpp32s* gainCode, Zpp16s* mem, bool badFrame,
                             bool prevBadFrame, bool unusable, int state, int vadHist, zpp::amrwb::Mode mode);
