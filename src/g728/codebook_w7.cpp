// Excitation codebook: SSE2 kernels, four shape vectors side by side in 32-bit lanes.
#include "core/simd_w7.h"
#include "g728/arithmetic.h"
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
  // Factors of energy and correlation in the distortion of the smallest gain, and how they grow from gain to gain
  const V first = pairOf(gainSquare[0], -gainDouble[0]);
  V boundary[3], growth[3];
  for (int g = 0; g < 3; ++g) {
    boundary[g] = pairOf(gainBoundary[g], 0);
    growth[g] = pairOf(gainSquare[g + 1] - gainSquare[g], gainDouble[g] - gainDouble[g + 1]);
  }
  V smallest[2], best[2];
  smallest[0] = smallest[1] = _mm_set1_epi32(kMax32);
  best[0] = best[1] = zero;
  V code[2] = {_mm_setr_epi32(0, 8, 16, 24), _mm_setr_epi32(32, 40, 48, 56)};
  for (int j = 0; j < kShapes; j += 8) {
    // The magnitudes of a shape vector add up to 47018 at most: correlations fit 32 bits, and so does all that follows.
    V correlation[2], negative[2];
    for (int i = 0; i < 2; ++i) {
      const FourShapes f(j / 4 + i);
      const V sum =
          _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(f.s01, t01), _mm_madd_epi16(f.s23, t23)), _mm_madd_epi16(f.s4, t4));
      const V sign = _mm_srai_epi32(sum, 31);
      correlation[i] = _mm_sub_epi32(_mm_xor_si128(sum, sign), sign);
      negative[i] = _mm_andnot_si128(_mm_cmpgt_epi32(sum, zero), _mm_set1_epi32(4));
    }
    const V energies = load(energy + j);
    const V upper = _mm_packs_epi32(_mm_srli_epi32(correlation[0], 14), _mm_srli_epi32(correlation[1], 14));
    for (int i = 0; i < 2; ++i) {
      const V alone = i == 0 ? _mm_unpacklo_epi16(energies, zero) : _mm_unpackhi_epi16(energies, zero);
      const V pairs = i == 0 ? _mm_unpacklo_epi16(energies, upper) : _mm_unpackhi_epi16(energies, upper);
      V factors = first, gain = negative[i];
      for (int g = 0; g < 3; ++g) {
        const V above = _mm_cmpgt_epi32(correlation[i], _mm_madd_epi16(alone, boundary[g]));
        factors = _mm_add_epi16(factors, _mm_and_si128(above, growth[g]));
        gain = _mm_sub_epi32(gain, above);
      }
      const V distortion = _mm_madd_epi16(pairs, factors);
      const V less = _mm_cmplt_epi32(distortion, smallest[i]);
      smallest[i] = select(less, distortion, smallest[i]);
      best[i] = select(less, _mm_add_epi32(code[i], gain), best[i]);
      code[i] = _mm_add_epi32(code[i], _mm_set1_epi32(64));
    }
  }
  // Of equal distortions in several lanes that of the first shape
  Zpp32s distortions[8], codes[8];
  for (int i = 0; i < 2; ++i) store(distortions + 4 * i, smallest[i]), store(codes + 4 * i, best[i]);
  int winner = 0;
  for (int lane = 1; lane < 8; ++lane)
    if (distortions[lane] < distortions[winner] || (distortions[lane] == distortions[winner] && codes[lane] < codes[winner]))
      winner = lane;
  return codes[winner];
}
