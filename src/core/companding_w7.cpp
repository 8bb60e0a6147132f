// ITU-T G.711 compression: SSE2 kernels.
//
// The segment is a bit length and the mantissa the four bits below the leading one: both stand in the bits of the magnitude
// converted to single precision. Its bits from 19 on are (127 + bit length - 1) * 16 + mantissa, exact below 2^24.
#include "core/companding.h"
#include "core/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

V exponentAndMantissa(V magnitude) {
  const V low = _mm_castps_si128(_mm_cvtepi32_ps(_mm_unpacklo_epi16(magnitude, _mm_setzero_si128())));
  const V high = _mm_castps_si128(_mm_cvtepi32_ps(_mm_unpackhi_epi16(magnitude, _mm_setzero_si128())));
  return _mm_packs_epi32(_mm_srli_epi32(low, 19), _mm_srli_epi32(high, 19));
}

V muLawCodes(V x) {
  const V negative = _mm_srai_epi16(x, 15);
  const V magnitude = _mm_srli_epi16(_mm_xor_si128(x, negative), 2);
  const V biased = _mm_min_epi16(_mm_add_epi16(magnitude, _mm_set1_epi16(33)), _mm_set1_epi16(8191));
  const V code = _mm_sub_epi16(_mm_set1_epi16((127 + 4 + 9) * 16 - 1), exponentAndMantissa(biased));
  return _mm_or_si128(code, _mm_andnot_si128(negative, _mm_set1_epi16(0x80)));
}

V aLawCodes(V x) {
  const V negative = _mm_srai_epi16(x, 15);
  const V magnitude = _mm_srli_epi16(_mm_xor_si128(x, negative), 3);
  const V linear = _mm_cmplt_epi16(magnitude, _mm_set1_epi16(32));
  const V logarithmic = _mm_sub_epi16(exponentAndMantissa(magnitude), _mm_set1_epi16((127 + 4) * 16));
  const V code = select(linear, _mm_srli_epi16(magnitude, 1), logarithmic);
  return _mm_xor_si128(code, select(negative, _mm_set1_epi16(0x55), _mm_set1_epi16(0xd5)));
}

template <V (*codes)(V), Zpp8u (*code)(Zpp16s)>
void compress(const Zpp16s* src, Zpp8u* dst, int len) {
  int n = 0;
  for (; n + 16 <= len; n += 16) store(dst + n, _mm_packus_epi16(codes(load(src + n)), codes(load(src + n + 8))));
  for (; n < len; ++n) dst[n] = code(src[n]);
}

}  // namespace

void ownLinToMuLaw_16s8u_W7(const Zpp16s* src, Zpp8u* dst, int len) { compress<muLawCodes, muLawCode>(src, dst, len); }
void ownLinToALaw_16s8u_W7(const Zpp16s* src, Zpp8u* dst, int len) { compress<aLawCodes, aLawCode>(src, dst, len); }
