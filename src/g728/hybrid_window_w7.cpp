// Hybrid window: SSE2 kernels.
#include "g728/hybrid_window.h"

#include "core/simd_w7.h"
#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

// The upper half of the eight products times 2^shift, rounded, for a shift of 0 and of -1 - more
V roundedHigh(V a, V b) { return _mm_add_epi16(_mm_mulhi_epi16(a, b), _mm_srli_epi16(_mm_mullo_epi16(a, b), 15)); }
V roundedHigh(V a, V b, V more) {
  return _mm_srai_epi16(_mm_add_epi16(_mm_sra_epi16(_mm_mulhi_epi16(a, b), more), _mm_set1_epi16(1)), 1);
}
// The same for a shift of 1, saturated: only -32768 times itself wraps, to the one value that no other product has.
V roundedHighDoubled(V a, V b) {
  const V carry = _mm_avg_epu16(_mm_srli_epi16(_mm_mullo_epi16(a, b), 14), _mm_setzero_si128());
  const V sum = _mm_add_epi16(_mm_slli_epi16(_mm_mulhi_epi16(a, b), 1), carry);
  return _mm_xor_si128(sum, _mm_cmpeq_epi16(sum, _mm_set1_epi16(kMin16)));
}

V windowedEight(V samples, V window, int shift) {
  if (shift > 0) return roundedHighDoubled(samples, window);
  return shift == 0 ? roundedHigh(samples, window) : roundedHigh(samples, window, _mm_cvtsi32_si128(-1 - shift));
}

// x << count, saturated
V shlSat(V x, V count) {
  const V shifted = _mm_sll_epi32(x, count);
  const V intact = _mm_cmpeq_epi32(_mm_sra_epi32(shifted, count), x);
  return select(intact, shifted, _mm_xor_si128(_mm_srai_epi32(x, 31), _mm_set1_epi32(kMax32)));
}
// Rounded upper halves, in the lanes of 32 bits; packing saturates the one value that needs it.
V roundedUpper(V x) { return _mm_srai_epi32(_mm_add_epi32(_mm_srai_epi32(x, 15), _mm_set1_epi32(1)), 1); }

}  // namespace

void ownWindow_G728_16s_W7(const Zpp16s* src, const Zpp16s* window, Zpp16s* dst, int len, int shift) {
  const int whole = len & ~7;
  const V left = _mm_cvtsi32_si128(shift < 0 ? 0 : shift), none = _mm_setzero_si128();
  for (int n = 0; n < whole; n += 8) {
    const V samples = _mm_sll_epi16(load(src + n), left), factors = load(window + n);
    store(dst + n, shift < 0 ? roundedHigh(samples, factors, none) : roundedHigh(samples, factors));
  }
  ownWindow_G728_16s_PX(src + whole, window + whole, dst + whole, len - whole, shift);
}

void ownWindowBlock_G728_16s_W7(const Zpp16s* src, const Zpp16s* window, const Zpp16s* shift, Zpp16s* dst, int vectors) {
  // Three samples more than a vector are read and written; the next vector's take their place.
  int v = 0;
  for (; v < vectors - 1; ++v) {
    const int n = kVector * v;
    store(dst + n, windowedEight(load(src + n), load(window + n), shift[v]));
  }
  ownWindowBlock_G728_16s_PX(src + kVector * v, window + kVector * v, shift + v, dst + kVector * v, vectors - v);
}

Zpp32s ownFinishLags_G728_32s16s_W7(const Zpp32s* leaving, const Zpp32s* newest, Zpp16s* sums, Zpp16s* dst, int order,
                                    const LagShifts& s) {
  if (order < 4 || s.result < 0) return ownFinishLags_G728_32s16s_PX(leaving, newest, sums, dst, order, s);
  const V decay = _mm_cvtsi32_si128(s.decay), oldShift = _mm_cvtsi32_si128(s.oldSums),
          leavingShift = _mm_cvtsi32_si128(s.leaving), sumsShift = _mm_cvtsi32_si128(s.sums),
          newShift = _mm_cvtsi32_si128(s.newSums), newestShift = _mm_cvtsi32_si128(s.newest),
          resultShift = _mm_cvtsi32_si128(s.result), zero = _mm_setzero_si128();
  const auto four = [&](int lag, Zpp16s* newSums, Zpp16s* result) {
    const V sum = _mm_unpacklo_epi16(zero, load4(sums + lag));
    const V decayed = _mm_sub_epi32(sum, _mm_sra_epi32(sum, decay));  // exact: the lower halves are zero
    const V advanced = roundedUpper(
        shlSat(_mm_add_epi32(_mm_sra_epi32(decayed, oldShift), _mm_sra_epi32(load(leaving + lag), leavingShift)), sumsShift));
    const V packed = _mm_packs_epi32(advanced, zero);
    store4(newSums, packed);
    const V whole = shlSat(_mm_add_epi32(_mm_sra_epi32(_mm_unpacklo_epi16(zero, packed), newShift),
                                         _mm_sra_epi32(load(newest + lag), newestShift)),
                           resultShift);
    store4(result, _mm_packs_epi32(roundedUpper(whole), zero));
    return whole;
  };
  // The last four overlap those before them where the order is no multiple of 4; they come first, from sums not yet advanced.
  Zpp16s lastSums[4], lastResult[4];
  const V last = four(order - 4, lastSums, lastResult);
  for (int lag = 0; lag <= order - 4; lag += 4) four(lag, sums + lag, dst + lag);
  store4(sums + order - 4, load4(lastSums));
  store4(dst + order - 4, load4(lastResult));
  return _mm_cvtsi128_si32(_mm_shuffle_epi32(last, 3));
}
