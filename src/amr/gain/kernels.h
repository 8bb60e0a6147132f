// The kernels of the gains (3GPP TS 26.090 clauses 5.8 and 6.1, TS 26.091). Arguments are trusted.
#pragma once

#include "amr/frame.h"
#include "amr/rate.h"

// --- Encoder -----------------------------------------------------------------------------------------------------------------

// Index of the nearest pitch gain within the limit, at 7.95 and 12.2 kbit/s
int ownPitchGainIndex_GSMAMR(Zpp16s limit, Zpp16s gain);

// What a subframe's quantiser looks at, as in zppsGainQuant_GSMAMR_16s
struct GainTask {
  const Zpp16s *target, *codeTarget, *filteredVector, *filteredCode, *code, *residual, *vector, *coefficients;
};
void ownGainQuant_GSMAMR_16s(const GainTask& task, Zpp16s limit, Zpp16s* gainMem, Zpp16s* pitchGain, Zpp16s* codeGain,
                             Zpp16s* idx, zpp::amr::Mode mode);
void ownGainQuantMR122_GSMAMR_16s(const GainTask& task, Zpp16s* gainMem, Zpp16s* codeGain, Zpp16s* idx);
void ownGainQuantMR795_GSMAMR_16s(const GainTask& task, Zpp16s limit, Zpp16s* gainMem, Zpp16s* adaptMem, Zpp16s* pitchGain,
                                  Zpp16s* codeGain, Zpp16s* idx);
void ownGainQuantFirst_GSMAMR_16s(const GainTask& task, const Zpp16s* gainMem, Zpp16s* unquantMem, Zpp16s* first,
                                  Zpp16s* codeGain);
void ownGainQuantSecond_GSMAMR_16s(const GainTask& task, Zpp16s limit, const Zpp16s* unquantMem, const Zpp16s* first,
                                   Zpp16s* gainMem, Zpp16s* pitchGain, Zpp16s* codeGain, Zpp16s* idx);

// --- Decoder -----------------------------------------------------------------------------------------------------------------

void ownGainDecode_GSMAMR_16s(int idx, const Zpp16s* code, Zpp16s* gainMem, Zpp16s* pitchGain, Zpp16s* codeGain, int subframe,
                              zpp::amr::Mode mode);
Zpp16s ownPitchGainConceal_GSMAMR(Zpp16s gain, Zpp16s* mem, const FrameCondition& condition);
Zpp16s ownCodeGainConceal_GSMAMR(Zpp16s gain, Zpp16s* mem, Zpp16s* gainMem, const FrameCondition& condition);
Zpp16s ownCodeGainSmooth_GSMAMR(Zpp16s codeGain, const Zpp16s* prevLsf, const Zpp16s* lsf, const Zpp16s* lsfMean, Zpp16s* mem,
                                const FrameCondition& condition, int subframe, zpp::amr::Mode mode);
