// Sums, products and extremes: SSE2 kernels.
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

// Folds eight lanes into one with a commutative, associative operation.
template <class Operation>
Zpp16s fold(V v, Operation operation) {
  v = operation(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2)));
  v = operation(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(2, 3, 0, 1)));
  v = operation(v, _mm_shufflelo_epi16(v, _MM_SHUFFLE(2, 3, 0, 1)));
  return low16(_mm_cvtsi128_si32(v));
}

// Extreme of len elements, 8 or more: the last block overlaps the one before it, which no extreme minds.
template <class Map, class Operation>
Zpp16s extreme(const Zpp16s* src, int len, Map map, Operation operation) {
  V best = map(load(src + len - 8));
  for (int n = 0; n + 8 < len; n += 8) best = operation(best, map(load(src + n)));
  return fold(best, operation);
}

constexpr auto identity = [](V v) { return v; };
constexpr auto most = [](V a, V b) { return _mm_max_epi16(a, b); };
constexpr auto least = [](V a, V b) { return _mm_min_epi16(a, b); };

}  // namespace

Zpp64s ownSum_16s_W7(const Zpp16s* src, int len) {
  const V ones = _mm_set1_epi16(1);
  Zpp64s sum = 0;
  int n = 0;
  while (n + 8 <= len) {
    // A lane grows by 2^16 a step at the most: 2^14 steps fit 32 bits.
    const int end = len - n > 8 << 14 ? n + (8 << 14) : len;
    V acc = _mm_setzero_si128();
    for (; n + 8 <= end; n += 8) acc = _mm_add_epi32(acc, _mm_madd_epi16(load(src + n), ones));
    sum += sumLanes64(addWide64(_mm_setzero_si128(), acc));
  }
  return sum + ownSum_16s_PX(src + n, len - n);
}

Zpp64s ownDotProd_16s_W7(const Zpp16s* src1, const Zpp16s* src2, int len) {
  // A pair sum of pmaddwd lies in -2^31 + 2^16 .. 2^31 (stored as -2^31): with 2^31 - 2^16 added it is an unsigned number.
  constexpr Zpp32s kBias = kMax32 - 0xffff;
  V acc = _mm_setzero_si128();
  int n = 0;
  for (; n + 8 <= len; n += 8)
    acc = addUnsigned64(acc, _mm_add_epi32(_mm_madd_epi16(load(src1 + n), load(src2 + n)), _mm_set1_epi32(kBias)));
  const Zpp64s sum = sumLanes64(acc) - Zpp64s{kBias} * (n / 2);
  return n == len ? sum : sum + ownDotProd_16s_PX(src1 + n, src2 + n, len - n);
}

Zpp16s ownMax_16s_W7(const Zpp16s* src, int len) {
  return len < 8 ? ownMax_16s_PX(src, len) : extreme(src, len, identity, most);
}

Zpp16s ownMin_16s_W7(const Zpp16s* src, int len) {
  return len < 8 ? ownMin_16s_PX(src, len) : extreme(src, len, identity, least);
}

Zpp16s ownMaxAbs_16s_W7(const Zpp16s* src, int len) {
  const auto magnitude = [](V v) { return _mm_max_epi16(v, _mm_subs_epi16(_mm_setzero_si128(), v)); };
  return len < 8 ? ownMaxAbs_16s_PX(src, len) : extreme(src, len, magnitude, most);
}

int ownMinIndx_16s_W7(const Zpp16s* src, int len) {
  if (len < 8) return ownMinIndx_16s_PX(src, len);
  const V smallest = _mm_set1_epi16(extreme(src, len, identity, least));
  for (int n = 0;; n += 8) {
    const int first = n + 8 <= len ? n : len - 8;
    const auto equal = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi16(load(src + first), smallest)));
    if (equal != 0) return first + std::countr_zero(equal) / 2;
  }
}
