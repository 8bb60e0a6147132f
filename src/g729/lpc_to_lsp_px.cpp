// LP coefficients to LSPs (ITU-T G.729 clause 3.2.3): portable kernel.
#include "g729/chebyshev.h"
#include "g729/kernels.h"

using namespace zpp;

void ownLPCToLSP_G729_PX(const Zpp16s* a, const Zpp16s* prevLsp, const Zpp16s* grid, int intervals, int halvings, Zpp16s* lsp) {
  const LspPolynomials polynomials(a);
  const ChebyshevSeries* f = polynomials.f;
  searchRoots(
      f, prevLsp, grid, intervals, halvings, [f, grid](int which, int j) { return f[which](grid[j]); }, lsp);
}
