// Levinson-Durbin recursion: SSE2 kernel.
#include "core/simd_w7.h"
#include "g728/kernels.h"
#include "g728/levinson_durbin.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr int kRoom = 56;  // the largest order in whole vectors

// A predictor forwards from `forward` on and backwards up to backward + kRoom, zeros behind both
struct Mirrored {
  alignas(16) Zpp16s forward[kRoom + 8], backward[kRoom + 8];

  void set(int n, Zpp16s c) { forward[n] = backward[kRoom - 1 - n] = c; }
};

// (k * x + 2^14) >> 15 for |k| of 32767 at most
inline V mulRound(V k, V x) {
  const V carry = _mm_avg_epu16(_mm_srli_epi16(_mm_mullo_epi16(k, x), 14), _mm_setzero_si128());
  return _mm_add_epi16(_mm_slli_epi16(_mm_mulhi_epi16(k, x), 1), carry);
}

}  // namespace

int ownLevinsonDurbin_G728_16s_W7(const Zpp16s* r, int startOrder, int order, Zpp16s* a, Zpp16s* residual, int* shift) {
  alignas(16) Zpp16s lags[kRoom];  // from lag 1 on
  Mirrored buffer[2];
  for (int n = 0; n < kRoom; n += 8) store(lags + n, _mm_setzero_si128());
  for (auto& m : buffer)
    for (int n = 0; n < kRoom + 8; n += 8)
      store(m.forward + n, _mm_setzero_si128()), store(m.backward + n, _mm_setzero_si128());
  bool isFast = true;
  for (int n = 0; n < order; ++n) lags[n] = r[1 + n], isFast &= lags[n] != kMin16;
  // Sums of two products fit 32 bits then.
  if (!isFast) return ownLevinsonDurbin_G728_16s_PX(r, startOrder, order, a, residual, shift);
  Mirrored *now = buffer, *next = buffer + 1;
  for (int n = 0; n < startOrder; ++n) now->set(n, a[n]);

  int i = startOrder;
  for (; i < order; ++i) {
    const Zpp16s* reverse = now->backward + kRoom - i;
    V upper = _mm_setzero_si128(), lower = upper;  // halves of the sums, so that these need no more than 32 bits
    for (int j = 0; j < i; j += 8) {
      const V sum = _mm_madd_epi16(_mm_load_si128(reinterpret_cast<const V*>(lags + j)), load(reverse + j));
      upper = _mm_add_epi32(upper, _mm_srai_epi32(sum, 16));
      lower = _mm_add_epi32(lower, _mm_and_si128(sum, _mm_set1_epi32(0xffff)));
    }
    const V halves = _mm_add_epi32(_mm_unpacklo_epi32(upper, lower), _mm_unpackhi_epi32(upper, lower));
    const V total = _mm_add_epi32(halves, _mm_unpackhi_epi64(halves, halves));
    const Zpp64s sum = Zpp64s{_mm_cvtsi128_si32(total)} * 65536 + _mm_cvtsi128_si32(_mm_shuffle_epi32(total, 1));
    const Zpp16s x = rounded(lags[i] * Zpp64s{65536} + sum * (2 << *shift));

    Zpp16s error = *residual;
    Reflection reflection;
    if (!reflect(x, &error, &reflection)) break;
    // A result at an end of the range may be one that does not fit: then the stage is done again pair by pair.
    const V k = _mm_set1_epi16(reflection.rounded());
    V largest = _mm_setzero_si128(), smallest = largest;
    Zpp16s* nextReverse = next->backward + kRoom - i;
    for (int j = 0; j < i; j += 8) {
      const V f = _mm_load_si128(reinterpret_cast<const V*>(now->forward + j)), b = load(reverse + j);
      const V newF = _mm_adds_epi16(f, mulRound(k, b));
      largest = _mm_max_epi16(largest, newF);
      smallest = _mm_min_epi16(smallest, newF);
      _mm_store_si128(reinterpret_cast<V*>(next->forward + j), newF);
      store(nextReverse + j, _mm_adds_epi16(b, mulRound(k, f)));
    }
    const V extreme =
        _mm_or_si128(_mm_cmpeq_epi16(largest, _mm_set1_epi16(kMax16)), _mm_cmpeq_epi16(smallest, _mm_set1_epi16(kMin16)));
    int newShift = *shift;
    if (_mm_movemask_epi8(extreme) != 0) {
      Zpp16s updated[kMaxLevinsonOrder];
      std::copy_n(now->forward, i, updated);
      if (!updatePairs(updated, i, reflection.rounded(), &newShift)) break;
      for (int n = 0; n < i; ++n) next->set(n, updated[n]);
    }
    next->set(i, reflection.coefficient(newShift));
    std::swap(now, next);
    *residual = error;
    *shift = newShift;
  }
  std::copy_n(now->forward, i, a);
  return i;
}
