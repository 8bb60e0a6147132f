// Search for the roots of the sum and difference polynomial in steps of four: SSE2 kernel.
#include <algorithm>
#include <bit>

#include "core/simd_w7.h"
#include "g723/lsf/kernels.h"
#include "g723/lsf/root_search.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

// Half a polynomial's values at the grid points i, i + Step, i + 2 Step and i + 3 Step
template <int Step>
V halfValuesAt(V c, int i) {
  const auto term = [c, i](int n) { return _mm_madd_epi16(c, load(ReorderedCOS[i + n * Step])); };
  return sumsOfLanes32(term(0), term(1), term(2), term(3));
}

unsigned signs(V v) { return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(v))); }

// Whether every sum of products with cosines, |cos| <= 2^14, is below 2^31: so it is when the magnitudes add up to less than
// 2^17. Only spectra that are all but flat fail.
bool sumsFit(V c) {
  const V magnitude = _mm_max_epi16(c, _mm_subs_epi16(_mm_setzero_si128(), c));
  return sumLanes32(_mm_madd_epi16(magnitude, _mm_set1_epi16(1))) < (1 << 17) - kPolynomial;  // 32767 may stand for 32768
}

}  // namespace

bool ownFindRootLSF_Fast_W7(const Zpp16s* polynomials, Zpp16s* lsf) {
  const V both[2] = {load(polynomials), load(polynomials + kPolynomial)};
  if (!sumsFit(both[0]) || !sumsFit(both[1])) return ownFindRootLSF_Fast_PX(polynomials, lsf);
  int found = 0;
  for (int i = 0; i + 4 <= kGrid;) {
    // Seven steps at once, from i on; those beyond the grid do not count.
    const V c = both[found % 2];
    Zpp32s coarse[8];
    const V lower = halfValuesAt<4>(c, i), upper = halfValuesAt<4>(c, i + 16);
    store(coarse, lower);
    store(coarse + 4, upper);
    const unsigned negative = signs(lower) | signs(upper) << 4;
    const unsigned changes = (negative ^ negative >> 1) & ((1u << std::min((kGrid - i) / 4, 7)) - 1);
    if (changes == 0) {
      i += 28;
      continue;
    }
    const int step = std::countr_zero(changes);
    i += 4 * step;
    // The points i to i + 4 and, bit by bit, which of the three between differ in sign from the first: halving looks at the
    // second of them, then at the first or the third.
    Zpp32s y[5];
    const V fine = halfValuesAt<1>(c, i);
    store(y, fine);
    y[4] = coarse[step + 1];
    const unsigned differs = signs(fine) ^ ((negative >> step & 1) != 0 ? 15u : 0u);
    const int j = (differs & 4) != 0 ? ((differs & 2) != 0 ? 1 : 2) : ((differs & 8) != 0 ? 3 : 4);
    i += j;
    lsf[found++] = interpolateRoot(i, shlSat32(y[j - 1], 1), shlSat32(y[j], 1));
    if (found == kLsfOrder) return true;
  }
  return false;
}
