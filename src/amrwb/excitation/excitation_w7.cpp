// Total excitation of a subframe: SSE2 kernel.
#include <cstdlib>

#include "amrwb/arithmetic.h"
#include "amrwb/excitation/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;
using namespace zpp::amrwb;

void ownExcitation_AMRWB_16s_I_W7(const Zpp16s* code, Zpp16s* srcDst, Zpp16s gainCode, Zpp16s gainPitch) {
  // Up to here 32 times the innovation keeps within 2^29 and the other product within 2^30: half of the standard's sum is
  // exact.
  if ((ownMaxAbs_16s(code, kSubframe) + 1) * std::abs(gainCode) > 1 << 24)
    return ownExcitation_AMRWB_16s_I_PX(code, srcDst, gainCode, gainPitch);
  const V codeFactor = _mm_set1_epi16(gainCode), pitchFactor = _mm_set1_epi16(gainPitch), half = _mm_set1_epi32(1 << 13);
  const auto output = [half](V innovation, V pitch) {
    return _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(_mm_slli_epi32(innovation, 5), pitch), half), 14);
  };
  for (int n = 0; n < kSubframe; n += 8) {
    const V c = load(code + n), x = load(srcDst + n);
    store(srcDst + n, _mm_packs_epi32(output(mulLow(c, codeFactor), mulLow(x, pitchFactor)),
                                      output(mulHigh(c, codeFactor), mulHigh(x, pitchFactor))));
  }
}
