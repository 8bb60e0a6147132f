// LP coefficients to LSPs (ITU-T G.729 clause 3.2.3): SSE2 kernel. Both polynomials are evaluated on the whole grid, four
// points at a time, before the search.
#include "core/simd_w7.h"
#include "g729/chebyshev.h"
#include "g729/kernels.h"

using namespace zpp;

namespace {

// ChebyshevSeries::exactValue at four points
class FourPoints {
 public:
  explicit FourPoints(const ChebyshevSeries& f)
      : first_(_mm_set1_epi32(f.coefficient(0) >> 2)),
        b2_(_mm_set1_epi32(4096 * f.coefficient(0))),
        last_(_mm_set1_epi32(2048 * f.coefficient(5))),
        shift_(_mm_cvtsi32_si128(f.resultShift())) {
    for (int i = 0; i < 4; ++i) f_[i] = _mm_set1_epi32(4096 * f.coefficient(i + 1));
  }

  // x: four values, each in the lower half of its lane above a zero
  V operator()(V x) const {
    const V b1 = _mm_add_epi32(_mm_madd_epi16(x, first_), f_[0]);
    const V b2 = next(x, b1, b2_, f_[1]), b3 = next(x, b2, b1, f_[2]), b4 = next(x, b3, b2, f_[3]);
    return _mm_sra_epi32(_mm_add_epi32(times(x, b4), _mm_sub_epi32(last_, b3)), shift_);
  }

 private:
  // (b * x) >> 15 from the parts of b above and below bit 15
  static V times(V x, V b) {
    const V below = _mm_madd_epi16(_mm_and_si128(b, _mm_set1_epi32(0x7fff)), x);
    return _mm_add_epi32(_mm_madd_epi16(_mm_srai_epi32(b, 15), x), _mm_srai_epi32(below, 15));
  }
  static V next(V x, V b, V older, V f) { return _mm_add_epi32(_mm_slli_epi32(times(x, b), 1), _mm_sub_epi32(f, older)); }

  V first_, b2_, f_[4], last_, shift_;
};

}  // namespace

void ownLPCToLSP_G729_W7(const Zpp16s* a, const Zpp16s* prevLsp, const Zpp16s* grid, int intervals, int halvings, Zpp16s* lsp) {
  const LspPolynomials polynomials(a);
  const ChebyshevSeries* f = polynomials.f;
  if (!f[0].unlimited() || !f[1].unlimited() || intervals > 63)
    return ownLPCToLSP_G729_PX(a, prevLsp, grid, intervals, halvings, lsp);

  Zpp16s values[2][64];
  const FourPoints four[2] = {FourPoints(f[0]), FourPoints(f[1])};
  for (int n = 0;; n += 4) {
    const int at = n + 4 <= intervals + 1 ? n : intervals + 1 - 4;  // the last four overlap
    const V x = _mm_unpacklo_epi16(load4(grid + at), _mm_setzero_si128());
    const V both = _mm_packs_epi32(four[0](x), four[1](x));
    store4(values[0] + at, both);
    store4(values[1] + at, _mm_unpackhi_epi64(both, both));
    if (at != n || n + 4 == intervals + 1) break;
  }

  const auto valueAt = [&values](int which, int j) { return values[which][j]; };
  // Two halvings at a time: the middle and the middles of both halves
  const auto bisect = [&four, halvings](int which, Point& low, Point& high) {
    for (int n = 0; n < halvings; n += 2) {
      const Zpp16s x = midpoint(low.x, high.x), below = midpoint(low.x, x), above = midpoint(x, high.x);
      const V y = four[which](_mm_set_epi32(0, above & 0xffff, below & 0xffff, x & 0xffff));
      Zpp16s value[4];
      store4(value, _mm_packs_epi32(y, y));
      const bool lower = signChange(low.y, value[0]);
      narrow(low, high, {x, value[0]});
      narrow(low, high, {lower ? below : above, lower ? value[1] : value[2]});
    }
  };
  searchRoots(f, prevLsp, grid, intervals, valueAt, bisect, lsp);
}
