// Partial convolution, LP residual, harmonic sharpening: SSE2 kernels.
#include <cstdlib>

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"
#include "lpc/simd_convolution_w7.h"
#include "lpc/simd_correlation_w7.h"
#include "lpc/simd_filter_w7.h"

using namespace zpp;

void ownConvPartial_16s32s_W7(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len) {
  if (len < 8 || len > Convolution::kMost) return ownConvPartial_16s32s_PX(src1, src2, dst, len);
  const Convolution convolution(src1, src2, len);
  for (int n = 0; n < len; n += 4) {
    if (n > len - 4) n = len - 4;
    store(dst + n, convolution.four(n));
  }
}

void ownConvPartial_16s_Sfs_W7(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  // Where no sum leaves 32 bits, those modulo 2^32 are exact.
  if (len < 8 || len > Convolution::kMost || !correlationsFit(31, src1, len, src2, len))
    return ownConvPartial_16s_Sfs_PX(src1, src2, dst, len, scaleFactor);
  const Convolution convolution(src1, src2, len);
  const V shift = _mm_cvtsi32_si128(scaleFactor);  // psrad takes counts beyond 31 as 31
  for (int n = 0; n < len; n += 8) {
    if (n > len - 8) n = len - 8;
    store(dst + n, _mm_packs_epi32(_mm_sra_epi32(convolution.four(n), shift), _mm_sra_epi32(convolution.four(n + 4), shift)));
  }
}

void ownResidualFilter_G729_16s_W7(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len) {
  if (len < 8 || !harmlessSums(coef)) return ownResidualFilter_G729_16s_PX(coef, src, dst, len);
  const V first = load(coef + 1), last = load(coef + kLpcOrder - 7);
  // Two taps a product, coefficient i + 1 (low) and i: what lies an even number of samples back counts for outputs 0, 2, 4 and
  // 6 of eight, an odd number back for the others.
  const V swapped = swappedPairs(first);
  const V factor1 = _mm_shuffle_epi32(swapped, 0x00), factor3 = _mm_shuffle_epi32(swapped, 0x55),
          factor5 = _mm_shuffle_epi32(swapped, 0xaa), factor7 = _mm_shuffle_epi32(swapped, 0xff),
          factor9 = _mm_shuffle_epi32(swappedPairs(last), 0xff);
  const V evenFactor = pairOf(coef[0], 0), oddFactor = pairOf(0, coef[0]), rounding = _mm_set1_epi32(2048);
  for (int n = 0; n < len; n += 8) {
    if (n > len - 8) n = len - 8;
    const Zpp16s* const x = src + n;
    const V now = load(x);
    V even = _mm_add_epi32(rounding, _mm_madd_epi16(now, evenFactor)),
      odd = _mm_add_epi32(rounding, _mm_madd_epi16(now, oddFactor));
    const auto add = [&](int back, V factors) {
      even = _mm_add_epi32(even, _mm_madd_epi16(load(x - back - 1), factors));
      odd = _mm_add_epi32(odd, _mm_madd_epi16(load(x - back), factors));
    };
    add(1, factor1);
    add(3, factor3);
    add(5, factor5);
    add(7, factor7);
    add(9, factor9);
    const V packed = _mm_packs_epi32(_mm_srai_epi32(even, 12), _mm_srai_epi32(odd, 12));
    store(dst + n, _mm_unpacklo_epi16(packed, _mm_srli_si128(packed, 8)));
  }
}

// As above; orders 1..31
void ownResidualFilter_G729E_16s_W7(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len) {
  constexpr int kMostPairs = 16;
  if (order == kLpcOrder) return ownResidualFilter_G729_16s_W7(coef, src, dst, len);
  if (len < 8 || order >= 2 * kMostPairs) return ownResidualFilter_G729E_16s_PX(coef, order, src, dst, len);
  int magnitudes = 0;
  for (int i = 0; i <= order; ++i) magnitudes += std::abs(coef[i]);
  if (magnitudes > 65534) return ownResidualFilter_G729E_16s_PX(coef, order, src, dst, len);
  const int pairs = (order + 1) / 2;
  V factors[kMostPairs];
  for (int k = 0; k < pairs; ++k) factors[k] = pairOf(coef[2 * k], coef[2 * k + 1]);
  const V last = order % 2 == 0 ? pairOf(coef[order], 0) : _mm_setzero_si128();
  for (int n = 0; n < len; n += 8) {
    if (n > len - 8) n = len - 8;
    V low = _mm_set1_epi32(2048), high = low;
    const auto add = [&](V x, V before, V factor) {
      low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(x, before), factor));
      high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(x, before), factor));
    };
    const Zpp16s* x = src + n;
    for (int k = 0; k < pairs; ++k) add(load(x - 2 * k), load(x - 2 * k - 1), factors[k]);
    if (order % 2 == 0) add(load(x - order), _mm_setzero_si128(), last);
    store(dst + n, _mm_packs_epi32(_mm_srai_epi32(low, 12), _mm_srai_epi32(high, 12)));
  }
}

void ownHarmonicFilter_16s_W7(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  int n = 0;
  if (lag >= 8) {  // the eight samples of a step then do not feed each other
    const V factor = _mm_set1_epi16(gain);
    for (; n + 8 <= len; n += 8) {
      const V past = load(srcDst + n - lag);
      const V product =
          _mm_or_si128(_mm_slli_epi16(_mm_mulhi_epi16(past, factor), 1), _mm_srli_epi16(_mm_mullo_epi16(past, factor), 15));
      // Only -32768 times -32768 gives 32768, stored as -32768; adding -1 makes it 32767.
      const V clamped = _mm_add_epi16(product, _mm_cmpeq_epi16(product, _mm_set1_epi16(-32768)));
      store(srcDst + n, _mm_adds_epi16(load(srcDst + n), clamped));
    }
  }
  ownHarmonicFilter_16s_PX(gain, lag, srcDst + n, len - n);
}
