// The kernels of discontinuous transmission (3GPP TS 26.092, 26.093). Arguments are trusted; the state block of the comfort
// noise may have any alignment.
#pragma once

#include "amr/rate.h"

inline constexpr int kComfortNoiseStateSize = 416;

void ownDTXDecision_GSMAMR(bool active, Zpp16s* dtxMem, Zpp16s* silence, Zpp16s* newSid);
void ownDTXHistory_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* lsp, Zpp16s* lspHist, Zpp16s* logEnergyHist);
void ownSIDQuant_GSMAMR_16s(const Zpp16s* lspHist, const Zpp16s* logEnergyHist, Zpp16s* gainMem, Zpp16s* sid);
// The prediction memory of the code gain, 8 words, for comfort noise of this log energy: half of log2, Q10
void ownNoiseGainMem_GSMAMR_16s(Zpp16s logEnergy, Zpp16s* gainMem);

void ownComfortNoiseInit_GSMAMR(void* state);
int ownDTXReceive_GSMAMR(int frameType, int prevState, void* state);
void ownComfortNoise_GSMAMR_16s(const Zpp16s* sid, int prevState, int newState, Zpp16s* residualMem, Zpp16s* lsf,
                                Zpp16s* gainMem, Zpp16s* synthMem, Zpp16s* speech, Zpp16s* a, Zpp16s* lsp, void* state,
                                zpp::amr::Mode mode);
void ownComfortNoiseUpdate_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* lsf, void* state);
