// The kernels of the LSP analysis and quantisation and their processor variants (see core/variants.h). Arguments are trusted.
//
// Shapes: a[11] Q12, lsp[10] Q15, lsf[10], residuals and code vectors 16384 = 4000 Hz.
#pragma once

#include "amr/lsp/tables.h"
#include "amr/rate.h"
#include "core/variants.h"

// ownLsfSearch: the index of the entry, of `size`, a multiple of 8, with the least squared error of the weighted difference
//   from the residual, both of 4 elements; the first of equals; 0 when all errors saturate. bothSigns: entries and their
//   opposites by turns.
#define ZPP_AMR_LSP_KERNELS(KERNEL)      \
  KERNEL(ownLsfSearch_GSMAMR_16s, W7_V3, \
         int(const Zpp16s* residual, const Zpp16s* weight, const LsfQuad* codebook, int size, bool bothSigns))

ZPP_AMR_LSP_KERNELS(ZPP_DECLARE_KERNEL)

void ownLSPToLSF_GSMAMR_16s(const Zpp16s* lsp, Zpp16s* lsf);
void ownLSFToLSP_GSMAMR_16s(const Zpp16s* lsf, Zpp16s* lsp);
// Spaces an LSF vector out by at least 50 Hz.
void ownReorderLSF_GSMAMR_16s(Zpp16s* lsf);

void ownInterpolateLSP_GSMAMR_16s(const Zpp16s* prevLsp, const Zpp16s* lsp, Zpp16s* a, zpp::amr::Mode mode);

void ownLSPQuant3_GSMAMR_16s(const Zpp16s* lsp, Zpp16s* residualMem, Zpp16s* quantLsp, Zpp16s* idx, zpp::amr::Mode mode);
void ownLSPQuant5_GSMAMR_16s(const Zpp16s* lsp, Zpp16s* residualMem, Zpp16s* quantLsp, Zpp16s* idx);
void ownLSPDecode3_GSMAMR_16s(const Zpp16s* idx, bool badFrame, Zpp16s* residualMem, Zpp16s* lsf, Zpp16s* quantLsp,
                              zpp::amr::Mode mode);
void ownLSPDecode5_GSMAMR_16s(const Zpp16s* idx, bool badFrame, Zpp16s* residualMem, Zpp16s* lsf, Zpp16s* quantLsp);
