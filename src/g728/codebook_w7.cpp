// Excitation codebook: SSE2 kernels, four shape vectors side by side in 32-bit lanes.
#include "core/simd_w7.h"
#include "g728/codebook_search.h"
#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

struct FourShapes {
  V s01, s23, s4;
  explicit FourShapes(int group) {
    s01 = load(shapeGroups.pairs[group][0]);
    s23 = load(shapeGroups.pairs[group][1]);
    s4 = load(shapeGroups.pairs[group][2]);
  }
};

// The factors of energy and correlation in the distortion of the smallest gain, and how they grow from gain to gain
inline V firstFactors() { return pairOf(gainSquare[0], -gainDouble[0]); }
template <int g>
V growth() {
  return pairOf(gainSquare[g + 1] - gainSquare[g], gainDouble[g] - gainDouble[g + 1]);
}

// The smallest distortion of each of four lanes, and its shape
struct Best {
  V distortion = _mm_set1_epi32(kMax32), shape = _mm_setzero_si128();

  // magnitude: of the correlations; energies: with 0 behind each; pairs: with the upper part of the correlation behind each
  void compare(V shapes, V magnitude, V energies, V pairs) {
    const V above0 = _mm_cmpgt_epi32(magnitude, _mm_madd_epi16(energies, pairOf(gainBoundary[0], 0)));
    const V above1 = _mm_cmpgt_epi32(magnitude, _mm_madd_epi16(energies, pairOf(gainBoundary[1], 0)));
    const V above2 = _mm_cmpgt_epi32(magnitude, _mm_madd_epi16(energies, pairOf(gainBoundary[2], 0)));
    V factors = _mm_add_epi16(firstFactors(), _mm_and_si128(above0, growth<0>()));
    factors = _mm_add_epi16(factors, _mm_and_si128(above1, growth<1>()));
    factors = _mm_add_epi16(factors, _mm_and_si128(above2, growth<2>()));
    const V newDistortion = _mm_madd_epi16(pairs, factors);
    const V less = _mm_cmplt_epi32(newDistortion, distortion);
    distortion = select(less, newDistortion, distortion);
    shape = select(less, shapes, shape);
  }
};

}  // namespace

void ownShapeEnergy_G728_16s_W7(const Zpp16s* response, Zpp16s* energy) {
  const Zpp16s* h = response;
  const V h0 = pairOf(h[0], 0), h10 = pairOf(h[1], h[0]), h21 = pairOf(h[2], h[1]), h32 = pairOf(h[3], h[2]),
          h43 = pairOf(h[4], h[3]);
  V largest = _mm_setzero_si128(), smallest = largest;
  for (int j = 0; j < kShapes; j += 8) {
    const FourShapes low(j / 4), high(j / 4 + 1);
    // Samples of the filtered vectors; that the sums fit 32 bits is shown at the portable kernel.
    const auto packed = [](V a, V b) { return _mm_packs_epi32(_mm_srai_epi32(a, 14), _mm_srai_epi32(b, 14)); };
    const auto sample2 = [](const FourShapes& f, V a, V b) {
      return _mm_add_epi32(_mm_madd_epi16(f.s01, a), _mm_madd_epi16(f.s23, b));
    };
    const auto sample4 = [&](const FourShapes& f) { return _mm_add_epi32(sample2(f, h43, h21), _mm_madd_epi16(f.s4, h0)); };
    const V c[kVector] = {packed(_mm_madd_epi16(low.s01, h0), _mm_madd_epi16(high.s01, h0)),
                          packed(_mm_madd_epi16(low.s01, h10), _mm_madd_epi16(high.s01, h10)),
                          packed(sample2(low, h21, h0), sample2(high, h21, h0)),
                          packed(sample2(low, h32, h10), sample2(high, h32, h10)), packed(sample4(low), sample4(high))};
    V low32 = _mm_setzero_si128(), high32 = low32;
    const auto addSquares = [&](V a, V b) {
      const V first = _mm_unpacklo_epi16(a, b), last = _mm_unpackhi_epi16(a, b);
      low32 = _mm_add_epi32(low32, _mm_madd_epi16(first, first));
      high32 = _mm_add_epi32(high32, _mm_madd_epi16(last, last));
    };
    addSquares(c[0], c[1]);
    addSquares(c[2], c[3]);
    addSquares(c[4], _mm_setzero_si128());
    for (const V x : c) largest = _mm_max_epi16(largest, x), smallest = _mm_min_epi16(smallest, x);
    store(energy + j, _mm_packs_epi32(_mm_srai_epi32(low32, 15), _mm_srai_epi32(high32, 15)));
  }
  // Five squares of up to 20724 fit 31 bits.
  const V limit = _mm_set1_epi16(20724);
  const V beyond = _mm_or_si128(_mm_cmpgt_epi16(largest, limit), _mm_cmplt_epi16(smallest, _mm_set1_epi16(-20724)));
  if (_mm_movemask_epi8(beyond) != 0) ownShapeEnergy_G728_16s_PX(response, energy);
}

int ownCodebookSearch_G728_16s_W7(const Zpp16s* target, const Zpp16s* energy) {
  const V t01 = pairOf(target[0], target[1]), t23 = pairOf(target[2], target[3]), t4 = pairOf(target[4], 0);
  const V zero = _mm_setzero_si128();
  V shapes = _mm_setr_epi32(0, 1, 2, 3);
  Best low, high;
  // The magnitudes of a shape vector add up to 47018 at most: correlations fit 32 bits, and so does all that follows.
  const auto magnitudes = [&](int group) {
    const FourShapes f(group);
    const V sum =
        _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(f.s01, t01), _mm_madd_epi16(f.s23, t23)), _mm_madd_epi16(f.s4, t4));
    const V minus = _mm_srai_epi32(sum, 31);
    return _mm_sub_epi32(_mm_xor_si128(sum, minus), minus);
  };
  for (int j = 0; j < kShapes; j += 8) {
    const V first = magnitudes(j / 4), second = magnitudes(j / 4 + 1), energies = load(energy + j);
    const V upper = _mm_packs_epi32(_mm_srli_epi32(first, 14), _mm_srli_epi32(second, 14));
    low.compare(shapes, first, _mm_unpacklo_epi16(energies, zero), _mm_unpacklo_epi16(energies, upper));
    high.compare(shapes, second, _mm_unpackhi_epi16(energies, zero), _mm_unpackhi_epi16(energies, upper));
    shapes = _mm_add_epi32(shapes, _mm_set1_epi32(8));
  }
  // Of equal distortions in several lanes that of the first shape
  Zpp32s distortions[8], best[8];
  store(distortions, low.distortion);
  store(distortions + 4, high.distortion);
  store(best, low.shape);
  store(best + 4, _mm_add_epi32(high.shape, _mm_set1_epi32(4)));
  int winner = 0;
  for (int lane = 1; lane < 8; ++lane)
    if (distortions[lane] < distortions[winner] || (distortions[lane] == distortions[winner] && best[lane] < best[winner]))
      winner = lane;
  return codeOfShape(best[winner], target, energy);
}
