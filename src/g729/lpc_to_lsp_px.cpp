// LP coefficients to LSPs (ITU-T G.729 clause 3.2.3): portable kernel.
#include "g729/chebyshev.h"
#include "g729/kernels.h"

using namespace zpp;

void ownLPCToLSP_G729_PX(const Zpp16s* a, const Zpp16s* prevLsp, const Zpp16s* grid, int intervals, int halvings, Zpp16s* lsp) {
  const LspPolynomials polynomials(a);
  const ChebyshevSeries* f = polynomials.f;
  const auto valueAt = [f, grid](int which, int j) { return f[which](grid[j]); };
  const auto bisect = [f, halvings](int which, Point& low, Point& high) {
    for (int n = 0; n < halvings; ++n) {
      const Zpp16s x = midpoint(low.x, high.x);
      narrow(low, high, {x, f[which](x)});
    }
  };
  searchRoots(f, prevLsp, grid, intervals, valueAt, bisect, lsp);
}
