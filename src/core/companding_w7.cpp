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

// For the even and the odd 16-bit lanes apart, which spares unpacking and packing. The odd ones keep their neighbours below
// them: these have no bit 15, so that rounding, which carries no further, does not touch the mantissa. 16 is added to their bit
// length.
V exponentAndMantissa(V magnitude) {
  const V even = _mm_castps_si128(_mm_cvtepi32_ps(_mm_and_si128(magnitude, _mm_set1_epi32(0xffff))));
  const V odd = _mm_castps_si128(_mm_cvtepi32_ps(magnitude));
  const V upper = _mm_mulhi_epu16(odd, pairOf(0, 1 << (32 - 19)));  // bits 31..19, and a zero below
  return _mm_or_si128(_mm_srli_epi32(even, 19), upper);
}
// Exponent and mantissa of a magnitude of the given bit length and mantissa 0
V ofBitLength(int length) { return pairOf((126 + length) * 16, (126 + length + 16) * 16); }

V magnitude(V x) { return _mm_xor_si128(x, _mm_srai_epi16(x, 15)); }

struct MuLaw {
  // Biased by 33 in units of 4 and clamped to 8191 * 4 + 3; lowest segment: bit length 8. Without the sign.
  static V codes(V x) {
    const V biased = _mm_adds_epi16(magnitude(x), _mm_set1_epi16(33 * 4));
    return _mm_sub_epi16(_mm_add_epi16(ofBitLength(8), _mm_set1_epi16(127)), exponentAndMantissa(biased));
  }
  static V codes(V x0, V x1) { return _mm_packus_epi16(codes(x0), codes(x1)); }
  static V withSigns(V codes, V x) { return _mm_or_si128(codes, _mm_andnot_si128(x, _mm_set1_epi8(-128))); }
  static Zpp8u code(Zpp16s x) { return muLawCode(x); }
};

// From 256 on the code is logarithmic, bit length 9 beginning segment 1; below it is linear, at most 15, and never less than
// the logarithm of numbers so small, which is cut off at 0: a maximum chooses.
struct ALaw {
  static V codes(V x0, V x1) {
    const V m0 = magnitude(x0), m1 = magnitude(x1);
    const auto logarithm = [](V m) { return _mm_sub_epi16(exponentAndMantissa(m), ofBitLength(8)); };
    const V linear = _mm_and_si128(_mm_srli_epi16(_mm_packus_epi16(m0, m1), 4), _mm_set1_epi8(15));
    return _mm_max_epu8(_mm_packus_epi16(logarithm(m0), logarithm(m1)), linear);
  }
  static V withSigns(V codes, V x) {
    return _mm_xor_si128(_mm_xor_si128(codes, _mm_set1_epi8(0x55)), _mm_andnot_si128(x, _mm_set1_epi8(-128)));
  }
  static Zpp8u code(Zpp16s x) { return aLawCode(x); }
};

template <class Law>
void compress(const Zpp16s* src, Zpp8u* dst, int len) {
  int n = 0;
  for (; n + 16 <= len; n += 16) {
    const V x0 = load(src + n), x1 = load(src + n + 8);
    store(dst + n, Law::withSigns(Law::codes(x0, x1), _mm_packs_epi16(x0, x1)));
  }
  for (; n < len; ++n) dst[n] = Law::code(src[n]);
}

}  // namespace

void ownLinToMuLaw_16s8u_W7(const Zpp16s* src, Zpp8u* dst, int len) { compress<MuLaw>(src, dst, len); }
void ownLinToALaw_16s8u_W7(const Zpp16s* src, Zpp8u* dst, int len) { compress<ALaw>(src, dst, len); }
