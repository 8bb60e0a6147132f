// Decoding and interpolation of log area ratios: SSE2 kernels, with the eight coefficients in the lanes.
#include "gsmfr/kernels.h"
#include "gsmfr/rounded_products_w7.h"
#include "gsmfr/tables.h"

using namespace zpp;
using namespace zpp::gsmfr;

namespace {

// The three pieces of the inverse approximation are those of a concave curve: the smallest of them holds.
V reflectionCoefficients(V lar) {
  const V sign = _mm_srai_epi16(lar, 15);
  const V a = _mm_max_epi16(lar, _mm_subs_epi16(_mm_setzero_si128(), lar));
  const V low = _mm_min_epi16(_mm_adds_epi16(a, a), _mm_adds_epi16(a, _mm_set1_epi16(11059)));
  const V r = _mm_min_epi16(low, _mm_adds_epi16(_mm_srai_epi16(a, 2), _mm_set1_epi16(26112)));
  return _mm_sub_epi16(_mm_xor_si128(r, sign), sign);
}

}  // namespace

void ownLARDecode_GSMFR_16s_W7(const Zpp16s* larCode, Zpp16s* lar) {
  const V lowest = load(larLowest), offset = load(larOffset);
  const V code = _mm_and_si128(load(larCode), _mm_sub_epi16(load(larHighest), lowest));
  const V level = _mm_subs_epi16(_mm_slli_epi16(_mm_add_epi16(code, lowest), 10), _mm_add_epi16(offset, offset));
  const V half = mulRoundWrapQ15(load(larInverseSlope), level);  // no slope is -1
  store(lar, _mm_adds_epi16(half, half));
}

void ownLARToRefl_GSMFR_16s_W7(const Zpp16s* prevLar, const Zpp16s* lar, Zpp16s* refl) {
  const V p = load(prevLar), q = load(lar);
  const V halves = _mm_add_epi16(_mm_srai_epi16(p, 1), _mm_srai_epi16(q, 1));
  const V quarters = _mm_add_epi16(_mm_srai_epi16(p, 2), _mm_srai_epi16(q, 2));
  store(refl, reflectionCoefficients(_mm_add_epi16(quarters, _mm_srai_epi16(p, 1))));
  store(refl + 8, reflectionCoefficients(halves));
  store(refl + 16, reflectionCoefficients(_mm_add_epi16(quarters, _mm_srai_epi16(q, 1))));
  store(refl + 24, reflectionCoefficients(q));
}
