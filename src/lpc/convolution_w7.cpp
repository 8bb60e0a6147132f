// Partial convolution, LP residual, harmonic sharpening: SSE2 kernels.
#include <cstdlib>

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"
#include "lpc/simd_correlation_w7.h"

using namespace zpp;

namespace {

V reversed(V v) {
  v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, _MM_SHUFFLE(0, 1, 2, 3)), _MM_SHUFFLE(0, 1, 2, 3));
  return _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2));
}

// A convolution as correlation of the reversed src1 with src2, for 16..kMost values. Zeros in front of both let every output
// start at a multiple of 8.
class Convolution {
 public:
  static constexpr int kMost = 512;

  Convolution(const Zpp16s* src1, const Zpp16s* src2, int len) : src2_(src2), padded_((len + 7) & ~7) {
    store(start2_, _mm_setzero_si128());
    store(start2_ + 8, _mm_setzero_si128());
    store(start2_ + 16, load(src2));
    store(start2_ + 24, load(src2 + 8));
    int n = 0;
    for (; n + 8 <= len; n += 8) store(reversed_ + padded_ - 8 - n, reversed(load(src1 + n)));
    if (n < len) store(reversed_, reversed(loadFirst(src1 + n, len - n)));
  }
  // Outputs n..n+3, modulo 2^32
  V four(int n) const {
    FourLags lags;
    int at = (padded_ - 4 - n) & ~7;
    if (at < 0) at = 0;
    int at2 = n + 1 - padded_ + at;  // of src2, -10 or more
    for (; at2 < 0; at += 8, at2 += 8) lags.add(load(reversed_ + at), start2_ + 16 + at2);
    for (; at < padded_; at += 8, at2 += 8) lags.add(load(reversed_ + at), src2_ + at2);
    return lags.total();
  }

 private:
  const Zpp16s* src2_;
  int padded_;
  alignas(16) Zpp16s start2_[32], reversed_[kMost];  // src2 after 16 zeros, and src1
};

}  // namespace

void ownConvPartial_16s32s_W7(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len) {
  if (len < 16 || len > Convolution::kMost) return ownConvPartial_16s32s_PX(src1, src2, dst, len);
  const Convolution convolution(src1, src2, len);
  for (int n = 0; n < len; n += 4) {
    if (n > len - 4) n = len - 4;
    store(dst + n, convolution.four(n));
  }
}

void ownConvPartial_16s_Sfs_W7(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  // Where no sum leaves 32 bits, those modulo 2^32 are exact.
  if (len < 16 || len > Convolution::kMost || !correlationsFit(31, src1, len, src2, len))
    return ownConvPartial_16s_Sfs_PX(src1, src2, dst, len, scaleFactor);
  const Convolution convolution(src1, src2, len);
  const V shift = _mm_cvtsi32_si128(scaleFactor);  // psrad takes counts beyond 31 as 31
  for (int n = 0; n < len; n += 4) {
    if (n > len - 4) n = len - 4;
    const V sums = _mm_sra_epi32(convolution.four(n), shift);
    store4(dst + n, _mm_packs_epi32(sums, sums));
  }
}

void ownResidualFilter_G729_16s_W7(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len) {
  // With the magnitudes of the coefficients adding up to less than 16.0 no sum reaches 2^31 - 2^15, so 32 bits hold it and the
  // rounding exactly.
  int magnitudes = 0;
  for (int i = 0; i <= kLpcOrder; ++i) magnitudes += std::abs(coef[i]);
  if (len < 8 || magnitudes > 65534) return ownResidualFilter_G729_16s_PX(coef, src, dst, len);
  // Coefficients i and i + 1 in each 32-bit lane
  const auto factor = [coef](int i) {
    const auto second = static_cast<Zpp32u>(i < kLpcOrder ? coef[i + 1] : 0);
    return _mm_set1_epi32(static_cast<int>((second << 16) | static_cast<Zpp16u>(coef[i])));
  };
  const V factor0 = factor(0), factor2 = factor(2), factor4 = factor(4), factor6 = factor(6), factor8 = factor(8),
          factor10 = factor(10);
  for (int n = 0; n < len; n += 8) {
    if (n > len - 8) n = len - 8;
    V low = _mm_set1_epi32(2048), high = low;
    const auto add = [&](V x, V before, V factors) {
      low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(x, before), factors));
      high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(x, before), factors));
    };
    const Zpp16s* x = src + n;
    add(load(x), load(x - 1), factor0);
    add(load(x - 2), load(x - 3), factor2);
    add(load(x - 4), load(x - 5), factor4);
    add(load(x - 6), load(x - 7), factor6);
    add(load(x - 8), load(x - 9), factor8);
    add(load(x - 10), _mm_setzero_si128(), factor10);
    store(dst + n, _mm_packs_epi32(_mm_srai_epi32(low, 12), _mm_srai_epi32(high, 12)));
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
