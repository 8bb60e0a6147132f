// Search for the roots of the sum and difference polynomial in steps of four: portable kernel.
#include "g723/lsf/kernels.h"
#include "g723/lsf/root_search.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

// Half a polynomial's value at grid point i, exact. Three products stay below 2^31.
Zpp64s halfValueAt(const Zpp16s* c, int i) {
  const Zpp16s* cosine = ReorderedCOS[i];
  const Zpp32s low = c[0] * cosine[0] + c[1] * cosine[1] + c[2] * cosine[2];
  const Zpp32s high = c[3] * cosine[3] + c[4] * cosine[4] + c[5] * cosine[5];
  return Zpp64s{low} + high;
}

}  // namespace

bool ownFindRootLSF_Fast_PX(const Zpp16s* polynomials, Zpp16s* lsf) {
  int found = 0;
  Zpp64s last = halfValueAt(polynomials, 0);
  for (int i = 4; i <= kGrid; i += 4) {
    const Zpp16s* c = polynomials + kPolynomial * (found % 2);
    const Zpp64s value = halfValueAt(c, i);
    if (!signsDiffer(last, value)) {
      last = value;
      continue;
    }
    Zpp64s y1 = last, y2 = value;
    for (int half = 2; half > 0; half /= 2) {
      const Zpp64s middle = halfValueAt(c, i - half);
      if (signsDiffer(y1, middle)) {
        y2 = middle;
        i -= half;
      } else {
        y1 = middle;
      }
    }
    lsf[found++] = interpolateRoot(i, sat32(2 * y1), sat32(2 * y2));
    if (found == kLsfOrder) return true;
    last = halfValueAt(polynomials + kPolynomial * (found % 2), i);
  }
  return false;
}
