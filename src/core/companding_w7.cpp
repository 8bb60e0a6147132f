// ITU-T G.711 compression: SSE2 kernels.
//
// The segment is a bit length and the mantissa the four bits below the leading one: both stand in the bits of the 16-bit
// magnitude converted to single precision, exactly, as (126 + bit length) * 16 + mantissa from bit 19 on. The bits that the
// laws drop lie below the mantissa and need no clearing.
#include "core/companding.h"
#include "core/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

// For the even and the odd 16-bit lanes apart, which spares unpacking and packing
V exponentAndMantissa(V magnitude) {
  const V even = _mm_castps_si128(_mm_cvtepi32_ps(_mm_and_si128(magnitude, _mm_set1_epi32(0xffff))));
  const V odd = _mm_castps_si128(_mm_cvtepi32_ps(_mm_srli_epi32(magnitude, 16)));
  const V upper = _mm_and_si128(_mm_srli_epi32(odd, 19 - 16), _mm_set1_epi32(~0xffff));
  return _mm_or_si128(_mm_srli_epi32(even, 19), upper);
}

// Biased by 33 in units of 4 and clamped to 8191 * 4 + 3; lowest segment: bit length 8
V muLawCodes(V x) {
  const V negative = _mm_srai_epi16(x, 15);
  const V biased = _mm_adds_epi16(_mm_xor_si128(x, negative), _mm_set1_epi16(33 * 4));
  const V code = _mm_sub_epi16(_mm_set1_epi16((126 + 8) * 16 + 127), exponentAndMantissa(biased));
  return _mm_or_si128(code, _mm_andnot_si128(negative, _mm_set1_epi16(0x80)));
}

// Below 32 (in units of 8) the code is linear and at most 15; from there on it is logarithmic, at least 16 and never above the
// linear one, so that a minimum and a maximum choose. Bit length 9 begins segment 1.
V aLawCodes(V x) {
  const V negative = _mm_srai_epi16(x, 15);
  const V magnitude = _mm_xor_si128(x, negative);
  const V linear = _mm_srli_epi16(magnitude, 4);
  const V logarithmic = _mm_sub_epi16(exponentAndMantissa(magnitude), _mm_set1_epi16((126 + 8) * 16));
  const V code = _mm_min_epi16(linear, _mm_max_epi16(logarithmic, _mm_set1_epi16(15)));
  return _mm_xor_si128(code, _mm_sub_epi16(_mm_set1_epi16(0xd5), _mm_and_si128(negative, _mm_set1_epi16(0x80))));
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
