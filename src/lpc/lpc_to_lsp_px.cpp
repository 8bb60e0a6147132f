// LP coefficients to LSPs (ITU-T G.729 clause 3.2.3): portable kernel.
#include "lpc/chebyshev.h"
#include "lpc/kernels.h"

using namespace zpp;

// The ten roots, alternately of both polynomials, or prevLsp when the grid shows fewer. From a root, the search for the next
// one starts there instead of at the next point of the grid.
void ownLPCToLSP_16s_PX(const Zpp16s* a, const Zpp16s* prevLsp, const Zpp16s* grid, int intervals, int halvings, int precision,
                        Zpp16s* lsp) {
  const LspPolynomials polynomials(a, precision);
  const ChebyshevSeries* f = polynomials.f;
  Zpp16s roots[10];
  int found = 0;
  Point low = {grid[0], f[0](grid[0])};
  for (int j = 1; j <= intervals; ++j) {
    const ChebyshevSeries& series = f[found & 1];
    Point high = low;
    low = {grid[j], series(grid[j])};
    if (!signChange(low.y, high.y)) continue;
    bisect(series, halvings, low, high);
    const Zpp16s root = interpolatedRoot(low, high);
    roots[found++] = root;
    if (found == 10) break;
    low = {root, f[found & 1](root)};
  }
  for (int i = 0; i < 10; ++i) lsp[i] = found == 10 ? roots[i] : prevLsp[i];
}
