// The kernels of the fixed codebooks of ITU-T G.723.1 and their processor variants.
#pragma once

#include "core/variants.h"

inline constexpr int kPulsePlaces = 30;  // of a grid: every second position of a subframe
inline constexpr int kMaxPulses = 6;

// One choice of pulses for a grid and an amplitude: places on the grid in the order in which they were found
struct PulseSet {
  int count;
  Zpp16s place[kMaxPulses];
  Zpp16s amplitude[kMaxPulses];
};

// Four pulses, one a track, of the algebraic codebook. A track has eight places; its place i is number 8 track + i, which
// stands for the position 8 i + 2 track + grid.
inline constexpr int kTracks = 4, kTrackPlaces = 8, kPlaces = kTracks * kTrackPlaces;
struct AlgebraicChoice {
  int place[kTracks];
  int grid;
  Zpp16s score, energy;
};

// ownMultiPulseSet_G723_16s32s: completes a set whose first place and amplitude are given. scores: 30, the correlations of
//   target and response at the grid's places; autocorr: 30, of the response at even distances. Each pulse takes its share off
//   the scores of the places that are left, saturating; the first of the largest magnitudes is next.
// ownMultiPulseFit_G723_16s32s: 2 t y - y^2 summed, saturating at every step, over the 60 samples of the target t and of the
//   pulses filtered by response, y.
// ownAlgebraicSearch_G723_16s: improves the choice. correlations: of the target with the places of the even grid (32), then of
// the
//   odd one, at most 14 bits; matrix: of the response with itself at the places of the even grid. Only where three pulses reach
//   more than the threshold the fourth is searched, which takes one off the budget; returns what is left of it.
#define ZPP_G723_FCB_KERNELS(KERNEL)                                                                          \
  KERNEL(ownMultiPulseSet_G723_16s32s, W7, void(const Zpp32s* scores, const Zpp16s* autocorr, PulseSet* set)) \
  KERNEL(ownMultiPulseFit_G723_16s32s, W7,                                                                    \
         Zpp32s(const Zpp16s* target, const Zpp16s* response, int grid, const PulseSet* set))                 \
  KERNEL(ownAlgebraicSearch_G723_16s, W7,                                                                     \
         int(const Zpp16s* correlations, const Zpp16s(*matrix)[kPlaces], Zpp16s threshold, int budget, AlgebraicChoice* best))

ZPP_G723_FCB_KERNELS(ZPP_DECLARE_KERNEL)

void ownMultiPulseSearch_G723_16s32s(const Zpp16s* target, const Zpp16s* impulse, Zpp32s* codeword, int lag, int subframe);
// Returns what is left of the search time.
int ownAlgebraicCodebookSearch_G723_16s32s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* filteredCode, Zpp32s* codeword,
                                           int searchTime, int delay, int gainIndex);
// False, and nothing written, when the vector is zero after its shift by 3
bool ownGainQuant_G723_16s(const Zpp16s* target, const Zpp16s* filteredCode, Zpp16s* level);
void ownFixedCodebookDecode_G723_32s16s(const Zpp32s* codeword, Zpp16s* dst, int lag, int offset, int gainIndex, int subframe,
                                        ZppSpeechRate rate);

// dst (60) = src with its copies at multiples of the lag, 18 or more, within the subframe
void ownPulseTrain_G723_16s(const Zpp16s* src, Zpp16s* dst, int lag);
// Adds to srcDst (60), ascending, itself `delay` + the gain row's displacement earlier, times the row's gain; nothing from a
// delay of 58 on.
void ownPitchContribution_G723_16s_I(Zpp16s* srcDst, int delay, int gainIndex);
// dst[d] (60) = the sum of doubled products of a[n] and b[n + d], saturating at every step, over the 60 - d samples that both
// have
void ownCorrelationChains_G723_16s32s(const Zpp16s* a, const Zpp16s* b, Zpp32s* dst);
