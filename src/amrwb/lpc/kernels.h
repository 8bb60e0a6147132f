// The kernels of linear prediction in AMR-WB: analysis, conversions, filters. Arguments are trusted.
#pragma once

#include "core/variants.h"

void ownAutoCorr_AMRWB_16s32s(const Zpp16s* src, Zpp32s* dst);
void ownLevinsonDurbin_AMRWB_32s16s(const Zpp32s* src, Zpp16s* lpc, Zpp16s* mem);
void ownLPCToISP_AMRWB_16s(const Zpp16s* lpc, Zpp16s* isp, const Zpp16s* prevIsp);
void ownISPToISF_AMRWB_16s(const Zpp16s* isp, Zpp16s* isf, int order);
void ownISFToISP_AMRWB_16s(const Zpp16s* isf, Zpp16s* isp, int order);
void ownISPToLPC_AMRWB_16s(const Zpp16s* isp, Zpp16s* lpc, int order, bool scaling);
void ownInterpolateISP_AMRWB_16s(const Zpp16s* prevIsp, const Zpp16s* isp, Zpp16s* lpc);
