// LP coefficients to LSPs (ITU-T G.729 clause 3.2.3): SSE2 kernel. Both polynomials are evaluated on the whole grid, and the
// roots in all its intervals with a sign change are found side by side, before the search walks from root to root.
#include <bit>
#include <cstdint>

#include "core/simd_w7.h"
#include "lpc/chebyshev.h"
#include "lpc/kernels.h"

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

  // Lanes 0 and 2 from one series, 1 and 3 from another of the same Q format
  static FourPoints alternating(const FourPoints& even, const FourPoints& odd) {
    FourPoints both = even;
    both.first_ = _mm_unpacklo_epi32(even.first_, odd.first_);
    both.b2_ = _mm_unpacklo_epi32(even.b2_, odd.b2_);
    both.last_ = _mm_unpacklo_epi32(even.last_, odd.last_);
    for (int i = 0; i < 4; ++i) both.f_[i] = _mm_unpacklo_epi32(even.f_[i], odd.f_[i]);
    return both;
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

using Bits = std::uint64_t;

constexpr int kMostIntervals = 63, kGrid = 72;  // points of the grid, with room for whole vectors

// Bit j: sign change between points j - 1 and j, j = 1..intervals
Bits signChanges(const Zpp16s* values, int intervals) {
  Bits changes = 0;
  for (int j = 0; j <= intervals; j += 8) {
    const V y1 = load(values + j), y2 = load(values + j + 1), zero = _mm_setzero_si128();
    const V high = _mm_mulhi_epi16(y1, y2), low = _mm_mullo_epi16(y1, y2);
    const V change = _mm_or_si128(_mm_cmpgt_epi16(zero, high), _mm_cmpeq_epi16(_mm_or_si128(high, low), zero));
    changes |= static_cast<Bits>(_mm_movemask_epi8(_mm_packs_epi16(change, zero))) << j;
  }
  return (changes & ((Bits{1} << intervals) - 1)) << 1;
}

// The roots in intervals of the grid, by interval, and the value of the other polynomial there
struct GridRoots {
  Zpp16s root[kMostIntervals + 1], other[kMostIntervals + 1];
};

class GridSearch {
 public:
  GridSearch(const ChebyshevSeries* f, const Zpp16s* grid, int intervals)
      : grid_(grid), four_{FourPoints(f[0]), FourPoints(f[1])} {
    for (int n = 0;; n += 4) {
      const int at = n + 4 <= intervals + 1 ? n : intervals + 1 - 4;  // the last four overlap
      const V x = _mm_unpacklo_epi16(load4(grid + at), _mm_setzero_si128());
      const V both = _mm_packs_epi32(four_[0](x), four_[1](x));
      store4(values[0] + at, both);
      store4(values[1] + at, _mm_unpackhi_epi64(both, both));
      if (at != n || n + 4 == intervals + 1) break;
    }
    for (int which = 0; which < 2; ++which) changes[which] = signChanges(values[which], intervals);
  }

  // False, and nothing done, when a polynomial has more sign changes than fit: roots on points of the grid count twice.
  bool findRoots(int halvings) {
    alignas(16) Zpp32s lowX[kLanes] = {}, lowY[kLanes] = {}, highX[kLanes] = {}, highY[kLanes] = {};
    int interval[kLanes] = {}, lanes = 0;
    for (int which = 0; which < 2; ++which) {
      int lane = which;
      for (Bits rest = changes[which]; rest != 0; rest &= rest - 1, lane += 2) {
        if (lane >= kLanes) return false;
        const int j = std::countr_zero(rest);
        interval[lane] = j;
        lowX[lane] = grid_[j], lowY[lane] = values[which][j];
        highX[lane] = grid_[j - 1], highY[lane] = values[which][j - 1];
      }
      lanes = lane - 1 > lanes ? lane - 1 : lanes;
    }
    const FourPoints here = FourPoints::alternating(four_[0], four_[1]), there = FourPoints::alternating(four_[1], four_[0]);
    // All vectors take a step before the next one: their values are a long way.
    for (int n = 0; n < halvings; ++n)
      for (int at = 0; at < lanes; at += 4) {
        const V x1 = load(lowX + at), y1 = load(lowY + at), x2 = load(highX + at), y2 = load(highY + at);
        const V x = _mm_add_epi32(_mm_srai_epi32(x1, 1), _mm_srai_epi32(x2, 1)), y = at4(here, x);
        const V upper = _mm_cmpgt_epi32(_mm_madd_epi16(lowHalf(y1), lowHalf(y)), _mm_setzero_si128());
        store(lowX + at, select(upper, x, x1)), store(lowY + at, select(upper, y, y1));
        store(highX + at, select(upper, x2, x)), store(highY + at, select(upper, y2, y));
      }
    alignas(16) Zpp32s root[kLanes] = {}, other[kLanes];
    for (int lane = 0; lane < lanes; ++lane)
      root[lane] = interpolatedRoot({low16(lowX[lane]), low16(lowY[lane])}, {low16(highX[lane]), low16(highY[lane])});
    for (int at = 0; at < lanes; at += 4) store(other + at, at4(there, load(root + at)));
    for (int lane = 0; lane < lanes; ++lane) {
      roots[lane & 1].root[interval[lane]] = low16(root[lane]);
      roots[lane & 1].other[interval[lane]] = low16(other[lane]);
    }
    return true;
  }

  Zpp16s values[2][kGrid] = {};
  Bits changes[2];
  GridRoots roots[2];  // of interval 0: of no meaning

 private:
  static constexpr int kLanes = 12;  // six intervals a polynomial

  static V lowHalf(V v) { return _mm_and_si128(v, _mm_set1_epi32(0xffff)); }
  static V at4(const FourPoints& f, V x) {
    const V y = f(lowHalf(x));
    return widenLow(_mm_packs_epi32(y, y));
  }

  const Zpp16s* grid_;
  FourPoints four_[2];
};

}  // namespace

void ownLPCToLSP_16s_W7(const Zpp16s* a, const Zpp16s* prevLsp, const Zpp16s* grid, int intervals, int halvings, int precision,
                        Zpp16s* lsp) {
  const LspPolynomials polynomials(a, precision);
  const ChebyshevSeries* f = polynomials.f;
  if (!f[0].unlimited() || !f[1].unlimited() || intervals > kMostIntervals)
    return ownLPCToLSP_16s_PX(a, prevLsp, grid, intervals, halvings, precision, lsp);

  GridSearch search(f, grid, intervals);
  if (!search.findRoots(halvings)) return ownLPCToLSP_16s_PX(a, prevLsp, grid, intervals, halvings, precision, lsp);

  Zpp16s found[10];
  int count = 0, j = 0;
  for (int from = 1;; from = j + 2) {
    const int which = count & 1;
    const Bits rest = from > intervals ? 0 : search.changes[which] >> from;
    if (rest == 0) break;
    j = from + std::countr_zero(rest);
    Point root = {search.roots[which].root[j], search.roots[which].other[j]};
    found[count++] = root.x;
    // From the root to the next point of the grid: rarely is there a root of the other polynomial.
    while (count < 10 && j < intervals && signChange(root.y, search.values[count & 1][j + 1])) {
      const ChebyshevSeries& series = f[count & 1];
      ++j;
      Point high = root, low = {grid[j], search.values[count & 1][j]};
      bisect(series, halvings, low, high);
      root.x = interpolatedRoot(low, high);
      found[count++] = root.x;
      root.y = f[count & 1](root.x);
    }
    if (count == 10) break;
  }
  for (int i = 0; i < 10; ++i) lsp[i] = count == 10 ? found[i] : prevLsp[i];
}
