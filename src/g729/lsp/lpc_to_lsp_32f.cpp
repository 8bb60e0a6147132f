// LP coefficients to LSPs in single precision (ITU-T G.729 clause 3.2.3, Annex C). Unlike the fixed-point search this one steps
// back after each root, so that the interval from the root to the same grid point is searched once more.
#include "core/checks.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables_32f.h"

using namespace zpp;

namespace {

// The sum or difference polynomial of order 5 as a Chebyshev series, evaluated by Clenshaw's recursion
class ChebyshevSeries {
 public:
  ChebyshevSeries(const Zpp32f* a, int sign) : f_{1} {
    for (int i = 0; i < 5; ++i) f_[i + 1] = Zpp64f{a[i + 1]} + sign * Zpp64f{a[10 - i]} - sign * f_[i];
  }

  Zpp64f operator()(Zpp64f x) const {
    Zpp64f b2 = f_[0], b1 = 2 * x * b2 + f_[1];
    for (int i = 2; i <= 4; ++i) {
      const Zpp64f b = 2 * x * b1 - b2 + f_[i];
      b2 = b1;
      b1 = b;
    }
    return x * b1 - b2 + f_[5] / 2;
  }

 private:
  Zpp64f f_[6];
};

struct Point {
  Zpp64f x, y;
};

// Told from the signs, since a product may underflow or, of zero and infinity, be no number at all
bool signChange(Zpp64f y1, Zpp64f y2) { return (y1 <= 0 && y2 >= 0) || (y1 >= 0 && y2 <= 0); }

// Where the line through the ends of an interval crosses zero
Zpp64f interpolatedRoot(Point low, Point high) {
  return high.y == low.y ? low.x : low.x - low.y * (high.x - low.x) / (high.y - low.y);
}

}  // namespace

void ownLPCToLSP_G729_32f(const Zpp32f* a, const Zpp32f* prevLsp, const Zpp32f* grid, int intervals, int halvings,
                          Zpp32f* lsp) {
  const ChebyshevSeries polynomials[2] = {{a, 1}, {a, -1}};
  Zpp64f roots[10];
  int found = 0;
  Point low = {grid[0], polynomials[0](grid[0])};
  for (int j = 1; j <= intervals && found < 10; ++j) {
    const ChebyshevSeries& f = polynomials[found & 1];
    Point high = low;
    low = {grid[j], f(grid[j])};
    if (!signChange(low.y, high.y)) continue;
    for (int n = 0; n < halvings; ++n) {
      const Zpp64f x = (low.x + high.x) / 2;
      const Point middle = {x, f(x)};
      (signChange(low.y, middle.y) ? high : low) = middle;
    }
    const Zpp64f root = interpolatedRoot(low, high);
    roots[found++] = root;
    low = {root, polynomials[found & 1](root)};
    --j;
  }
  for (int i = 0; i < 10; ++i) lsp[i] = found == 10 ? static_cast<Zpp32f>(roots[i]) : prevLsp[i];
}

ZppStatus zppsLPCToLSP_G729_32f(const Zpp32f* a, const Zpp32f* prevLsp, Zpp32f* lsp) {
  if (anyNull(a, prevLsp, lsp)) return zppStsNullPointer;
  ownLPCToLSP_G729_32f(a, prevLsp, w_eval_60_32f, 60, 4, lsp);
  return zppStsOk;
}

ZppStatus zppsLPCToLSP_G729A_32f(const Zpp32f* a, const Zpp32f* prevLsp, Zpp32f* lsp) {
  if (anyNull(a, prevLsp, lsp)) return zppStsNullPointer;
  ownLPCToLSP_G729_32f(a, prevLsp, w_eval_50_32f, 50, 2, lsp);
  return zppStsOk;
}
