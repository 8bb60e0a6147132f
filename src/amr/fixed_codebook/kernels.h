// The kernels of the algebraic codebook and their processor variants (see core/variants.h). Arguments are trusted.
#pragma once

#include "amr/fixed_codebook/grid.h"
#include "core/variants.h"

// Vectors are of 40 elements, in track order where a comment says so (grid.h); matrices are 40 x 40 by rows, in track order.
//
// ownToeplizMatrix: matrix = correlations of the impulse response (Q12) times sign * sign (32767 or -32767, track order), the
//   standard's cor_h. Written are the diagonal and the blocks of `pairs`; the others may change too.
// ownSearchOptimalPulsePos: depth-first search of 2, 3 or 4 pulses; `sequences` rows of four tracks, of which `pulses` count;
//   the outermost pulse tries the slots with candidate >= 0. corr >= 0. slots: the best pulses in the order of their sequence.
// ownSearchOptimalPulsePos_M102M122: two pulses a track; trackBest: each track's slot of largest correlation; trackOrder:
//   `pulses` tracks in the order of the first pass.
// ownFilteredCode: filtered = sum of weight * impulse delayed by position, saturated after every product, in this order.
// ownTargetSignalCorr_X2: target filtered backward by the impulse response, normalised to 16 bits by the largest magnitudes
//   of the tracks (cor_h_x2); corr in track order.
// ownSetSign: sign = that of corr, corr = |corr|; candidate >= 0 marks the `candidates` largest of each of the five tracks.
// ownSetSign_M102M122: signs from correlation and LTP residual together (set_sign12k2); trackBest and trackOrder as the search
//   takes them.
#define ZPP_AMR_FIXED_CODEBOOK_KERNELS(KERNEL)                                                                            \
  KERNEL(ownToeplizMatrix_GSMAMR_16s, W7_V3,                                                                              \
         void(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs))                   \
  KERNEL(ownSearchOptimalPulsePos_GSMAMR_16s, W7,                                                                         \
         void(const Zpp16s* corr, const Zpp16s* candidate, const Zpp16s* matrix, const Zpp8u* sequences, int count,       \
              int pulses, Zpp16s* slots))                                                                                 \
  KERNEL(ownSearchOptimalPulsePos_M102M122_GSMAMR_16s, W7_V3,                                                             \
         void(const Zpp16s* corr, const Zpp16s* matrix, const Zpp16s* trackBest, const Zpp16s* trackOrder, Zpp16s* slots, \
              int pulses, int tracks))                                                                                    \
  KERNEL(ownFilteredCode_GSMAMR_16s, W7_V3,                                                                               \
         void(const Zpp16s* impulse, const Zpp16s* positions, const Zpp16s* weights, int pulses, Zpp16s* filtered))       \
  KERNEL(ownTargetSignalCorr_X2_GSMAMR_16s, W7,                                                                           \
         void(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* corr, int guardBits, const Grid& grid))                \
  KERNEL(ownSetSign_GSMAMR_16s, W7, void(Zpp16s * corr, Zpp16s * sign, Zpp16s * candidate, int candidates))               \
  KERNEL(ownSetSign_M102M122_GSMAMR_16s, W7,                                                                              \
         void(const Zpp16s* ltpResidual, Zpp16s* corr, Zpp16s* sign, Zpp16s* trackBest, Zpp16s* trackOrder, const Grid& grid))

ZPP_AMR_FIXED_CODEBOOK_KERNELS(ZPP_DECLARE_KERNEL)

// --- Correlation matrix ----------------------------------------------------------------------------------------------

// The impulse response scaled to energy 0.99 (Q30), as the matrix is formed from it; true when sums of its products may
// saturate, which takes a response of full scale
bool ownScaleResponse_GSMAMR_16s(const Zpp16s* impulse, Zpp16s* scaled);

// --- Algebraic codebook ----------------------------------------------------------------------------------------------

void ownAlgebraicCodebookSearch_GSMAMR_16s(int lag, Zpp16s gain, const Zpp16s* target, const Zpp16s* ltpResidual,
                                           Zpp16s* impulse, Zpp16s* code, Zpp16s* filteredCode, Zpp16s* codeword, int subframe,
                                           ZppSpeechRate rate);
// One decoder a codeword format, all clear the 40 samples first
void ownDecode2i40_9bits(const Zpp16s* codeword, Zpp16s* code, int subframe);
void ownDecode2i40_11bits(const Zpp16s* codeword, Zpp16s* code);
void ownDecode3i40_14bits(const Zpp16s* codeword, Zpp16s* code);
void ownDecode4i40_17bits(const Zpp16s* codeword, Zpp16s* code);
void ownDecode8i40_31bits(const Zpp16s* codeword, Zpp16s* code);
void ownDecode10i40_35bits(const Zpp16s* codeword, Zpp16s* code);
