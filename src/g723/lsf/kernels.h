// The kernels of the LPC analysis and LSF quantisation of ITU-T G.723.1 and their processor variants.
#pragma once

#include "core/variants.h"

// ownAutoCorr_NormE_G723_16s32s: corr[k] = (sum of src[j] src[j-k-1], j = k+1..179) << norm, k = 0..9, for 180 samples
//   whose energy is below 2^31 and a norm of at most its normalisation shift.
// ownFindRootLSF_Fast: roots of the two polynomials (lsf_root_search.h) in steps of four grid points, halved twice; true
//   when all ten are found. Misses two roots of one polynomial within a step.
// ownLspSvq: the entry of a band's codebook that is nearest to target under the Q15 weights (0 or more), the first of
//   equals. Reads four elements of target and weight in every band.
#define ZPP_G723_LSF_KERNELS(KERNEL)                                                         \
  KERNEL(ownAutoCorr_NormE_G723_16s32s, W7, void(const Zpp16s* src, int norm, Zpp32s* corr)) \
  KERNEL(ownFindRootLSF_Fast, W7, bool(const Zpp16s* polynomials, Zpp16s* lsf))              \
  KERNEL(ownLspSvq, W7, int(const Zpp16s* target, const Zpp16s* weight, const Zpp16s(*codebook)[4]))

ZPP_G723_LSF_KERNELS(ZPP_DECLARE_KERNEL)

void ownAutoCorr_G723_16s(const Zpp16s* src, Zpp16s* exponent, Zpp16s* autocorr);
int ownAutoCorr_NormE_G723_16s(const Zpp16s* src, Zpp16s* autocorr);  // returns the shift of the lags
void ownLevinsonDurbin_G723_16s(const Zpp16s* autocorr, Zpp16s* sineDetector, Zpp16s* residualEnergy, Zpp16s* lpc);

// True when all ten LSF were found; otherwise lsf holds nothing of use.
bool ownLPCToLSF_Norm_G723_16s(const Zpp16s* lpc, Zpp16s* lsf);
// lsf is a copy of prevLsf when the roots are not all found.
void ownLPCToLSF_G723_16s(const Zpp16s* lpc, const Zpp16s* prevLsf, Zpp16s* lsf);
void ownLSFToLPC_G723_16s_I(Zpp16s* lsfLpc);
// The filters of the four subframes, on the way from one frame's LSF to the next one's
void ownLSFInterpolation_G723_16s(const Zpp16s* prevLsf, const Zpp16s* lsf, Zpp16s* lpc);

// The three band indices, packed: the first in bits 16..23, the last in bits 0..7
Zpp32s ownLSFQuant_G723_16s32s(const Zpp16s* lsf, const Zpp16s* prevLsf);
// Leaves the prediction residual in lsf.
void ownLSFQuant_G723_16s_I(const Zpp16s* prevLsf, Zpp16s* lsf, Zpp16s* index);
// True when the set is stable; otherwise lsf holds the tenth pass.
bool ownLSFDecode_G723_16s(const Zpp16s* index, const Zpp16s* prevLsf, bool erased, Zpp16s* lsf);
