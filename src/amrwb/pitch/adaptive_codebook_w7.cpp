// Normalised correlations, adaptive-codebook vector and its low-pass: SSE2 kernels.
#include "amrwb/pitch/kernels.h"
#include "amrwb/pitch/pitch_correlation.h"
#include "amrwb/pitch/tables.h"
#include "amrwb/simd_w7.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

void ownConvolution_AMRWB_16s_W7(const Zpp16s* src, const Zpp16s* impulse, Zpp16s* dst) {
  if (!productsFit(ownDotProd_16s(src, src, kSubframe), ownDotProd_16s(impulse, impulse, kSubframe)))
    return ownConvolution_AMRWB_16s_PX(src, impulse, dst);
  alignas(16) Zpp32s sums[kSubframe];
  ownConvPartial_16s32s(src, impulse, sums, kSubframe);
  const V half = _mm_set1_epi32(0x4000);
  const auto four = [&](int n) { return _mm_srai_epi32(_mm_add_epi32(load(sums + n), half), 15); };
  for (int n = 0; n < kSubframe; n += 8) store(dst + n, _mm_packs_epi32(four(n), four(n + 4)));
}

void ownRemove_AMRWB_16s_W7(const Zpp16s* x, const Zpp16s* y, Zpp16s gain, Zpp16s* dst) {
  const V factors = pairOf(16384, -gain);
  for (int n = 0; n < kSubframe; n += 8) {
    const V a = load(x + n), b = load(y + n);
    store(dst + n, _mm_packs_epi32(_mm_srai_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(a, b), factors), 14),
                                   _mm_srai_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(a, b), factors), 14)));
  }
}

void ownNormCorr_AMRWB_16s_W7(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag,
                              Zpp16s* corr) {
  constexpr int vectors = kSubframe / 8;
  alignas(16) Zpp16s filtered[kSubframe];
  ownConvolution_AMRWB_16s(excitation - minLag, impulse, filtered);
  V f[vectors];
  unrolled<vectors>([&](auto i) { f[i] = load(filtered + 8 * i); });

  // Sixteen squares of magnitudes up to 11585 fit 32 bits. Beyond, or where a sum with the target may saturate, all is computed
  // step by step.
  constexpr Zpp16s kLargest = 11585;
  const Zpp64s energyTarget = ownDotProd_16s(target, target, kSubframe);
  const int targetScale = targetScaleOf(energyTarget);
  V largest = _mm_setzero_si128(), smallest = largest;
  Zpp16s* const first = corr;
  for (int lag = minLag;; ++lag) {
    V squares = _mm_setzero_si128(), products = squares;
    unrolled<vectors>([&](auto i) {
      largest = _mm_max_epi16(largest, f[i]);
      smallest = _mm_min_epi16(smallest, f[i]);
      squares = _mm_add_epi32(squares, _mm_madd_epi16(f[i], f[i]));
      products = _mm_add_epi32(products, _mm_madd_epi16(f[i], load(target + 8 * i)));
    });
    const Zpp64s energyFiltered = sumLanes64(addWide64(_mm_setzero_si128(), squares));
    if (!productsFit(energyTarget, energyFiltered)) break;
    // Beyond the limit the energy may be too small and the sum too large: it is not used then.
    *corr++ = normalisedCorrelation(addWrap32(shlWrap32(sumLanes32(products), 1), 1), energyFiltered, targetScale);
    if (lag == maxLag) {
      const V beyond = _mm_or_si128(_mm_cmpgt_epi16(largest, _mm_set1_epi16(kLargest)),
                                    _mm_cmpgt_epi16(_mm_set1_epi16(-kLargest), smallest));
      if (_mm_movemask_epi8(beyond) != 0) break;
      return;
    }
    // One sample earlier: the response to the sample that enters, added to the old one delayed
    const V entering = _mm_set1_epi16(excitation[-lag - 1]);
    unrolled<vectors>([&](auto count) {
      constexpr int i = vectors - 1 - count;
      const V before = i > 0 ? _mm_srli_si128(f[i > 0 ? i - 1 : 0], 14) : _mm_setzero_si128();
      f[i] = _mm_adds_epi16(_mm_or_si128(_mm_slli_si128(f[i], 2), before), mulQ15(entering, load(impulse + 8 * i)));
    });
  }
  ownNormCorr_AMRWB_16s_PX(excitation, target, impulse, minLag, maxLag, first);
}

void ownPredLt_AMRWB_16s_I_W7(Zpp16s* excitation, int lag, int quarters) {
  constexpr int taps = 32, lanes = 8, vectors = taps / 8;
  const Zpp16s* past = excitation - lag - 15;
  if (quarters > 0) --past;
  const Zpp16s* const filter = excitationTaps[(4 - quarters) & 3];
  V t[vectors];
  unrolled<vectors>([&](auto i) { t[i] = load(filter + 8 * i); });
  // Eight samples at a time need nothing that they write themselves when the newest tap lies eight samples back.
  if (excitation - past - taps < lanes - 1) return ownPredLt_AMRWB_16s_I_PX(excitation, lag, quarters);
  const auto four = [&](const Zpp16s* x) {
    const V sums = sumsOfLanes32(windowSums<vectors>(x, t), windowSums<vectors>(x + 1, t), windowSums<vectors>(x + 2, t),
                                 windowSums<vectors>(x + 3, t));
    return _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(1 << 13)), 14);
  };
  for (int n = 0; n < kSubframe; n += lanes) store(excitation + n, _mm_packs_epi32(four(past + n), four(past + n + 4)));
  excitation[kSubframe] = roundedSum(sumLanes32(windowSums<vectors>(past + kSubframe, t)), 1);
}

void ownAdaptiveCodebookLowPass_AMRWB_16s_W7(const Zpp16s* src, Zpp16s* dst, int len) {
  constexpr int lanes = 8;
  const V outer = _mm_set1_epi16(5898), inner = _mm_set1_epi32(20972 | (1 << 30)), half = _mm_set1_epi16(1);
  int n = 0;
  for (; n + lanes <= len; n += lanes) {
    const V before = load(src + n - 1), after = load(src + n + 1), now = load(src + n);
    const auto output = [&](V neighbours, V middle) {
      return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(neighbours, outer), _mm_madd_epi16(middle, inner)), 15);
    };
    store(dst + n, _mm_packs_epi32(output(_mm_unpacklo_epi16(before, after), _mm_unpacklo_epi16(now, half)),
                                   output(_mm_unpackhi_epi16(before, after), _mm_unpackhi_epi16(now, half))));
  }
  if (n < len) ownAdaptiveCodebookLowPass_AMRWB_16s_PX(src + n, dst + n, len - n);
}
