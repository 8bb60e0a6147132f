// Search of the LSF codebooks: SSE2 kernel, four entries at a time.
#include "amr/lsp/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

// Half the squared errors of four entries. |mulQ15| is 32767 at most, so that two squares stay below 2^31; the sum of four may
// wrap to a negative value, which counts as the largest.
struct FourErrors {
  V residual[2], weight[2];

  V square(V difference, int pair) const {
    const V weighted = mulQ15(weight[pair], difference);
    return _mm_madd_epi16(weighted, weighted);
  }
  static V sum(V first, V second) {
    const V total = _mm_add_epi32(first, second);
    return _mm_and_si128(_mm_or_si128(total, _mm_srai_epi32(total, 31)), _mm_set1_epi32(0x7fffffff));
  }
  V of(const LsfQuad& quad) const {
    return sum(square(_mm_subs_epi16(residual[0], load(quad.pair[0])), 0),
               square(_mm_subs_epi16(residual[1], load(quad.pair[1])), 1));
  }
  V ofOpposites(const LsfQuad& quad) const {
    return sum(square(_mm_adds_epi16(residual[0], load(quad.pair[0])), 0),
               square(_mm_adds_epi16(residual[1], load(quad.pair[1])), 1));
  }
};

// The least error of each lane and its index
struct FourBest {
  V error = _mm_set1_epi32(1 << 30);  // from here on the standard's sum saturates
  V index = _mm_setzero_si128();

  void offer(V errors, V indices) {
    const V better = _mm_cmplt_epi32(errors, error);
    error = select(better, errors, error);
    index = select(better, indices, index);
  }
};

}  // namespace

int ownLsfSearch_GSMAMR_16s_W7(const Zpp16s* residual, const Zpp16s* weight, const LsfQuad* codebook, int size,
                               bool bothSigns) {
  const FourErrors errors = {{pairOf(residual[0], residual[1]), pairOf(residual[2], residual[3])},
                             {pairOf(weight[0], weight[1]), pairOf(weight[2], weight[3])}};
  FourBest best;
  if (bothSigns) {
    V indices = _mm_setr_epi32(0, 2, 4, 6);
    for (int n = 0; n < size / 4; ++n, indices = _mm_add_epi32(indices, _mm_set1_epi32(8))) {
      best.offer(errors.of(codebook[n]), indices);
      best.offer(errors.ofOpposites(codebook[n]), _mm_add_epi32(indices, _mm_set1_epi32(1)));
    }
  } else {
    V indices = _mm_setr_epi32(0, 1, 2, 3);
    for (int n = 0; n < size / 4; ++n, indices = _mm_add_epi32(indices, _mm_set1_epi32(4)))
      best.offer(errors.of(codebook[n]), indices);
  }
  alignas(16) Zpp32s error[4], index[4];
  store(error, best.error);
  store(index, best.index);
  int winner = 0;
  for (int lane = 1; lane < 4; ++lane)
    if (error[lane] < error[winner] || (error[lane] == error[winner] && index[lane] < index[winner])) winner = lane;
  return index[winner];
}
