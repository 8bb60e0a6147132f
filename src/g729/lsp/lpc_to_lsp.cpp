// LP coefficients to LSPs (ITU-T G.729 clause 3.2.3): entries.
#include "core/checks.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"
#include "lpc/kernels.h"
#include "lpc/tables.h"

using namespace zpp;

ZppStatus zppsLPCToLSP_G729_16s(const Zpp16s* a, const Zpp16s* prevLsp, Zpp16s* lsp) {
  if (anyNull(a, prevLsp, lsp)) return zppStsNullPointer;
  ownLPCToLSP_16s(a, prevLsp, w_eval_60, 60, 4, 11, lsp);
  return zppStsOk;
}

ZppStatus zppsLPCToLSP_G729A_16s(const Zpp16s* a, const Zpp16s* prevLsp, Zpp16s* lsp) {
  if (anyNull(a, prevLsp, lsp)) return zppStsNullPointer;
  ownLPCToLSP_16s(a, prevLsp, w_eval_50, 50, 2, 11, lsp);
  return zppStsOk;
}
