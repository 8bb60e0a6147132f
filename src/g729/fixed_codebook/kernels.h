// The kernels of the fixed codebook and their processor variants (see core/variants.h).
//
// Positions go by track here: element 8 t + i of a vector belongs to sample 5 i + t. Matrices are laid out as in
// fixed_codebook.h; `cross` is a matrix from its first cross block on.
#pragma once

#include "core/variants.h"

namespace zpp {
struct TrackPair;
struct TrackTerms;
struct PulsePair;
struct CodedPulse;
}  // namespace zpp

#define ZPP_G729_FCB_KERNELS(KERNEL)                                                                                      \
  KERNEL(ownToeplizMatrix_G729_16s, W7, void(const Zpp16s* impulse, Zpp16s* matrix))                                      \
  KERNEL(ownToeplizMatrix_G729_16s32s, W7, void(const Zpp16s* impulse, Zpp32s* matrix))                                   \
  KERNEL(ownToeplizMatrix_G729D_16s, W7, void(const Zpp16s* impulse, Zpp16s* matrix))                                     \
  KERNEL(ownToeplizMatrix_G729D_16s32s, W7, void(const Zpp16s* impulse, Zpp32s* matrix))                                  \
  KERNEL(ownCorrMatrix_G729E_16s, W7, void(const Zpp16s* impulse, Zpp16s* matrix))                                        \
  KERNEL(ownFixedCodebookCorrSign, W7,                                                                                    \
         void(Zpp16s * cross, const zpp::TrackPair* tracks, int blocks, const Zpp16s* sign, const Zpp16s* besidePositive, \
              const Zpp16s* besideNegative))                                                                              \
  KERNEL(ownFixedCodebookCorrSign_32s16s, W7,                                                                             \
         void(Zpp32s * matrix, const zpp::TrackPair* tracks, const Zpp16s* sign, const Zpp16s* besidePositive,            \
              const Zpp16s* besideNegative, Zpp16s* folded))                                                              \
  KERNEL(ownFixedCodebookSearch_G729, W7,                                                                                 \
         int(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp16s threshold, int budget, Zpp8u* pulse))                  \
  KERNEL(ownFixedCodebookSearch_G729A, W7, void(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse))             \
  KERNEL(ownD2i40_11, W7, void(const Zpp16s* magnitude, const Zpp16s* matrix, Zpp8u* pulse))                              \
  KERNEL(ownPulsePair_G729E_16s, W7,                                                                                      \
         zpp::PulsePair(Zpp16s sum, Zpp16s energy, const zpp::TrackTerms& outer, const zpp::TrackTerms& inner,            \
                        const Zpp16s* cross))

ZPP_G729_FCB_KERNELS(ZPP_DECLARE_KERNEL)

// Scales an impulse response of 40 samples for the correlation matrices (ITU-T G.729 clause 3.8.1). Returns whether plain sums
// hold: then no sum of products of the scaled response, partial or whole, saturates.
bool ownScaleImpulse_G729_16s(const Zpp16s* impulse, Zpp16s* scaled);
// Multiplies the cross blocks of a matrix by the signs of their two positions as the main body and Annex D do it: by the Q15
// product of two factors that are not quite +1 and -1, so that an entry may lose a unit or two.
void ownFoldSigns_G729(const Zpp16s* sign, const zpp::TrackPair* tracks, Zpp16s* matrix);
// The same for Annexes A and E: the sign of the row chooses between the factor of the column and its opposite.
void ownFoldSigns_G729A(const Zpp16s* sign, const zpp::TrackPair* tracks, int blocks, Zpp16s* cross);
// Both for a 32-bit matrix, which is shifted right by 15 and saturated to 16 bits first. The result goes back into it, and to
// `folded`.
void ownFoldSigns_G729_32s16s(const Zpp16s* sign, Zpp32s* matrix, Zpp16s* folded);
void ownFoldSigns_G729A_32s16s(const Zpp16s* sign, Zpp32s* matrix, Zpp16s* folded);

// Codewords of Annex E's codebooks. pulse: 10 or 12 pulses in the order of the search, from its starting track round the
// tracks; index: 5 words.
void ownCodeword35_G729E(const zpp::CodedPulse* pulse, Zpp16s* index);
void ownCodeword44_G729E(const zpp::CodedPulse* pulse, Zpp16s* index);
