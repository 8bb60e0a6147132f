// Open-loop pitch analysis: SSE2 kernel.
#include "core/simd_w7.h"
#include "g729/pitch/kernels.h"

using namespace zpp;

void ownSplitPairs_16s_W7(const Zpp16s* src, Zpp16s* first, Zpp16s* second, int pairs) {
  if (pairs < 8) return ownSplitPairs_16s_PX(src, first, second, pairs);
  for (int k = 0; k < pairs; k += 8) {
    if (k > pairs - 8) k = pairs - 8;  // the last step may repeat pairs of the one before
    const V low = load(src + 2 * k), high = load(src + 2 * k + 8);
    store(first + k,
          _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(low, 16), 16), _mm_srai_epi32(_mm_slli_epi32(high, 16), 16)));
    store(second + k, _mm_packs_epi32(_mm_srai_epi32(low, 16), _mm_srai_epi32(high, 16)));
  }
}
