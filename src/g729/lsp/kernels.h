// The kernels of the LP analysis and LSP quantisation and their processor variants (see core/variants.h).
#pragma once

#include "core/fixed_point.h"
#include "core/variants.h"
#include "g729/lsp/prediction.h"

// Shapes: a[11] Q12, lsp[10] Q15, lsf[10] Q13, maMem[4][10] Q13 with the newest frame first, target and code vectors [10] Q13.

// ownLspPreSelect, ownLspSelect2: return the first-stage index, and the second-stage indices as index[0] = L2, index[1] = L3.
// residual: the target minus its first-stage vector; weight: 0..32767.
// ownLevinsonSum_G729: the sum of r[j] * coef[order - j], j = 1..order-1 ascending, saturated after each, r[0..order-1] and
// coef[1..order-1]; ownLevinsonUpdate_G729: coef[j] += reflection * coef[order - j] for the same j, from the old coefficients,
// saturated. Lower words are 0..32767.
#define ZPP_G729_LSP_KERNELS(KERNEL)                                                           \
  KERNEL(ownLevinsonSum_G729, W7, Zpp32s(const zpp::Dpf* r, const zpp::Dpf* coef, int order))  \
  KERNEL(ownLevinsonUpdate_G729, W7, void(zpp::Dpf * coef, int order, zpp::Dpf reflection))    \
  KERNEL(ownLspPreSelect, W7, int(const Zpp16s* target))                                       \
  KERNEL(ownLspSelect2, W7, void(const Zpp16s* residual, const Zpp16s* weight, Zpp16s* index)) \
  KERNEL(ownInterpolateC_NR_G729_16s_Sfs, W7,                                                  \
         void(const Zpp16s* src1, Zpp16s weight1, const Zpp16s* src2, Zpp16s weight2, Zpp16s* dst, int len, int scaleFactor))

ZPP_G729_LSP_KERNELS(ZPP_DECLARE_KERNEL)

// Levinson-Durbin recursion; zppStsOverflowWarn, with nothing written, on an ill-conditioned stage.
ZppStatus ownLevinsonDurbin_G729(const Zpp32s* autoCorr, int order, Zpp16s* a, Zpp16s* refl, Zpp16s* energy);
ZppStatus ownLevinsonDurbin_G729B(const Zpp32s* autoCorr, Zpp16s* a, Zpp16s* refl, Zpp16s* energy);
void ownLagWindow_G729_32s_I(Zpp32s* autoCorr, int len);
void ownLagWindow_G729E_32s_I(Zpp32s* autoCorr);

void ownLSPToLSF_G729_16s(const Zpp16s* lsp, Zpp16s* lsf);
void ownLSPToLSF_Norm_G729_16s(const Zpp16s* lsp, Zpp16s* lsfNorm);
ZppStatus ownLSFToLSP_G729_16s(const Zpp16s* lsf, Zpp16s* lsp);

using MaPredictor = zpp::SwitchedPredictor<Zpp16s>;  // coefficients and complement Q15, inverse Q12
MaPredictor ownMaPredictor(int mode);                // speech frames; mode 0 or 1
MaPredictor ownNoiseMaPredictor(int mode);           // SID frames

void ownGetWgt(const Zpp16s* lsf, Zpp16s* weight);
// The code vector from which the predictor would compose lsf
void ownLspPrevExtract(const MaPredictor& predictor, const Zpp16s* lsf, const Zpp16s* maMem, Zpp16s* codeVector);
void ownLspGetQuant(int first, int lower, int upper, Zpp16s* codeVector);
// Composition and stability step: the quantised LSF, and which of its limits acted (zppStsOk or zppStsLSF...Clamped)
ZppStatus ownLspCompose(const MaPredictor& predictor, const Zpp16s* codeVector, const Zpp16s* maMem, Zpp16s* quantLsf);

// index: MA mode, L1, L2, L3
void ownRelspwed(const Zpp16s* lsf, const Zpp16s* maMem, Zpp16s* index);
ZppStatus ownLSFQuant_G729_16s(const Zpp16s* lsf, Zpp16s* maMem, Zpp16s* quantLsf, Zpp16s* index);
ZppStatus ownLSFDecode_G729_16s(const Zpp16s* index, Zpp16s* maMem, Zpp16s* quantLsf);
void ownLSFDecodeErased_G729_16s(int mode, Zpp16s* maMem, const Zpp16s* lsf);
ZppStatus ownLSPQuant_G729_16s(const Zpp16s* lsp, Zpp16s* maMem, Zpp16s* quantLsp, Zpp16s* code);
ZppStatus ownLSPQuant_G729E_16s(const Zpp16s* lsp, const Zpp16s* maMem, Zpp16s* codeVector, Zpp16s* quantLsp, Zpp16s* code);
ZppStatus ownLSFQuant_G729B_16s(const Zpp16s* lsf, Zpp16s* maMem, Zpp16s* quantLsf, Zpp16s* sidIndex);
ZppStatus ownLSFDecode_G729B_16s(const Zpp16s* sidIndex, Zpp16s* maMem, Zpp16s* quantLsf);

// ---- LP analysis and LSP quantisation in single precision (Annex C) --------------------------------------------------------
//
// Shapes as above, natural units: a[0] = 1, lsp cosines, lsf, maMem and code vectors radians.

ZppStatus ownLevinsonDurbin_G729_32f(const Zpp32f* autoCorr, int order, Zpp32f* a, Zpp32f* refl, Zpp32f* energy);
void ownLPCToLSP_G729_32f(const Zpp32f* a, const Zpp32f* prevLsp, const Zpp32f* grid, int intervals, int halvings, Zpp32f* lsp);
void ownLSPToLPC_G729_32f(const Zpp32f* lsp, Zpp32f* a);

using MaPredictor_32f = zpp::SwitchedPredictor<Zpp32f>;

void ownGetWgt_32f(const Zpp32f* lsf, Zpp32f* weight);
void ownLspPrevExtract_32f(const MaPredictor_32f& predictor, const Zpp32f* lsf, const Zpp32f* maMem, Zpp32f* codeVector);
// Squared errors of all 128 first-stage vectors, and weighted ones of all 32 lower (half 0) or upper half vectors of the second
void ownLspErrors1_32f(const Zpp32f* target, Zpp32f* errors);
void ownLspErrors2_32f(const Zpp32f* residual, const Zpp32f* weight, int half, Zpp32f* errors);
void ownLspSubtractFirst_32f(const Zpp32f* target, int first, Zpp32f* residual);
void ownLspGetQuant_32f(int first, int lower, int upper, Zpp32f* codeVector);
ZppStatus ownLspCompose_32f(const MaPredictor_32f& predictor, const Zpp32f* codeVector, const Zpp32f* maMem, Zpp32f* quantLsf);

void ownRelspwed_32f(const Zpp32f* lsf, const Zpp32f* maMem, Zpp16s* index);
ZppStatus ownLSFDecode_G729_32f(const Zpp16s* index, Zpp32f* maMem, Zpp32f* quantLsf);
void ownLSFDecodeErased_G729_32f(int mode, Zpp32f* maMem, const Zpp32f* lsf);
void ownLSPQuant_G729E_32f(const Zpp32f* lsp, const Zpp32f* maMem, Zpp32f* codeVector, Zpp32f* quantLsp, Zpp16s* code);
ZppStatus ownLSFQuant_G729B_32f(const Zpp32f* lsf, Zpp32f* maMem, Zpp32f* quantLsf, Zpp16s* sidIndex);
ZppStatus ownLSFDecode_G729B_32f(const Zpp16s* sidIndex, Zpp32f* maMem, Zpp32f* quantLsf);

// dst[n] = src1[n] * weight1 + src2[n] * weight2
void ownInterpolateC_G729_32f(const Zpp32f* src1, Zpp32f weight1, const Zpp32f* src2, Zpp32f weight2, Zpp32f* dst, int len);

// ---- Backward LP analysis (Annex E) ----------------------------------------------------------------------------------------
//
// src: 145 samples, oldest first; dst: 31 lags; state: the 31 recursive sums, at any alignment.

void ownWinHybrid_G729E_16s32s(const Zpp16s* src, Zpp32s* dst, void* state);
void ownWinHybrid_G729E_32f(const Zpp32f* src, Zpp32f* dst, void* state);
