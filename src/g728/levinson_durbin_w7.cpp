// Levinson-Durbin recursion: SSE2 kernel.
#include "core/simd_w7.h"
#include "g728/kernels.h"
#include "g728/levinson_durbin.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr int kRoom = 56;  // the largest order in whole vectors

V aligned(const Zpp16s* p) { return _mm_load_si128(reinterpret_cast<const V*>(p)); }
void storeAligned(Zpp16s* p, V v) { _mm_store_si128(reinterpret_cast<V*>(p), v); }

// (k * x + 2^14) >> 15 for |k| of 32767 at most
V mulRound(V k, V x) {
  const V carry = _mm_avg_epu16(_mm_srli_epi16(_mm_mullo_epi16(k, x), 14), _mm_setzero_si128());
  return _mm_add_epi16(_mm_slli_epi16(_mm_mulhi_epi16(k, x), 1), carry);
}

// A sum of products, none of them of -32768 twice, in halves that need no more than 32 bits
class WideSum {
 public:
  void add(V a, V b) {
    const V sum = _mm_madd_epi16(a, b);
    upper_ = _mm_add_epi32(upper_, _mm_srai_epi32(sum, 16));
    lower_ = _mm_add_epi32(lower_, _mm_and_si128(sum, _mm_set1_epi32(0xffff)));
  }
  Zpp64s total() const {
    const V halves = _mm_add_epi32(_mm_unpacklo_epi32(upper_, lower_), _mm_unpackhi_epi32(upper_, lower_));
    const V both = _mm_add_epi32(halves, _mm_unpackhi_epi64(halves, halves));
    return Zpp64s{_mm_cvtsi128_si32(both)} * 65536 + _mm_cvtsi128_si32(_mm_shuffle_epi32(both, 1));
  }

 private:
  V upper_ = _mm_setzero_si128(), lower_ = _mm_setzero_si128();
};

// A predictor backwards: the last coefficient first
void mirror(const Zpp16s* forward, int order, Zpp16s* backward) {
  for (int n = 0; n < order; ++n) backward[n] = forward[order - 1 - n];
}

alignas(16) constexpr Zpp16s lastOfEight[16] = {0, 0, 0, 0, 0, 0, 0, 0, -1};

}  // namespace

// The predictor is held forwards and backwards, in whole vectors with zeros behind it: each then is the other's partner in the
// update, and the one backwards meets the lags in order.
int ownLevinsonDurbin_G728_16s_W7(const Zpp16s* r, int startOrder, int order, Zpp16s* a, Zpp16s* residual, int* shift) {
  alignas(16) Zpp16s lags[kRoom], forward[2][kRoom], backward[kRoom];  // lags from lag 1 on
  const int room = (order + 7) & ~7;
  for (int n = 0; n < room; n += 8)
    for (Zpp16s* p : {lags, forward[0], forward[1], backward}) storeAligned(p + n, _mm_setzero_si128());
  bool isFast = true;
  for (int n = 0; n < order; ++n) lags[n] = r[1 + n], isFast &= lags[n] != kMin16;
  if (!isFast) return ownLevinsonDurbin_G728_16s_PX(r, startOrder, order, a, residual, shift);
  Zpp16s *now = forward[0], *next = forward[1];
  std::copy_n(a, startOrder, now);
  mirror(now, startOrder, backward);
  const auto correlation = [&](int count) {
    WideSum sum;
    for (int n = 0; n < count; n += 8) sum.add(aligned(lags + n), aligned(backward + n));
    return sum.total();
  };

  int i = startOrder;
  for (Zpp64s sum = correlation(i); i < order; ++i) {
    // Beyond 32 bits it saturates, and then is no smaller than any error.
    const Zpp64s x = lags[i] * Zpp64s{65536} + sum * (2 << *shift) + 0x8000;
    Zpp16s error = *residual;
    Reflection reflection;
    if (x != static_cast<Zpp32s>(x) || !reflect(static_cast<Zpp16s>(x >> 16), &error, &reflection)) break;

    // The update, and the correlation of the next stage with it, for which the coefficients backwards move on by one.
    const V k = _mm_set1_epi16(reflection.rounded());
    const Zpp16s added = reflection.coefficient(*shift);
    V largest = _mm_setzero_si128(), smallest = largest;
    V carry = _mm_cvtsi32_si128(static_cast<Zpp16u>(added));
    WideSum nextSum;
    for (int n = 0; n <= i && n < room; n += 8) {
      const V f = aligned(now + n), b = aligned(backward + n);
      const V newF = _mm_adds_epi16(f, mulRound(k, b)), newB = _mm_adds_epi16(b, mulRound(k, f));
      const V moved = _mm_or_si128(_mm_slli_si128(newB, 2), carry);
      carry = _mm_srli_si128(newB, 14);
      largest = _mm_max_epi16(largest, newF);
      smallest = _mm_min_epi16(smallest, newF);
      nextSum.add(aligned(lags + n), moved);
      storeAligned(next + n, newF);
      storeAligned(backward + n, moved);
    }
    Zpp16s* last = next + (i & ~7);
    storeAligned(last, _mm_or_si128(aligned(last), _mm_and_si128(load(lastOfEight + 8 - (i & 7)), _mm_set1_epi16(added))));
    sum = nextSum.total();

    // A result at an end of the range may be one that does not fit: then the stage is done again pair by pair.
    const V extreme =
        _mm_or_si128(_mm_cmpeq_epi16(largest, _mm_set1_epi16(kMax16)), _mm_cmpeq_epi16(smallest, _mm_set1_epi16(kMin16)));
    if (_mm_movemask_epi8(extreme) != 0) {
      int newShift = *shift;
      std::copy_n(now, i, next);
      if (!updatePairs(next, i, reflection.rounded(), &newShift)) break;
      next[i] = reflection.coefficient(newShift);
      mirror(next, i + 1, backward);
      sum = correlation(i + 1);
      *shift = newShift;
    }
    std::swap(now, next);
    *residual = error;
  }
  std::copy_n(now, i, a);
  return i;
}

bool ownWeightLPC_G728_16s_W7(const Zpp16s* src, const Zpp16s* weight, Zpp16s* dst, int len, int shift) {
  const int whole = len & ~7;
  const V left = _mm_cvtsi32_si128(shift);
  V intact = _mm_set1_epi32(-1);
  const auto products = [&](int n, V* low, V* high) {
    const V a = load(src + n), b = load(weight + n);
    const V exactLow = mulLow(a, b), exactHigh = mulHigh(a, b);
    *low = _mm_sll_epi32(exactLow, left);
    *high = _mm_sll_epi32(exactHigh, left);
    intact = _mm_and_si128(intact, _mm_cmpeq_epi32(_mm_sra_epi32(*low, left), exactLow));
    intact = _mm_and_si128(intact, _mm_cmpeq_epi32(_mm_sra_epi32(*high, left), exactHigh));
  };
  V low, high;
  for (int n = 0; n < whole; n += 8) products(n, &low, &high);
  if (_mm_movemask_epi8(intact) != 0xffff) return false;
  // The rest first: it may still refuse.
  if (!ownWeightLPC_G728_16s_PX(src + whole, weight + whole, dst + whole, len - whole, shift)) return false;
  const auto roundedUpper = [](V x) { return _mm_srai_epi32(_mm_add_epi32(_mm_srai_epi32(x, 15), _mm_set1_epi32(1)), 1); };
  for (int n = 0; n < whole; n += 8) {
    products(n, &low, &high);
    store(dst + n, _mm_packs_epi32(roundedUpper(low), roundedUpper(high)));
  }
  return true;
}
