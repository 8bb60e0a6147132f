// The inner loops of the Levinson-Durbin recursion: SSE2 kernels. A vector holds four values in the double-precision format,
// the upper word of each in the lower half of its lane.
#include "core/fixed_point.h"
#include "core/simd_w7.h"
#include "g729/lsp/kernels.h"

using namespace zpp;

namespace {

constexpr int kMaxOrder = 30;

V turned(V v) { return _mm_shuffle_epi32(v, _MM_SHUFFLE(0, 1, 2, 3)); }

// Factors of one side of mulDpf, so that pmaddwd gives one product a lane
struct Factors {
  explicit Factors(V dpf)
      : hi(_mm_and_si128(dpf, _mm_set1_epi32(0xffff))), hiForLo(_mm_slli_epi32(dpf, 16)), lo(_mm_srli_epi32(dpf, 16)) {}
  V hi, hiForLo, lo;
};

// mulDpf without its saturation: two upper words of -32768 give -2^31.
V mulWrap(const Factors& a, V b) {
  const V high = _mm_slli_epi32(_mm_madd_epi16(a.hi, b), 1);
  const V cross1 = _mm_srai_epi32(_mm_madd_epi16(a.hiForLo, b), 15), cross2 = _mm_srai_epi32(_mm_madd_epi16(a.lo, b), 15);
  return _mm_add_epi32(high, _mm_slli_epi32(_mm_add_epi32(cross1, cross2), 1));
}

}  // namespace

// Where the magnitudes of all products add up to less than 2^31 - 2^18, no step saturates and no product did: one that wrapped
// still has a magnitude of 2^31 - 2^18 or more. They are added in units of 32, rounded up.
Zpp32s ownLevinsonSum_G729_W7(const Dpf* r, const Dpf* coef, int order) {
  if (order < 5 || order > kMaxOrder) return ownLevinsonSum_G729_PX(r, coef, order);
  V sum = _mm_setzero_si128(), magnitudes = sum;
  const auto add = [&](V past, V coefficients) {
    const V product = mulWrap(Factors(past), coefficients);
    const V sign = _mm_srai_epi32(product, 31);
    const V magnitude = _mm_sub_epi32(_mm_xor_si128(product, sign), sign);
    sum = _mm_add_epi32(sum, product);
    magnitudes = _mm_add_epi32(magnitudes, _mm_add_epi32(_mm_srli_epi32(magnitude, 5), _mm_set1_epi32(1)));
  };
  int j = 1;
  for (; j + 4 <= order; j += 4) add(load(r + j), turned(load(coef + order - j - 3)));
  Zpp32s total = 0, units = 0;
  for (; j < order; ++j) {
    const Zpp32s product = mulDpf(r[j], coef[order - j]);
    total = addWrap32(total, product);
    units += static_cast<Zpp32s>(static_cast<Zpp32u>(absSat32(product)) >> 5) + 1;
  }
  units += sumLanes32(magnitudes);
  if (units >= (1 << 26) - (1 << 13)) return ownLevinsonSum_G729_PX(r, coef, order);
  return addWrap32(total, sumLanes32(sum));
}

// Four coefficients from either end at a time, each from the other end's old values
void ownLevinsonUpdate_G729_W7(Dpf* coef, int order, Dpf reflection) {
  if (reflection.hi == kMin16) return ownLevinsonUpdate_G729_PX(coef, order, reflection);
  const Factors k(pairOf(reflection.hi, reflection.lo));
  const auto updated = [&k](V old, V other) {
    const V own = _mm_add_epi32(_mm_slli_epi32(old, 16), _mm_slli_epi32(_mm_srli_epi32(old, 16), 1));
    const V product = mulWrap(k, turned(other)), sum = _mm_add_epi32(own, product);
    const V overflow = _mm_srai_epi32(_mm_and_si128(_mm_xor_si128(own, sum), _mm_xor_si128(product, sum)), 31);
    const V limit = _mm_xor_si128(_mm_srai_epi32(own, 31), _mm_set1_epi32(kMax32));
    const V clamped = select(overflow, limit, sum);
    return _mm_or_si128(_mm_srli_epi32(clamped, 16), _mm_and_si128(_mm_slli_epi32(clamped, 15), _mm_set1_epi32(0x7fff0000)));
  };
  // Where the two overlap, both have the same result.
  int j = 1, m = order - 1;
  for (; j + 3 <= m; j += 4, m -= 4) {
    const V front = load(coef + j), back = load(coef + m - 3);
    store(coef + j, updated(front, back));
    store(coef + m - 3, updated(back, front));
  }
  // What is left is the update of a lower order, with its coefficients at another place.
  if (j <= m) ownLevinsonUpdate_G729_PX(coef + j - 1, m - j + 2, reflection);
}
