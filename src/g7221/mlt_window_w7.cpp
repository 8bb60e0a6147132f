// Windowing and folding of the modulated lapped transform: SSE2 kernels.
#include "core/simd_w7.h"
#include "g7221/kernels.h"
#include "g7221/tables.h"

using namespace zpp;

namespace {

// Eight two-term dot products of a and b with consecutive factor pairs, rounded half up and saturated
template <int shift>
V windowed(const Zpp16s* factors, V a, V b) {
  const V half = _mm_set1_epi32(1 << (shift - 1));
  const V low = _mm_madd_epi16(_mm_unpacklo_epi16(a, b), load(factors));
  const V high = _mm_madd_epi16(_mm_unpackhi_epi16(a, b), load(factors + 8));
  return _mm_packs_epi32(_mm_srai_epi32(_mm_add_epi32(low, half), shift), _mm_srai_epi32(_mm_add_epi32(high, half), shift));
}

}  // namespace

void ownDecomposeMLTToDCT_G722_16s_W7(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst) {
  const Zpp16s* window = cnstSamples2MLT_G722;
  for (int i = 0; i < 160; i += 8, window += 16)
    store(dst + i, windowed<15>(window, reversed(load(srcDstOld + 152 - i)), load(srcDstOld + 160 + i)));
  for (int i = 0; i < 160; i += 8, window += 16)
    store(dst + 160 + i, windowed<15>(window, load(src + i), reversed(load(src + 312 - i))));
  std::memcpy(srcDstOld, src, 320 * sizeof(Zpp16s));
}

void ownDecomposeDCTToMLT_G722_16s_W7(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst) {
  const Zpp16s* window = cnstMLT2Samples_G722;
  for (int i = 0; i < 160; i += 8, window += 16)
    store(dst + i, windowed<13>(window, reversed(load(src + 152 - i)), load(srcDstOld + i)));
  for (int i = 0; i < 160; i += 8, window += 16)
    store(dst + 160 + i, windowed<13>(window, load(src + i), reversed(load(srcDstOld + 152 - i))));
  std::memcpy(srcDstOld, src + 160, 160 * sizeof(Zpp16s));
}
