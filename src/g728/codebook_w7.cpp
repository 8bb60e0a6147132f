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

// The search over one shape in four, four at a time: gain and distortion of each, the smallest distortion by lane
class LaneSearch {
 public:
  LaneSearch(const Zpp16s* target, V firstCodes)
      : t01_(pairOf(target[0], target[1])), t23_(pairOf(target[2], target[3])), t4_(pairOf(target[4], 0)), codes_(firstCodes) {}

  // Magnitudes of the correlations. Those of a shape vector add up to 47018 at most, so that all fits 32 bits.
  void correlate(int group) {
    const FourShapes f(group);
    const V sum =
        _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(f.s01, t01_), _mm_madd_epi16(f.s23, t23_)), _mm_madd_epi16(f.s4, t4_));
    const V sign = _mm_srai_epi32(sum, 31);
    magnitude_ = _mm_sub_epi32(_mm_xor_si128(sum, sign), sign);
    gain_ = _mm_andnot_si128(_mm_cmpgt_epi32(sum, _mm_setzero_si128()), _mm_set1_epi32(4));
  }
  V upper() const { return _mm_srli_epi32(magnitude_, 14); }

  // energies: each with 0 behind it; pairs: each with the upper part of its correlation
  void compare(V energies, V pairs) {
    factors_ = pairOf(gainSquare[0], -gainDouble[0]);
    raiseGain<0>(energies);
    raiseGain<1>(energies);
    raiseGain<2>(energies);
    const V distortion = _mm_madd_epi16(pairs, factors_);
    const V less = _mm_cmplt_epi32(distortion, smallest_);
    smallest_ = select(less, distortion, smallest_);
    best_ = select(less, _mm_add_epi32(codes_, gain_), best_);
    codes_ = _mm_add_epi32(codes_, _mm_set1_epi32(64));
  }
  void store(Zpp32s* distortions, Zpp32s* codes) const { zpp::store(distortions, smallest_), zpp::store(codes, best_); }

 private:
  // Where the correlation exceeds the boundary behind gain g: the next gain, and its factors in the distortion
  template <int g>
  void raiseGain(V energies) {
    const V above = _mm_cmpgt_epi32(magnitude_, _mm_madd_epi16(energies, pairOf(gainBoundary[g], 0)));
    const V growth = pairOf(gainSquare[g + 1] - gainSquare[g], gainDouble[g] - gainDouble[g + 1]);
    factors_ = _mm_add_epi16(factors_, _mm_and_si128(above, growth));
    gain_ = _mm_sub_epi32(gain_, above);
  }

  V t01_, t23_, t4_, codes_;
  V smallest_ = _mm_set1_epi32(kMax32), best_ = _mm_setzero_si128();
  V magnitude_, gain_, factors_;
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
  LaneSearch low(target, _mm_setr_epi32(0, 8, 16, 24)), high(target, _mm_setr_epi32(32, 40, 48, 56));
  const V zero = _mm_setzero_si128();
  for (int j = 0; j < kShapes; j += 8) {
    low.correlate(j / 4);
    high.correlate(j / 4 + 1);
    const V energies = load(energy + j), upper = _mm_packs_epi32(low.upper(), high.upper());
    low.compare(_mm_unpacklo_epi16(energies, zero), _mm_unpacklo_epi16(energies, upper));
    high.compare(_mm_unpackhi_epi16(energies, zero), _mm_unpackhi_epi16(energies, upper));
  }
  // Of equal distortions in several lanes that of the first shape
  Zpp32s distortions[8], codes[8];
  low.store(distortions, codes);
  high.store(distortions + 4, codes + 4);
  int winner = 0;
  for (int lane = 1; lane < 8; ++lane)
    if (distortions[lane] < distortions[winner] || (distortions[lane] == distortions[winner] && codes[lane] < codes[winner]))
      winner = lane;
  return codes[winner];
}
