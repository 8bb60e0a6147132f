// The kernels of the gains (3GPP TS 26.090 clauses 5.8 and 6.1, TS 26.091). Arguments are trusted.
#pragma once

#include "amr/frame.h"
#include "amr/rate.h"
#include "core/fixed_point.h"
#include "core/variants.h"

// What the gains of a subframe are searched by: the error is the sum of the five factors times gp^2, gp, gc^2, gc, gc gp, where
// gc is a factor of the codebook times the predicted gain.
struct GainCriterion {
  zpp::Dpf term[5];
  Zpp16s predicted;  // its mantissa, 0 or more
};

// ownGainSearch: the row with the least error, the first of equals, 0 if all errors saturate; rows with a pitch gain above the
// limit
//   do not count. table: `size` rows of pitch gain, factor, and two other words, or of the next subframe's pitch gain and
//   factor; subframes: 1 or 2, and as many criteria; size: a multiple of 16. Gains are
//   0 to 22016 (1.34), factors not negative.
#define ZPP_AMR_GAIN_KERNELS(KERNEL)      \
  KERNEL(ownGainSearch_GSMAMR_16s, W7_V3, \
         int(const GainCriterion* criteria, const Zpp16s* table, int size, int subframes, Zpp16s limit))

ZPP_AMR_GAIN_KERNELS(ZPP_DECLARE_KERNEL)

// The error of a row, saturated at every step
Zpp32s ownGainError_GSMAMR(const GainCriterion* criteria, const Zpp16s* row, int subframes);

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
