// Cross-correlation and lag search: SSE2 kernels.
//
// All sums run in 32-bit lanes. Kernels whose result is exact or saturated first prove that no sum can leave 32 bits (31 where
// it is doubled) and otherwise leave the work to the portable kernel.
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"
#include "lpc/simd_convolution_w7.h"
#include "lpc/simd_correlation_w7.h"

using namespace zpp;

namespace {

constexpr int kLagsAtATime = 32;

// The largest of the sums of src1 with src2[lag], lag = first, first + step, ..., over count lags, modulo 2^32. The earliest
// wins a tie. doubled: the sums are known to fit 31 bits and are doubled.
template <int Step>
LagMax search(const Zpp16s* src1, const Zpp16s* src2, int len, int first, int count, LagMax best, bool doubled) {
  Zpp32s sums[kLagsAtATime];
  for (int done = 0; done < count;) {
    const int lags = count - done < kLagsAtATime ? count - done : kLagsAtATime;
    const int from = first + Step * done;
    ownCorr_16s32s_W7(src1, src2 + (Step > 0 ? from : from - (lags - 1)), len, sums, lags);
    for (int i = 0; i < lags; ++i) {
      const Zpp32s sum = sums[Step > 0 ? i : lags - 1 - i];
      const Zpp32s value = doubled ? sum * 2 : sum;
      if (value > best.value) best = {value, from + Step * i};
    }
    done += lags;
  }
  return best;
}

}  // namespace

void ownCorr_16s32s_W7(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags) {
  if (len < 8) return ownCorr_16s32s_PX(src1, src2, len, dst, lags);
  if (lags < 4) {
    for (int k = 0; k < lags; ++k) dst[k] = wrap32(ownDotProd_16s_W7(src1, src2 + k, len));
    return;
  }
  const int whole = len & ~7;
  for (int k = 0; k < lags; k += 4) {
    if (k > lags - 4) k = lags - 4;  // the last pass may repeat lags of the one before
    FourLags four;
    four.add(src1, src2 + k, whole);
    if (whole < len) four.add(keepLast(load(src1 + len - 8), len - whole), src2 + k + len - 8);
    store(dst + k, four.total());
  }
}

void ownPartialCorr_16s32s_W7(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags) {
  if (len < 16 || lags < 4) {
    for (int k = 0; k < lags; ++k) dst[k] = k < len ? wrap32(ownDotProd_16s_W7(src1, src2 + k, len - k)) : 0;
    return;
  }
  if (lags == len && len <= Convolution::kMost) {  // all lags: the convolution with src2 reversed, from its end
    alignas(16) Zpp16s backward[Convolution::kMost];
    for (int n = 0; n < len; n += 8) {
      if (n > len - 8) n = len - 8;
      store(backward + n, reversed(load(src2 + len - 8 - n)));
    }
    const Convolution convolution(src1, backward, len);
    for (int k = 0; k < len; k += 4) {
      if (k > len - 4) k = len - 4;
      store(dst + k, _mm_shuffle_epi32(convolution.four(len - 4 - k), _MM_SHUFFLE(0, 1, 2, 3)));
    }
    return;
  }
  // The ends of both vectors with zeros behind them: there every lag may run on to a multiple of 8.
  alignas(16) Zpp16s ends[16 + 40];
  Zpp16s *const end1 = ends, *const end2 = ends + 16;
  store(end1, load(src1 + len - 8));
  store(end1 + 8, _mm_setzero_si128());
  store(end2, load(src2 + len - 16));
  store(end2 + 8, load(src2 + len - 8));
  for (int n = 16; n < 40; n += 8) store(end2 + n, _mm_setzero_si128());
  for (int k = 0; k < lags; k += 4) {
    if (k > lags - 4) k = lags - 4;
    FourLags four;
    int n = 0;
    for (; n + k + 11 <= len; n += 8) four.add(load(src1 + n), src2 + n + k);
    for (; n + k < len; n += 8) {
      const V x = n + 8 <= len ? load(src1 + n) : load(end1 + n - (len - 8));
      four.add(x, end2 + n + k - (len - 16));
    }
    store(dst + k, four.total());
  }
}

void ownCrossCorr_16s32s_Sfs_W7(const Zpp16s* target, const Zpp16s* signal, int len, Zpp32s* dst, int scaleFactor) {
  if (!correlationsFit(31, target, len, signal, len)) return ownCrossCorr_16s32s_Sfs_PX(target, signal, len, dst, scaleFactor);
  ownPartialCorr_16s32s_W7(signal, target, len, dst, len);
  if (scaleFactor == 0) return;
  for (int n = 0; n < len; ++n) dst[n] = sat32(scaled(dst[n], scaleFactor));
}

void ownCrossCorr_NormM_16s_W7(const Zpp16s* target, const Zpp16s* signal, int len, Zpp16s* dst) {
  constexpr int kMost = 256;
  if (len < 4 || len > kMost || !correlationsFit(30, target, len, signal, len))
    return ownCrossCorr_NormM_16s_PX(target, signal, len, dst);
  alignas(16) Zpp32s sums[kMost + 4];
  ownPartialCorr_16s32s_W7(signal, target, len, sums, len);
  store(sums + len, _mm_setzero_si128());
  // The bits of all magnitudes together have the norm of the largest one.
  V bits = _mm_setzero_si128();
  for (int n = 0; n < len; n += 4) {
    const V sum = load(sums + n), sign = _mm_srai_epi32(sum, 31);
    bits = _mm_or_si128(bits, _mm_sub_epi32(_mm_xor_si128(sum, sign), sign));
  }
  bits = _mm_or_si128(bits, _mm_shuffle_epi32(bits, _MM_SHUFFLE(1, 0, 3, 2)));
  bits = _mm_or_si128(bits, _mm_shuffle_epi32(bits, _MM_SHUFFLE(2, 3, 0, 1)));
  const int norm = norm32(2 * _mm_cvtsi128_si32(bits));             // below 2^30: correlationsFit
  const V shift = _mm_cvtsi32_si128(17 - (norm > 16 ? 16 : norm));  // one less, as the sums are not doubled
  for (int n = 0; n < len; n += 4) {
    if (n > len - 4) n = len - 4;
    const V normalised = _mm_sra_epi32(load(sums + n), shift);  // 14 bits
    store4(dst + n, _mm_packs_epi32(normalised, normalised));
  }
}

LagMax ownCrossCorrLagMax_16s_W7(const Zpp16s* src1, const Zpp16s* src2, int len, int maxLag) {
  if (!correlationsFit(31, src1, len, src2, len + maxLag)) return ownCrossCorrLagMax_16s_PX(src1, src2, len, maxLag);
  return search<-1>(src1, src2, len, maxLag, maxLag + 1, {0, maxLag}, false);
}

LagMax ownCrossCorrLagMax_Inv_16s_W7(const Zpp16s* target, const Zpp16s* signal, int len, int minLag, int maxLag) {
  if (minLag > maxLag || !correlationsFit(30, target, len, signal - maxLag, len + maxLag - minLag))
    return ownCrossCorrLagMax_Inv_16s_PX(target, signal, len, minLag, maxLag);
  const LagMax best = search<-1>(target, signal, len, -minLag, maxLag - minLag + 1, {kMin32, -minLag}, true);
  return {best.value, -best.lag};
}

LagMax ownAutoCorrLagMax_Fwd_16s_W7(const Zpp16s* src, int len, int minLag, int maxLag) {
  if (minLag > maxLag) return {kMin32, 0};
  return search<1>(src, src, len, minLag, maxLag - minLag + 1, {kMin32, minLag}, false);
}

LagMax ownAutoCorrLagMax_Inv_16s_W7(const Zpp16s* src, int len, int minLag, int maxLag) {
  if (minLag > maxLag) return {kMin32, 0};
  const LagMax best = search<-1>(src, src, len, -minLag, maxLag - minLag + 1, {kMin32, -minLag}, false);
  return {best.value, -best.lag};
}

bool ownDotProd_G729A_16s32s_W7(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp) {
  if (len < 8) return ownDotProd_G729A_16s32s_PX(src1, src2, len, dp);
  // Sum and energies of the even samples. A square counts at most 2^22 in units of 256: 512 of them fit 32 bits.
  if (len > 1024) return ownDotProd_G729A_16s32s_PX(src1, src2, len, dp);
  const V even = _mm_set1_epi32(0xffff);
  V sum = _mm_setzero_si128(), energy1 = sum, energy2 = sum;
  const auto add = [&](V x, V y) {
    sum = _mm_add_epi32(sum, _mm_madd_epi16(x, y));
    energy1 = _mm_add_epi32(energy1, _mm_srli_epi32(_mm_madd_epi16(x, x), 8));
    energy2 = _mm_add_epi32(energy2, _mm_srli_epi32(_mm_madd_epi16(y, y), 8));
  };
  int n = 0;
  for (; n + 8 <= len; n += 8) add(_mm_and_si128(load(src1 + n), even), _mm_and_si128(load(src2 + n), even));
  if (n < len) add(_mm_and_si128(loadFirst(src1 + n, len - n), even), _mm_and_si128(loadFirst(src2 + n, len - n), even));
  const auto total = [len](V lanes) { return Zpp64s{static_cast<Zpp32u>(sumLanes32(lanes))} + len; };  // each rounded up
  // Energies whose product is at most 2^60 keep every partial sum within 2^30: no doubled sum, and no doubled product,
  // saturates (a square of -32768 on both sides makes 2^60, and its rounding more).
  const Zpp64s bound1 = total(energy1), bound2 = total(energy2);
  if ((bound1 | bound2) >> 31 != 0 || bound1 * bound2 > Zpp64s{1} << 44) return ownDotProd_G729A_16s32s_PX(src1, src2, len, dp);
  *dp = sumLanes32(sum) * 2;
  return false;
}
