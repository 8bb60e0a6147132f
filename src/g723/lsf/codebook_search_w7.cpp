// Search of one band's LSF codebook: SSE2 kernel.
#include "core/simd_w7.h"
#include "g723/lsf/kernels.h"

using namespace zpp;

namespace {

// Half metrics (see the portable kernel) of code vectors, with target and weight of one band in both halves of a register
struct Band {
  V target, weight;

  // Two partial sums for each of two code vectors
  V partial(const Zpp16s* twoRows) const {
    const V e = load(twoRows);
    // (w e + 16384) >> 15 from the halves of the product: twice the upper one plus the rounded top bits of the lower one
    const V carry = _mm_avg_epu16(_mm_srli_epi16(_mm_mullo_epi16(weight, e), 14), _mm_setzero_si128());
    const V upper = _mm_mulhi_epi16(weight, e);
    const V weighted = _mm_add_epi16(_mm_add_epi16(upper, upper), carry);
    const V cross = _mm_madd_epi16(weighted, target);
    return _mm_sub_epi32(_mm_add_epi32(cross, cross), _mm_madd_epi16(weighted, e));
  }
  // Four code vectors
  V metrics(const Zpp16s (*rows)[4]) const {
    const __m128 a = _mm_castsi128_ps(partial(rows[0])), b = _mm_castsi128_ps(partial(rows[2]));
    return _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))),
                         _mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1))));
  }
};

V twice(const Zpp16s* four) {
  const V v = load4(four);
  return _mm_unpacklo_epi64(v, v);
}

}  // namespace

int ownLspSvq_W7(const Zpp16s* target, const Zpp16s* weight, const Zpp16s (*codebook)[4]) {
  const Band band = {twice(target), twice(weight)};
  // Lane n follows the entries n, n + 8, n + 16 ...: its best metric and, as entries ascend, the largest number of an entry
  // that was strictly better than all before it.
  V best0 = _mm_set1_epi32(-1), best1 = best0, nearest = _mm_setzero_si128();
  V entries = _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7);
  for (int entry = 0; entry < 256; entry += 8) {
    const V metric0 = band.metrics(codebook + entry), metric1 = band.metrics(codebook + entry + 4);
    const V better0 = _mm_cmpgt_epi32(metric0, best0), better1 = _mm_cmpgt_epi32(metric1, best1);
    best0 = select(better0, metric0, best0);
    best1 = select(better1, metric1, best1);
    nearest = _mm_max_epi16(nearest, _mm_and_si128(_mm_packs_epi32(better0, better1), entries));
    entries = _mm_add_epi16(entries, _mm_set1_epi16(8));
  }
  Zpp32s metric[8];
  Zpp16s number[8];
  store(metric, best0);
  store(metric + 4, best1);
  store(number, nearest);
  int winner = 0;
  for (int n = 1; n < 8; ++n)
    if (metric[n] > metric[winner] || (metric[n] == metric[winner] && number[n] < number[winner])) winner = n;
  return number[winner];
}
