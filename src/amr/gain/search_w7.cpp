// Search of the gain codebooks: SSE2 kernel, eight rows at a time.
#include "amr/gain/search.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

// The weights of a criterion's five terms, in all lanes
struct Weights {
  explicit Weights(const GainCriterion& criterion) : predicted(_mm_set1_epi16(criterion.predicted)) {
    for (int i = 0; i < 5; ++i) {
      lower[i] = _mm_set1_epi16(static_cast<Zpp16s>(2 * criterion.term[i].lo));
      upper[i] = pairOf(criterion.term[i].hi, 1);
    }
  }
  V predicted, lower[5], upper[5];
};

// (a * b) >> 15 of values that are not negative
V product(V a, V b) { return _mm_mulhi_epu16(_mm_add_epi16(a, a), b); }

// Half the errors of eight rows, and whether a sum has come near the standard's saturation
template <bool checked>
class Errors {
 public:
  void add(const Weights& weights, V gp, V gc) {
    add(weights, 0, product(gp, gp));
    add(weights, 1, gp);
    add(weights, 2, product(gc, gc));
    add(weights, 3, gc);
    add(weights, 4, product(gc, gp));
  }
  bool nearSaturation() const { return checked && _mm_movemask_ps(_mm_castsi128_ps(near_)) != 0; }
  V doubled(int which) const { return _mm_slli_epi32(half_[which], 1); }

 private:
  // Term i times eight values, which are not negative
  void add(const Weights& weights, int i, V values) {
    const V lower = _mm_mulhi_epu16(weights.lower[i], values);
    add(half_[0], _mm_madd_epi16(_mm_unpacklo_epi16(values, lower), weights.upper[i]));
    add(half_[1], _mm_madd_epi16(_mm_unpackhi_epi16(values, lower), weights.upper[i]));
  }
  // Sums below 2^30 - 2^18 leave room for the standard's steps within a product; the test is whether bits 30 and 31 of the sum
  // plus that margin differ. A term is at most 2^30 + 2^15, so that a sum of one more cannot wrap.
  void add(V& sum, V term) {
    sum = _mm_add_epi32(sum, term);
    if (!checked) return;
    const V wider = _mm_add_epi32(sum, _mm_srai_epi32(sum, 12));
    near_ = _mm_or_si128(near_, _mm_xor_si128(wider, _mm_add_epi32(wider, wider)));
  }

  V half_[2] = {_mm_setzero_si128(), _mm_setzero_si128()};
  V near_ = _mm_setzero_si128();
};

struct Columns {
  V at[4];
};

Columns transposed(const Zpp16s* rows) {
  const V a = load(rows), b = load(rows + 8), c = load(rows + 16), d = load(rows + 24);
  // Rows 0 2 4 6 and 1 3 5 7, then pairs of them
  const V ab02 = _mm_unpacklo_epi16(a, b), ab13 = _mm_unpackhi_epi16(a, b);
  const V cd02 = _mm_unpacklo_epi16(c, d), cd13 = _mm_unpackhi_epi16(c, d);
  const V ab01 = _mm_unpacklo_epi16(ab02, ab13), ab23 = _mm_unpackhi_epi16(ab02, ab13);
  const V cd01 = _mm_unpacklo_epi16(cd02, cd13), cd23 = _mm_unpackhi_epi16(cd02, cd13);
  return {{_mm_unpacklo_epi64(ab01, cd01), _mm_unpackhi_epi64(ab01, cd01), _mm_unpacklo_epi64(ab23, cd23),
           _mm_unpackhi_epi64(ab23, cd23)}};
}

template <bool checked>
int search(const GainCriterion* criteria, const Zpp16s* table, int size, int subframes, Zpp16s limit) {
  const Weights first(criteria[0]), second(criteria[subframes - 1]);
  const V worst = _mm_set1_epi32(INT32_MAX), most = _mm_set1_epi16(limit);
  V least = worst, best = _mm_setzero_si128(), indices = _mm_setr_epi32(0, 1, 2, 3);
  for (int n = 0; n < size; n += 8) {
    const Zpp16s* rows = table + 4 * n;
    const Columns columns = transposed(rows);
    V excluded = _mm_cmpgt_epi16(columns.at[0], most);
    Errors<checked> errors;
    errors.add(first, columns.at[0], product(columns.at[1], first.predicted));
    if (subframes == 2) {
      excluded = _mm_or_si128(excluded, _mm_cmpgt_epi16(columns.at[2], most));
      errors.add(second, columns.at[2], product(columns.at[3], second.predicted));
    }
    V sums[2] = {errors.doubled(0), errors.doubled(1)};
    if (errors.nearSaturation()) {
      alignas(16) Zpp32s exact[8];
      for (int i = 0; i < 8; ++i) exact[i] = ownGainError_GSMAMR(criteria, rows + 4 * i, subframes);
      sums[0] = load(exact), sums[1] = load(exact + 4);
    }
    const V masks[2] = {_mm_unpacklo_epi16(excluded, excluded), _mm_unpackhi_epi16(excluded, excluded)};
    for (int half = 0; half < 2; ++half, indices = _mm_add_epi32(indices, _mm_set1_epi32(4))) {
      const V sum = select(masks[half], worst, sums[half]);
      const V better = _mm_cmplt_epi32(sum, least);
      least = select(better, sum, least);
      best = select(better, indices, best);
    }
  }
  alignas(16) Zpp32s error[4], index[4];
  store(error, least);
  store(index, best);
  int winner = 0;
  for (int lane = 1; lane < 4; ++lane)
    if (error[lane] < error[winner] || (error[lane] == error[winner] && index[lane] < index[winner])) winner = lane;
  return index[winner];
}

}  // namespace

int ownGainSearch_GSMAMR_16s_W7(const GainCriterion* criteria, const Zpp16s* table, int size, int subframes, Zpp16s limit) {
  return isSafe(criteria, subframes) ? search<false>(criteria, table, size, subframes, limit)
                                     : search<true>(criteria, table, size, subframes, limit);
}
