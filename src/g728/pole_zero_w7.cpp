// Filters of order 10: SSE2 kernel, the outputs side by side in 32-bit lanes.
#include "core/simd_w7.h"
#include "g728/arithmetic.h"
#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

// The upper half of a, then the lower half of b
V halvesOf(V a, V b) { return _mm_castpd_si128(_mm_shuffle_pd(_mm_castsi128_pd(a), _mm_castsi128_pd(b), 1)); }

// Sums of many products in halves that need no more than 32 bits: outputs 0..3, and 4
class WideSums {
 public:
  // Ten past samples from p on, and four that follow them, in the lower half of `newest`
  template <bool negative>
  void add(const Zpp16s* p, V newest, const Zpp16s* coef) {
    Zpp32s lastTwo;
    std::memcpy(&lastTwo, p + 8, sizeof lastTwo);
    const V old = load(p), next = load(p + 1), tail = _mm_or_si128(_mm_cvtsi32_si128(lastTwo), _mm_slli_si128(newest, 4));
    // Pairs of neighbours, the second pair being that which begins at the second sample, and so on; every second of the vectors
    V pairs[7];
    pairs[0] = _mm_unpacklo_epi16(old, next);
    pairs[2] = _mm_unpackhi_epi16(old, next);
    pairs[4] = _mm_unpacklo_epi16(tail, _mm_srli_si128(tail, 2));
    pairs[6] = _mm_unpackhi_epi16(tail, _mm_srli_si128(tail, 2));
    for (int n = 1; n < 7; n += 2) pairs[n] = halvesOf(pairs[n - 1], pairs[n + 1]);
    V factors = load(coef);  // the later one of two meets the earlier sample
    factors = swappedPairs(factors);
    addPair<negative>(pairs[4], pairs[6], _mm_shuffle_epi32(factors, _MM_SHUFFLE(0, 0, 0, 0)));
    addPair<negative>(pairs[3], pairs[5], _mm_shuffle_epi32(factors, _MM_SHUFFLE(1, 1, 1, 1)));
    addPair<negative>(pairs[2], pairs[4], _mm_shuffle_epi32(factors, _MM_SHUFFLE(2, 2, 2, 2)));
    addPair<negative>(pairs[1], pairs[3], _mm_shuffle_epi32(factors, _MM_SHUFFLE(3, 3, 3, 3)));
    addPair<negative>(pairs[0], pairs[2], pairOf(coef[9], coef[8]));
  }
  void store(Zpp64s* sums) const {
    Zpp32s upper[8], lower[8];
    for (int i = 0; i < 2; ++i) zpp::store(upper + 4 * i, upper_[i]), zpp::store(lower + 4 * i, lower_[i]);
    for (int n = 0; n < kVector; ++n) sums[n] = Zpp64s{upper[n]} * 65536 + lower[n];
  }

 private:
  template <bool negative>
  void addPair(V first, V second, V factors) {
    const V sums[2] = {_mm_madd_epi16(first, factors), _mm_madd_epi16(second, factors)};
    for (int i = 0; i < 2; ++i) {
      const V high = _mm_srai_epi32(sums[i], 16), low = _mm_and_si128(sums[i], _mm_set1_epi32(0xffff));
      upper_[i] = negative ? _mm_sub_epi32(upper_[i], high) : _mm_add_epi32(upper_[i], high);
      lower_[i] = negative ? _mm_sub_epi32(lower_[i], low) : _mm_add_epi32(lower_[i], low);
    }
  }

  V upper_[2] = {_mm_setzero_si128(), _mm_setzero_si128()}, lower_[2] = {_mm_setzero_si128(), _mm_setzero_si128()};
};

V smallestOf(const Zpp16s* coef) { return _mm_min_epi16(load(coef), load(coef + 2)); }

}  // namespace

void ownPastSums_G728_16s_W7(const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* x, const Zpp16s* y, Zpp64s* sums) {
  // Without a coefficient of -32768 the sum of two products fits 32 bits.
  const V extreme = _mm_cmpeq_epi16(_mm_min_epi16(smallestOf(coefZero), smallestOf(coefPole)), _mm_set1_epi16(kMin16));
  if (_mm_movemask_epi8(extreme) != 0) return ownPastSums_G728_16s_PX(coefZero, coefPole, x, y, sums);
  WideSums wide;
  wide.add<false>(x - 10, load4(x), coefZero);
  wide.add<true>(y - 10, _mm_setzero_si128(), coefPole);
  wide.store(sums);
}
