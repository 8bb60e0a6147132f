// White noise: SSE2 kernel.
#include "amrwb/arithmetic.h"
#include "amrwb/noise/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// k steps of the generator at once, modulo 2^16: x * factor[k - 1] + offset[k - 1]
struct Steps {
  Zpp16s factor[8], offset[8];
};
constexpr Steps kSteps = [] {
  Steps steps = {};
  Zpp16s one = 1, zero = 0;
  for (int k = 0; k < 8; ++k) {
    steps.offset[k] = nextRandom(zero);
    steps.factor[k] = wrap16(nextRandom(one) - steps.offset[k]);
  }
  return steps;
}();

}  // namespace

void ownNoise_AMRWB_16s_W7(Zpp16s* dst, int len, int shift, Zpp16s* seed) {
  const V factor = _mm_set1_epi16(kSteps.factor[7]), offset = _mm_set1_epi16(kSteps.offset[7]);
  const V count = _mm_cvtsi32_si128(shift);
  V values = _mm_add_epi16(_mm_mullo_epi16(_mm_set1_epi16(*seed), load(kSteps.factor)), load(kSteps.offset));
  V last = values;
  for (int n = 0; n < len; n += 8) {
    store(dst + n, _mm_sra_epi16(values, count));
    last = values;
    values = _mm_add_epi16(_mm_mullo_epi16(values, factor), offset);
  }
  *seed = static_cast<Zpp16s>(_mm_extract_epi16(last, 7));
}
