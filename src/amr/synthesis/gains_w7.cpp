// Gains applied to a subframe: SSE2 kernels.
#include "amr/synthesis/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

void ownApplyGains_GSMAMR_16s_I_W7(const Zpp16s* gains, Zpp16s* srcDst) {
  for (int n = 0; n < kSubframe; n += 8) {
    const V x = load(srcDst + n), gain = load(gains + n);
    store(srcDst + n, _mm_packs_epi32(_mm_srai_epi32(mulLow(x, gain), 12), _mm_srai_epi32(mulHigh(x, gain), 12)));
  }
}

void ownAddPitch_GSMAMR_16s_W7(const Zpp16s* vector, const Zpp16s* excitation, Zpp16s sharpening, Zpp16s pitchGain, int shift,
                               Zpp16s* dst) {
  const V factor = _mm_set1_epi16(sharpening), gain = _mm_set1_epi16(pitchGain);
  const V half = _mm_set1_epi32(1 << (shift - 1)), count = _mm_cvtsi32_si128(shift);
  const auto rounded = [&](V product) { return _mm_sra_epi32(_mm_add_epi32(product, half), count); };
  for (int n = 0; n < kSubframe; n += 8) {
    const V sharpened = mulQ15(load(vector + n), factor);
    const V pitch = _mm_packs_epi32(rounded(mulLow(sharpened, gain)), rounded(mulHigh(sharpened, gain)));
    store(dst + n, _mm_adds_epi16(pitch, load(excitation + n)));
  }
}
