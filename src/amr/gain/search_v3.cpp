// Search of the gain codebooks: AVX2 kernel, sixteen rows at a time.
#include "amr/gain/search.h"
#include "amr/least_v3.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

// The weights of a criterion's five terms, in all lanes
struct Weights {
  explicit Weights(const GainCriterion& criterion) : predicted(_mm256_set1_epi16(criterion.predicted)) {
    for (int i = 0; i < 5; ++i) {
      lower[i] = _mm256_set1_epi16(static_cast<Zpp16s>(2 * criterion.term[i].lo));
      upper[i] = _mm256_set1_epi32(1 << 16 | (criterion.term[i].hi & 0xffff));
    }
  }
  W predicted, lower[5], upper[5];
};

// (a * b) >> 15 of values that are not negative
W product(W a, W b) { return _mm256_mulhi_epu16(_mm256_add_epi16(a, a), b); }

// Half the errors of sixteen rows, and whether a sum has come near the standard's saturation
template <bool checked>
class Errors {
 public:
  void add(const Weights& weights, W gp, W gc) {
    add(weights, 0, product(gp, gp));
    add(weights, 1, gp);
    add(weights, 2, product(gc, gc));
    add(weights, 3, gc);
    add(weights, 4, product(gc, gp));
  }
  bool nearSaturation() const { return checked && _mm256_movemask_ps(_mm256_castsi256_ps(near_)) != 0; }
  W doubled(int which) const { return _mm256_slli_epi32(half_[which], 1); }

 private:
  // Term i times sixteen values, which are not negative
  void add(const Weights& weights, int i, W values) {
    const W lower = _mm256_mulhi_epu16(weights.lower[i], values);
    add(half_[0], _mm256_madd_epi16(_mm256_unpacklo_epi16(values, lower), weights.upper[i]));
    add(half_[1], _mm256_madd_epi16(_mm256_unpackhi_epi16(values, lower), weights.upper[i]));
  }
  // Sums below 2^30 - 2^18 leave room for the standard's steps within a product; the test is whether bits 30 and 31 of the sum
  // plus that margin differ. A term is at most 2^30 + 2^15, so that a sum of one more cannot wrap.
  void add(W& sum, W term) {
    sum = _mm256_add_epi32(sum, term);
    if (!checked) return;
    const W wider = _mm256_add_epi32(sum, _mm256_srai_epi32(sum, 12));
    near_ = _mm256_or_si256(near_, _mm256_xor_si256(wider, _mm256_add_epi32(wider, wider)));
  }

  W half_[2] = {_mm256_setzero_si256(), _mm256_setzero_si256()};
  W near_ = _mm256_setzero_si256();
};

struct Columns {
  W at[4];
};

// The columns of sixteen rows, eight in each half
Columns transposed(const Zpp16s* rows) {
  const auto two = [rows](int n) { return joined(load(rows + 8 * n), load(rows + 32 + 8 * n)); };
  const W a = two(0), b = two(1), c = two(2), d = two(3);
  // Rows 0 2 4 6 and 1 3 5 7, then pairs of them
  const W ab02 = _mm256_unpacklo_epi16(a, b), ab13 = _mm256_unpackhi_epi16(a, b);
  const W cd02 = _mm256_unpacklo_epi16(c, d), cd13 = _mm256_unpackhi_epi16(c, d);
  const W ab01 = _mm256_unpacklo_epi16(ab02, ab13), ab23 = _mm256_unpackhi_epi16(ab02, ab13);
  const W cd01 = _mm256_unpacklo_epi16(cd02, cd13), cd23 = _mm256_unpackhi_epi16(cd02, cd13);
  return {{_mm256_unpacklo_epi64(ab01, cd01), _mm256_unpackhi_epi64(ab01, cd01), _mm256_unpacklo_epi64(ab23, cd23),
           _mm256_unpackhi_epi64(ab23, cd23)}};
}

template <bool checked>
int search(const GainCriterion* criteria, const Zpp16s* table, int size, int subframes, Zpp16s limit) {
  constexpr int kRows = 16;
  const Weights first(criteria[0]), second(criteria[subframes - 1]);
  const W worst = _mm256_set1_epi32(INT32_MAX), most = _mm256_set1_epi16(limit), four = _mm256_set1_epi32(4);
  LeastError least;
  W numbers = _mm256_setr_epi32(0, 1, 2, 3, 8, 9, 10, 11);
  for (int n = 0; n < size; n += kRows) {
    const Zpp16s* rows = table + 4 * n;
    const Columns columns = transposed(rows);
    W excluded = _mm256_cmpgt_epi16(columns.at[0], most);
    Errors<checked> errors;
    errors.add(first, columns.at[0], product(columns.at[1], first.predicted));
    if (subframes == 2) {
      excluded = _mm256_or_si256(excluded, _mm256_cmpgt_epi16(columns.at[2], most));
      errors.add(second, columns.at[2], product(columns.at[3], second.predicted));
    }
    W sums[2] = {errors.doubled(0), errors.doubled(1)};
    if (errors.nearSaturation()) {
      alignas(16) Zpp32s exact[kRows];
      for (int i = 0; i < kRows; ++i) exact[i] = ownGainError_GSMAMR(criteria, rows + 4 * i, subframes);
      sums[0] = joined(load(exact), load(exact + 8)), sums[1] = joined(load(exact + 4), load(exact + 12));
    }
    const W masks[2] = {_mm256_unpacklo_epi16(excluded, excluded), _mm256_unpackhi_epi16(excluded, excluded)};
    least.take(_mm256_blendv_epi8(sums[0], worst, masks[0]), numbers);
    least.take(_mm256_blendv_epi8(sums[1], worst, masks[1]), _mm256_add_epi32(numbers, four));
    numbers = _mm256_add_epi32(numbers, _mm256_set1_epi32(kRows));
  }
  return least.found();
}

}  // namespace

int ownGainSearch_GSMAMR_16s_V3(const GainCriterion* criteria, const Zpp16s* table, int size, int subframes, Zpp16s limit) {
  return isSafe(criteria, subframes) ? search<false>(criteria, table, size, subframes, limit)
                                     : search<true>(criteria, table, size, subframes, limit);
}
