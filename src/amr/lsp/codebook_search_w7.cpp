// Search of the LSF codebooks: SSE2 kernel, four entries at a time.
#include <bit>

#include "amr/lsp/kernels.h"
#include "core/fixed_point.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

// Half the squared errors of four entries
struct FourErrors {
  V residual[2], weight[2];

  V square(V difference, int pair) const {
    const V weighted = _mm_mulhi_epi16(_mm_add_epi16(difference, difference), weight[pair]);
    return _mm_madd_epi16(weighted, weighted);
  }
  V of(const LsfQuad& quad) const {
    return _mm_add_epi32(square(_mm_sub_epi16(residual[0], load(quad.pair[0])), 0),
                         square(_mm_sub_epi16(residual[1], load(quad.pair[1])), 1));
  }
  V ofOpposites(const LsfQuad& quad) const {
    return _mm_add_epi32(square(_mm_add_epi16(residual[0], load(quad.pair[0])), 0),
                         square(_mm_add_epi16(residual[1], load(quad.pair[1])), 1));
  }
};

// The least of `count` vectors of errors, at most kMostVectors and an even number, and the first index that has it. As normal
// floating-point numbers, integers compare as they are.
constexpr int kMostVectors = 64;
struct Least {
  Zpp32s error;
  int index;
};
template <int step, class Errors>
Least leastOf(int count, Errors errors) {
  alignas(16) V kept[kMostVectors];
  const V normal = _mm_set1_epi32(1 << 23);
  __m128 lanes = _mm_castsi128_ps(_mm_set1_epi32(0x7f7fffff));
  for (int n = 0; n < count; n += step) {
    V found[step];
    errors(n, found);
    unrolled<step>([&](int i) {
      kept[n + i] = _mm_add_epi32(found[i], normal);
      lanes = _mm_min_ps(lanes, _mm_castsi128_ps(kept[n + i]));
    });
  }
  lanes = _mm_min_ps(lanes, _mm_shuffle_ps(lanes, lanes, _MM_SHUFFLE(1, 0, 3, 2)));
  lanes = _mm_min_ps(lanes, _mm_shuffle_ps(lanes, lanes, _MM_SHUFFLE(2, 3, 0, 1)));
  const V least = _mm_castps_si128(lanes);
  for (int n = 0;; n += 2) {
    const V equal = _mm_packs_epi32(_mm_cmpeq_epi32(kept[n], least), _mm_cmpeq_epi32(kept[n + 1], least));
    if (const int mask = _mm_movemask_epi8(equal); mask != 0)
      return {_mm_cvtsi128_si32(least), 4 * n + std::countr_zero(static_cast<unsigned>(mask)) / 2};
  }
}

}  // namespace

int ownLsfSearch_GSMAMR_16s_W7(const Zpp16s* residual, const Zpp16s* weight, const LsfQuad* codebook, int size,
                               bool bothSigns) {
  if (!isNearLsfEntries(residual)) return ownLsfSearch_GSMAMR_16s_PX(residual, weight, codebook, size, bothSigns);
  const FourErrors errors = {{pairOf(residual[0], residual[1]), pairOf(residual[2], residual[3])},
                             {pairOf(weight[0], weight[1]), pairOf(weight[2], weight[3])}};
  const int vectors = size / 4 * (bothSigns ? 2 : 1);
  Least best{kMax32, 0};
  for (int from = 0; from < vectors; from += kMostVectors) {
    const int count = vectors - from < kMostVectors ? vectors - from : kMostVectors;
    const Least least = bothSigns ? leastOf<2>(count,
                                               [&](int n, V* found) {
                                                 const LsfQuad& quad = codebook[(from + n) / 2];
                                                 const V entries = errors.of(quad), opposites = errors.ofOpposites(quad);
                                                 found[0] = _mm_unpacklo_epi32(entries, opposites);
                                                 found[1] = _mm_unpackhi_epi32(entries, opposites);
                                               })
                                  : leastOf<1>(count, [&](int n, V* found) { *found = errors.of(codebook[from + n]); });
    if (least.error < best.error) best = {least.error, 4 * from + least.index};
  }
  return best.index;
}
