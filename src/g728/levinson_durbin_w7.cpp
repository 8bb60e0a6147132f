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

alignas(16) constexpr Zpp16s lastOfEight[16] = {0, 0, 0, 0, 0, 0, 0, 0, -1};

// A predictor in whole vectors, zeros before and behind it
struct Padded {
  alignas(16) Zpp16s words[8 + kRoom];
  Zpp16s* a() { return words + 8; }
  const Zpp16s* a() const { return words + 8; }
};

}  // namespace

int ownLevinsonDurbin_G728_16s_W7(const Zpp16s* r, int startOrder, int order, Zpp16s* a, Zpp16s* residual, int* shift) {
  alignas(16) Zpp16s lags[kRoom + 8];  // r[order] first, r[1] last
  Padded buffers[2];
  const int room = (order + 7) & ~7;
  for (auto& b : buffers)
    for (int n = 0; n < 8 + room; n += 8) storeAligned(b.words + n, _mm_setzero_si128());
  for (int n = order & ~7; n <= room; n += 8) storeAligned(lags + n, _mm_setzero_si128());
  bool isFast = true;
  for (int n = 0; n < order; ++n) lags[n] = r[order - n], isFast &= lags[n] != kMin16;
  if (!isFast) return ownLevinsonDurbin_G728_16s_PX(r, startOrder, order, a, residual, shift);
  Padded *now = buffers, *next = buffers + 1;
  std::copy_n(a, startOrder, now->a());
  const auto correlation = [&](const Padded& p, int count) {
    WideSum sum;
    for (int n = 0; n < count; n += 8) sum.add(load(lags + order - count + n), aligned(p.a() + n));
    return sum.total();
  };

  int i = startOrder, bits = *shift;
  Zpp16s error = *residual;
  for (Zpp64s sum = correlation(*now, i); i < order; ++i) {
    // Beyond 32 bits it saturates, and then is no smaller than any error.
    const Zpp64s x = r[i + 1] * Zpp64s{65536} + sum * (2 << bits) + 0x8000;
    Zpp16s newError = error;
    Reflection reflection;
    if (x != static_cast<Zpp32s>(x) || !reflect(static_cast<Zpp32s>(x) >> 16, &newError, &reflection)) break;

    // The update, in which every coefficient meets its mirror image, and the correlation of the next stage with it
    const V k = _mm_set1_epi16(reflection.rounded());
    Zpp16s added = reflection.coefficient(bits);
    V largest = _mm_setzero_si128(), smallest = largest;
    WideSum nextSum;
    const Zpp16s *old = now->a(), *nextLags = lags + order - 1 - i;
    for (int n = 0; n < i; n += 8) {
      const V updated = _mm_adds_epi16(aligned(old + n), mulRound(k, reversed(load(old + i - 8 - n))));
      largest = _mm_max_epi16(largest, updated);
      smallest = _mm_min_epi16(smallest, updated);
      nextSum.add(load(nextLags + n), updated);
      storeAligned(next->a() + n, updated);
    }
    sum = nextSum.total();

    // A result at an end of the range may be one that does not fit: then the stage is done again pair by pair.
    const V extreme =
        _mm_or_si128(_mm_cmpeq_epi16(largest, _mm_set1_epi16(kMax16)), _mm_cmpeq_epi16(smallest, _mm_set1_epi16(kMin16)));
    if (_mm_movemask_epi8(extreme) != 0) {
      int newBits = bits;
      std::copy_n(old, i, next->a());
      if (!updatePairs(next->a(), i, reflection.rounded(), &newBits)) break;
      bits = newBits;
      added = reflection.coefficient(bits);
      sum = correlation(*next, i + 1);
    }
    sum += added * r[1];
    // The new coefficient enters with its vector: the next stage loads it whole.
    Zpp16s* last = next->a() + (i & ~7);
    storeAligned(last, _mm_or_si128(aligned(last), _mm_and_si128(load(lastOfEight + 8 - (i & 7)), _mm_set1_epi16(added))));
    std::swap(now, next);
    error = newError;
  }
  *residual = error;
  *shift = bits;
  std::copy_n(now->a(), i, a);
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
