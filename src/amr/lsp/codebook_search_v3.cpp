// Search of the LSF codebooks: AVX2 kernel, eight entries at a time.
#include "amr/least_v3.h"
#include "amr/lsp/kernels.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

template <bool bothSigns>
int search(const Zpp16s* residual, const Zpp16s* weight, const LsfQuad* codebook, int size) {
  // Elements 0 and 1 of four entries in the lower half, 2 and 3 in the upper one
  const W target = joined(pairOf(residual[0], residual[1]), pairOf(residual[2], residual[3]));
  const W weights = joined(pairOf(weight[0], weight[1]), pairOf(weight[2], weight[3]));
  const auto squares = [&](W difference) {
    const W weighted = _mm256_mulhi_epi16(_mm256_add_epi16(difference, difference), weights);
    return _mm256_madd_epi16(weighted, weighted);
  };
  const auto inOrder = [](W four, W next) {  // half the errors of eight entries
    return _mm256_add_epi32(_mm256_permute2x128_si256(four, next, 0x20), _mm256_permute2x128_si256(four, next, 0x31));
  };
  constexpr int signs = bothSigns ? 2 : 1;
  LeastError least;
  W numbers = _mm256_setr_epi32(0, signs, 2 * signs, 3 * signs, 4 * signs, 5 * signs, 6 * signs, 7 * signs);
  for (const LsfQuad* quad = codebook; quad != codebook + size / 4; quad += 2) {
    const W four = loadWide(quad[0].pair), next = loadWide(quad[1].pair);
    least.take(inOrder(squares(_mm256_sub_epi16(target, four)), squares(_mm256_sub_epi16(target, next))), numbers);
    if constexpr (bothSigns)
      least.take(inOrder(squares(_mm256_add_epi16(target, four)), squares(_mm256_add_epi16(target, next))),
                 _mm256_add_epi32(numbers, _mm256_set1_epi32(1)));
    numbers = _mm256_add_epi32(numbers, _mm256_set1_epi32(8 * signs));
  }
  return least.found();
}

}  // namespace

int ownLsfSearch_GSMAMR_16s_V3(const Zpp16s* residual, const Zpp16s* weight, const LsfQuad* codebook, int size,
                               bool bothSigns) {
  if (!isNearLsfEntries(residual)) return ownLsfSearch_GSMAMR_16s_PX(residual, weight, codebook, size, bothSigns);
  return bothSigns ? search<true>(residual, weight, codebook, size) : search<false>(residual, weight, codebook, size);
}
