// Five-tap gain filter of the adaptive codebook: SSE2 kernel.
#include "core/simd_w7.h"
#include "g723/pitch/kernels.h"

using namespace zpp;

namespace {

V pair(Zpp16s low, Zpp16s high) {
  return _mm_set1_epi32(static_cast<Zpp32s>(static_cast<Zpp16u>(low) | Zpp32u{static_cast<Zpp16u>(high)} << 16));
}

Zpp32s magnitude(Zpp16s x) { return x < 0 ? -x : x; }

}  // namespace

void ownAdaptiveCodebookDecode_G723_16s_W7(const Zpp16s* taps, const Zpp16s* work, Zpp16s* dst) {
  // Sums of products stay below 2^31 - 2^14 when the taps' magnitudes add up to less than 2^16 - 1, as those of all codebook
  // rows do (36775 at most).
  Zpp32s gain = 0;
  for (int k = 0; k < 5; ++k) gain += magnitude(taps[k]);
  if (gain >= 65535) return ownAdaptiveCodebookDecode_G723_16s_PX(taps, work, dst);
  const V first = pair(taps[0], taps[1]), second = pair(taps[2], taps[3]), evenLast = pair(taps[4], 0),
          oddLast = pair(0, taps[4]);
  const V half = _mm_set1_epi32(1 << 13);
  const auto rounded = [&](const Zpp16s* from, V last) {
    const V sum = _mm_add_epi32(_mm_madd_epi16(load(from), first), _mm_madd_epi16(load(from + 2), second));
    return _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(sum, half), last), 14);
  };
  const auto eight = [&](int n) {
    const V end = load(work + n + 4);
    const V even = rounded(work + n, _mm_madd_epi16(end, evenLast));
    const V odd = rounded(work + n + 1, _mm_madd_epi16(end, oddLast));
    return _mm_packs_epi32(_mm_unpacklo_epi32(even, odd), _mm_unpackhi_epi32(even, odd));
  };
  for (int n = 0; n < 48; n += 8) store(dst + n, eight(n));
  // The last two blocks overlap: both are read before either is written, as dst may be work.
  const V beforeLast = eight(48), last = eight(52);
  store(dst + 48, beforeLast);
  store(dst + 52, last);
}
