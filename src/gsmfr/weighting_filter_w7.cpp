// The weighting filter of the RPE: SSE2 kernel.
#include <cstring>

#include "core/simd_w7.h"
#include "gsmfr/kernels.h"
#include "gsmfr/tables.h"

using namespace zpp;
using namespace zpp::gsmfr;

// Two taps a product: nine taps of the eleven are not zero, and the tenth factor of the pairs is the rounding. No sum leaves
// 31 bits.
void ownWeightingFilter_GSMFR_16s_W7(const Zpp16s* src, Zpp16s* dst) {
  constexpr int kDelay = 5;
  alignas(16) Zpp16s padded[8 + kGsmFrSubframe + 8] = {};
  std::memcpy(padded + 8, src, kGsmFrSubframe * sizeof(Zpp16s));
  const auto taps = [](int i, int k) { return pairOf(weighting[i], weighting[k]); };
  const V taps01 = taps(0, 1), taps34 = taps(3, 4), taps56 = taps(5, 6), taps79 = taps(7, 9);
  const V tap10AndHalf = pairOf(weighting[10], 4096), one = _mm_set1_epi16(1);
  for (int n = 0; n < kGsmFrSubframe; n += 8) {
    const Zpp16s* const x = padded + 8 + n - kDelay;
    V low = _mm_madd_epi16(_mm_unpacklo_epi16(load(x + 10), one), tap10AndHalf);
    V high = _mm_madd_epi16(_mm_unpackhi_epi16(load(x + 10), one), tap10AndHalf);
    const auto add = [&](V a, V b, V pair) {
      low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(a, b), pair));
      high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(a, b), pair));
    };
    add(load(x), load(x + 1), taps01);
    add(load(x + 3), load(x + 4), taps34);
    add(load(x + 5), load(x + 6), taps56);
    add(load(x + 7), load(x + 9), taps79);
    store(dst + n, _mm_packs_epi32(_mm_srai_epi32(low, 13), _mm_srai_epi32(high, 13)));
  }
}
