// Search of the gain codebooks: SSE2 kernel. A first row meets its eight second rows at once.
#include "core/simd_w7.h"
#include "g729/gain/kernels.h"

using namespace zpp;

namespace {

// Eight 32-bit lanes
struct Wide {
  V low, high;
};

// mulQ15 of lanes of 0 or more
V product(V a, V b) { return _mm_mulhi_epu16(_mm_add_epi16(a, a), b); }

// Half of mulDpf16(factor, v) for v of 0 or more: 2^30 in magnitude at the most
Wide halfTerm(Dpf factor, V v) {
  const V rest = product(_mm_set1_epi16(factor.lo), v), weights = pairOf(factor.hi, 1);
  return {_mm_madd_epi16(_mm_unpacklo_epi16(v, rest), weights), _mm_madd_epi16(_mm_unpackhi_epi16(v, rest), weights)};
}

// Adds a term to half a sum. A sum that leaves -2^30..2^30-1, and would saturate when doubled, leaves a sign in `saturated`;
// from within, it cannot wrap.
void accumulate(Wide& sum, const Wide& term, V& saturated) {
  sum = {_mm_add_epi32(sum.low, term.low), _mm_add_epi32(sum.high, term.high)};
  const V low = _mm_xor_si128(sum.low, _mm_add_epi32(sum.low, sum.low));
  const V high = _mm_xor_si128(sum.high, _mm_add_epi32(sum.high, sum.high));
  saturated = _mm_or_si128(saturated, _mm_or_si128(low, high));
}

// The least errors of four lanes and the numbers of their pairs
struct Least {
  V error, number;

  void take(const Least& later) { replace(_mm_cmpgt_epi32(error, later.error), later); }
  // The same in any order: on a tie, the lower number is taken.
  void takeUnordered(const Least& other) {
    const V tie = _mm_and_si128(_mm_cmpeq_epi32(error, other.error), _mm_cmpgt_epi32(number, other.number));
    replace(_mm_or_si128(_mm_cmpgt_epi32(error, other.error), tie), other);
  }
  template <int order>
  Least shuffled() const {
    return {_mm_shuffle_epi32(error, order), _mm_shuffle_epi32(number, order)};
  }

 private:
  void replace(V mask, const Least& other) {
    error = select(mask, other.error, error);
    number = select(mask, other.number, number);
  }
};

}  // namespace

int ownWeightedMSE_G729_W7(const GainSearch& search) {
  // Pairs (pitch, correction) of eight rows, parted
  const V rows0 = load(search.second), rows1 = load(search.second + 4);
  const V pitches =
      _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(rows0, 16), 16), _mm_srai_epi32(_mm_slli_epi32(rows1, 16), 16));
  const V corrections = _mm_packs_epi32(_mm_srai_epi32(rows0, 16), _mm_srai_epi32(rows1, 16));
  const V row = _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7);
  const V outside =
      _mm_or_si128(_mm_cmplt_epi16(row, _mm_set1_epi16(static_cast<Zpp16s>(search.secondFrom))),
                   _mm_cmpgt_epi16(row, _mm_set1_epi16(static_cast<Zpp16s>(search.secondFrom + search.secondRows - 1))));
  const V leftOut = _mm_set1_epi32(kMax32), predicted = _mm_set1_epi16(search.predicted);
  const V limit = _mm_set1_epi16(search.pitchLimit);

  Least low = {leftOut, _mm_set1_epi32(search.secondFrom)}, high = low;
  V saturated = _mm_setzero_si128();
  for (int i = 0; i < search.firstRows; ++i) {
    const V pitch = _mm_adds_epi16(pitches, _mm_set1_epi16(search.first[i][0]));
    // The sum of two corrections takes 16 bits without a sign.
    const V correction = _mm_srli_epi16(_mm_add_epi16(corrections, _mm_set1_epi16(search.first[i][1])), 1);
    const V code = product(predicted, correction);
    Wide error = halfTerm(search.factor[0], product(pitch, pitch));
    accumulate(error, halfTerm(search.factor[1], pitch), saturated);
    accumulate(error, halfTerm(search.factor[2], product(code, code)), saturated);
    accumulate(error, halfTerm(search.factor[3], code), saturated);
    accumulate(error, halfTerm(search.factor[4], product(code, pitch)), saturated);
    const V out = _mm_or_si128(outside, _mm_cmpgt_epi16(pitch, _mm_sub_epi16(limit, _mm_set1_epi16(1))));
    const V number = _mm_add_epi16(row, _mm_set1_epi16(static_cast<Zpp16s>(8 * i)));
    low.take({select(_mm_unpacklo_epi16(out, out), leftOut, error.low), widenLow(number)});
    high.take({select(_mm_unpackhi_epi16(out, out), leftOut, error.high), widenHigh(number)});
  }
  if (_mm_movemask_ps(_mm_castsi128_ps(saturated)) != 0) [[unlikely]]
    return ownWeightedMSE_G729_PX(search);
  low.takeUnordered(high);
  low.takeUnordered(low.shuffled<_MM_SHUFFLE(1, 0, 3, 2)>());
  low.takeUnordered(low.shuffled<_MM_SHUFFLE(2, 3, 0, 1)>());
  return _mm_cvtsi128_si32(low.number);
}
