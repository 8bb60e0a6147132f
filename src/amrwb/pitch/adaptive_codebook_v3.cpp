// Normalised correlations and adaptive-codebook vector: AVX2 kernels.
#include "amrwb/pitch/kernels.h"
#include "amrwb/pitch/pitch_correlation.h"
#include "amrwb/pitch/tables.h"
#include "core/simd_v3.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// Sixteen samples one later: the last one before comes first.
W delayed(W before, W now) { return _mm256_alignr_epi8(now, _mm256_permute2x128_si256(before, now, 0x21), 14); }

}  // namespace

void ownNormCorr_AMRWB_16s_V3(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag,
                              Zpp16s* corr) {
  constexpr int lanes = 16, vectors = kSubframe / lanes;
  alignas(32) Zpp16s filtered[kSubframe];
  ownConvolution_AMRWB_16s(excitation - minLag, impulse, filtered);
  W f[vectors], h[vectors], x[vectors];
  unrolled<vectors>([&](auto i) {
    f[i] = loadWide(filtered + lanes * i);
    h[i] = loadWide(impulse + lanes * i);
    x[i] = loadWide(target + lanes * i);
  });

  // Eight squares of magnitudes up to 16383 fit 32 bits. Beyond, or where a sum with the target may saturate, all is computed
  // step by step.
  constexpr Zpp16s kLargest = 16383;
  const Zpp64s energyTarget = ownDotProd_16s(target, target, kSubframe);
  const int targetScale = targetScaleOf(energyTarget);
  W largest = _mm256_setzero_si256(), smallest = largest;
  Zpp16s* const first = corr;
  for (int lag = minLag;; ++lag) {
    W squares = _mm256_setzero_si256(), products = squares;
    unrolled<vectors>([&](auto i) {
      largest = _mm256_max_epi16(largest, f[i]);
      smallest = _mm256_min_epi16(smallest, f[i]);
      squares = _mm256_add_epi32(squares, _mm256_madd_epi16(f[i], f[i]));
      products = _mm256_add_epi32(products, _mm256_madd_epi16(f[i], x[i]));
    });
    const V energies = addUnsigned64(addUnsigned64(lowHalf(squares)), highHalf(squares));
    const Zpp64s energyFiltered = sumLanes64(energies);
    if (!productsFit(energyTarget, energyFiltered)) break;
    const Zpp32s product = sumLanes32(_mm_add_epi32(lowHalf(products), highHalf(products)));
    // Beyond the limit the energy may be too small and the sum too large: it is not used then.
    *corr++ = normalisedCorrelation(addWrap32(shlWrap32(product, 1), 1), energyFiltered, targetScale);
    if (lag == maxLag) {
      const W beyond = _mm256_or_si256(_mm256_cmpgt_epi16(largest, _mm256_set1_epi16(kLargest)),
                                       _mm256_cmpgt_epi16(_mm256_set1_epi16(-kLargest), smallest));
      if (_mm256_movemask_epi8(beyond) != 0) break;
      return;
    }
    // One sample earlier: the response to the sample that enters, added to the old one delayed
    const W entering = _mm256_set1_epi16(excitation[-lag - 1]);
    unrolled<vectors>([&](auto count) {
      constexpr int i = vectors - 1 - count;
      const W before = i > 0 ? f[i > 0 ? i - 1 : 0] : _mm256_setzero_si256();
      f[i] = _mm256_adds_epi16(delayed(before, f[i]), mulQ15(entering, h[i]));
    });
  }
  ownNormCorr_AMRWB_16s_PX(excitation, target, impulse, minLag, maxLag, first);
}

void ownPredLt_AMRWB_16s_I_V3(Zpp16s* excitation, int lag, int quarters) {
  constexpr int taps = 32, lanes = 8;
  const Zpp16s* past = excitation - lag - 15;
  if (quarters > 0) --past;
  const Zpp16s* const filter = excitationTaps[(4 - quarters) & 3];
  // Eight samples at a time need nothing that they write themselves when the newest tap lies eight samples back.
  if (excitation - past - taps < lanes - 1) return ownPredLt_AMRWB_16s_I_PX(excitation, lag, quarters);
  const W older = loadWide(filter), newer = loadWide(filter + 16);
  const auto products = [&](const Zpp16s* x) {
    return _mm256_add_epi32(_mm256_madd_epi16(loadWide(x), older), _mm256_madd_epi16(loadWide(x + 16), newer));
  };
  const auto four = [&](const Zpp16s* x) {
    const V sums = sumsOfLanes32(products(x), products(x + 1), products(x + 2), products(x + 3));
    return _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(1 << 13)), 14);
  };
  for (int n = 0; n < kSubframe; n += lanes) store(excitation + n, _mm_packs_epi32(four(past + n), four(past + n + 4)));
  excitation[kSubframe] = roundedSum(exactDotProduct<taps>(past + kSubframe, filter), 1);
}
