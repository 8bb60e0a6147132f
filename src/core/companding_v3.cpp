// ITU-T G.711 compression: AVX2 kernels, the SSE2 ones' arithmetic on sixteen samples.
#include "core/companding.h"
#include "core/kernels.h"
#include "core/simd_v3.h"

using namespace zpp;

namespace {

W exponentAndMantissa(W magnitude) {
  const W even = _mm256_castps_si256(_mm256_cvtepi32_ps(_mm256_and_si256(magnitude, _mm256_set1_epi32(0xffff))));
  const W odd = _mm256_castps_si256(_mm256_cvtepi32_ps(magnitude));
  const W upper = _mm256_mulhi_epu16(odd, _mm256_set1_epi32(1 << (32 - 19 + 16)));
  return _mm256_or_si256(_mm256_srli_epi32(even, 19), upper);
}
W ofBitLength(int length) { return _mm256_set1_epi32((((126 + length + 16) * 16) << 16) | ((126 + length) * 16)); }

W magnitude(W x) { return _mm256_xor_si256(x, _mm256_srai_epi16(x, 15)); }

struct MuLaw {
  static W codes(W x) {
    const W biased = _mm256_adds_epi16(magnitude(x), _mm256_set1_epi16(33 * 4));
    return _mm256_sub_epi16(_mm256_add_epi16(ofBitLength(8), _mm256_set1_epi16(127)), exponentAndMantissa(biased));
  }
  static W codes(W x0, W x1) { return _mm256_packus_epi16(codes(x0), codes(x1)); }
  static W withSigns(W codes, W x) { return _mm256_or_si256(codes, _mm256_andnot_si256(x, _mm256_set1_epi8(-128))); }
  static constexpr auto rest = ownLinToMuLaw_16s8u_W7;
};

struct ALaw {
  static W codes(W x0, W x1) {
    const W m0 = magnitude(x0), m1 = magnitude(x1);
    const auto logarithm = [](W m) { return _mm256_sub_epi16(exponentAndMantissa(m), ofBitLength(8)); };
    const W linear = _mm256_and_si256(_mm256_srli_epi16(_mm256_packus_epi16(m0, m1), 4), _mm256_set1_epi8(15));
    return _mm256_max_epu8(_mm256_packus_epi16(logarithm(m0), logarithm(m1)), linear);
  }
  static W withSigns(W codes, W x) {
    return _mm256_xor_si256(_mm256_xor_si256(codes, _mm256_set1_epi8(0x55)), _mm256_andnot_si256(x, _mm256_set1_epi8(-128)));
  }
  static constexpr auto rest = ownLinToALaw_16s8u_W7;
};

template <class Law>
void compress(const Zpp16s* src, Zpp8u* dst, int len) {
  int n = 0;
  for (; n + 32 <= len; n += 32) {
    const W x0 = loadWide(src + n), x1 = loadWide(src + n + 16);
    const W codes = Law::withSigns(Law::codes(x0, x1), _mm256_packs_epi16(x0, x1));
    storeWide(dst + n, inOrder(codes));
  }
  if (n < len) Law::rest(src + n, dst + n, len - n);
}

}  // namespace

void ownLinToMuLaw_16s8u_V3(const Zpp16s* src, Zpp8u* dst, int len) { compress<MuLaw>(src, dst, len); }
void ownLinToALaw_16s8u_V3(const Zpp16s* src, Zpp8u* dst, int len) { compress<ALaw>(src, dst, len); }
