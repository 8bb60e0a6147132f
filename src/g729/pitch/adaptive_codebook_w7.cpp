// Adaptive codebook: SSE2 kernels.
#include <bit>

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/pitch/kernels.h"
#include "g729/pitch/normalised_correlation.h"
#include "g729/pitch/tables.h"
#include "lpc/kernels.h"
#include "lpc/simd_correlation_w7.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr int kVectors = kSubframe / 8;
constexpr Zpp32s kLoud = 67108864;

// The bits of the magnitudes: x, or ~x for negative x
V magnitudeBits(V v) { return _mm_xor_si128(v, _mm_srai_epi16(v, 15)); }
// Whether all eight values lie within -2^n..2^n-1
bool allWithin(V bits, int n) {
  return _mm_movemask_epi8(_mm_cmpgt_epi16(bits, _mm_set1_epi16(static_cast<Zpp16s>((1 << n) - 1)))) == 0;
}

// A sample's response, sat16((sample * h) >> (12 + scale)), ready for one vector of h after the other.
class Response {
 public:
  Response(const Zpp16s* impulse, int scale) : scale_(scale) {
    for (int k = 0; k < kVectors; ++k) h_[k] = load(impulse + 8 * k);
    h_[0] = _mm_insert_epi16(h_[0], 0, 0);  // the sample itself comes in by another way
    // Where sample and response leave room for 4 - scale bits, pmulhw does the shift.
    const int room = norm16(ownMaxAbs_16s_W7(impulse + 1, kSubframe - 1)), wanted = 4 - scale;
    const int headroom = room < wanted ? room : wanted;
    for (int k = 0; k < kVectors; ++k) raised_[k] = _mm_sll_epi16(h_[k], _mm_cvtsi32_si128(headroom));
    sampleShift_ = wanted - headroom;
  }
  // Moves w on by one sample, which enters in front.
  void advance(V (&w)[kVectors], Zpp16s sample) const {
    const Zpp32s raised = Zpp32s{sample} * (1 << sampleShift_);
    const V entering = _mm_insert_epi16(_mm_slli_si128(w[0], 2), sample >> scale_, 0);
    if (raised == static_cast<Zpp16s>(raised)) [[likely]] {
      const V factor = _mm_set1_epi16(static_cast<Zpp16s>(raised));
      for (int k = kVectors - 1; k > 0; --k) w[k] = _mm_adds_epi16(_mm_mulhi_epi16(factor, raised_[k]), moved(w[k - 1], w[k]));
      w[0] = _mm_adds_epi16(_mm_mulhi_epi16(factor, raised_[0]), entering);
      return;
    }
    const V factor = _mm_set1_epi16(sample), shift = _mm_cvtsi32_si128(12 + scale_);
    const auto response = [&](V h) {
      return _mm_packs_epi32(_mm_sra_epi32(mulLow(factor, h), shift), _mm_sra_epi32(mulHigh(factor, h), shift));
    };
    for (int k = kVectors - 1; k > 0; --k) w[k] = _mm_adds_epi16(response(h_[k]), moved(w[k - 1], w[k]));
    w[0] = _mm_adds_epi16(response(h_[0]), entering);
  }

 private:
  static V moved(V before, V v) { return _mm_or_si128(_mm_slli_si128(v, 2), _mm_srli_si128(before, 14)); }

  V h_[kVectors], raised_[kVectors];
  int scale_, sampleShift_;
};

}  // namespace

void ownMeanSquareWeightedError_16s_W7(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* exc, int tMin, int tMax,
                                       Zpp16s* corr) {
  // Below 2^30 no step of the convolution saturates a doubled sum.
  if (!correlationsFit(30, exc - tMin, kSubframe, impulse, kSubframe))
    return ownMeanSquareWeightedError_16s_PX(target, impulse, exc, tMin, tMax, corr);
  alignas(16) Zpp16s filtered[kSubframe];
  ownConvPartial_16s_Sfs_W7(exc - tMin, impulse, filtered, kSubframe, 12);
  const int scale = 2 * ownDotProd_16s_W7(filtered, filtered, kSubframe) > kLoud ? 2 : 0;
  V w[kVectors], x[kVectors];
  for (int k = 0; k < kVectors; ++k) {
    w[k] = _mm_sra_epi16(load(filtered + 8 * k), _mm_cvtsi32_si128(scale));
    x[k] = load(target + 8 * k);
  }
  const Response response(impulse, scale);
  // Energies up to this one keep their product with the target's below 2^60: no correlation, and no part of one, reaches 2^30.
  const int bits = std::bit_width(static_cast<std::uint64_t>(ownDotProd_16s_W7(target, target, kSubframe)));
  const Zpp32u mostEnergy = bits <= 28 ? UINT32_MAX : Zpp32u{1} << (60 - bits);

  for (int t = tMin;; ++t) {
    V energies = _mm_setzero_si128(), products = energies, magnitudes = energies;
    for (int k = 0; k < kVectors; ++k) {
      energies = _mm_add_epi32(energies, _mm_madd_epi16(w[k], w[k]));
      products = _mm_add_epi32(products, _mm_madd_epi16(x[k], w[k]));
      magnitudes = _mm_or_si128(magnitudes, magnitudeBits(w[k]));
    }
    V sums = _mm_add_epi32(_mm_unpacklo_epi32(energies, products), _mm_unpackhi_epi32(energies, products));
    sums = _mm_add_epi32(sums, _mm_shuffle_epi32(sums, _MM_SHUFFLE(1, 0, 3, 2)));
    // Forty squares of 13 bits fit 32 bits without sign.
    const auto energy = static_cast<Zpp32u>(_mm_cvtsi128_si32(sums));
    Zpp32s c, e;
    if (allWithin(magnitudes, 13) && energy <= mostEnergy) [[likely]] {
      c = 2 * _mm_cvtsi128_si32(_mm_srli_epi64(sums, 32));
      e = energy > 0x3fffffff ? kMax32 : static_cast<Zpp32s>(2 * energy);
    } else {
      for (int k = 0; k < kVectors; ++k) store(filtered + 8 * k, w[k]);
      c = dotSat(target, filtered, kSubframe);
      e = dotSat(filtered, filtered, kSubframe);
    }
    corr[t - tMin] = sat16(overRoot(c, e));
    if (t == tMax) return;
    response.advance(w, exc[-(t + 1)]);
  }
}

int ownBestFraction_G729_16s_W7(const Zpp16s* corr, int first, int last) {
  const V before = load(corr - 4), after = load(corr - 3);
  // The taps of a phase sum up to less than 1.5: values of 14 bits stay clear of saturation.
  if (!allWithin(_mm_or_si128(magnitudeBits(before), magnitudeBits(after)), 14))
    return ownBestFraction_G729_16s_PX(corr, first, last);
  const V taps0 = load(inter_3_taps.at[0]), taps1 = load(inter_3_taps.at[1]), taps2 = load(inter_3_taps.at[2]);
  const V half = _mm_set1_epi32(1 << 14);
  Zpp32s values[5];  // fractions -2..2
  const V sums = sumsOfLanes32(_mm_madd_epi16(before, taps1), _mm_madd_epi16(before, taps2), _mm_madd_epi16(after, taps0),
                               _mm_madd_epi16(after, taps1));
  store(values, _mm_srai_epi32(_mm_add_epi32(sums, half), 15));
  values[4] = (sumLanes32(_mm_madd_epi16(after, taps2)) + (1 << 14)) >> 15;
  int best = first;
  for (int fraction = first + 1; fraction <= last; ++fraction)
    if (values[fraction + 2] > values[best + 2]) best = fraction;
  return best;
}

void ownDecodeAdaptiveVector_G729_16s_I_W7(int lag, int fraction, Zpp16s* exc) {
  const int phase = fraction > 0 ? 3 - fraction : -fraction;
  const Zpp16s(*taps)[8] = inter_3l_pairs.at[phase];
  const V half = _mm_set1_epi32(1 << 14);
  V magnitudes = _mm_setzero_si128();
  // From a delay of 18 on, the ten samples behind the centre of eight outputs lie before the first of them. Two taps a product:
  // from one place on they count for outputs 0, 2, 4 and 6, from the next for the others.
  for (int n = 0; n < kSubframe; n += 8) {
    const Zpp16s* x = exc + n - lag - (fraction > 0 ? 1 : 0) - 9;
    V even = half, odd = half;
    unrolled<10>([&](auto pair) {
      const V first = load(x + 2 * pair), second = load(x + 2 * pair + 1), factors = load(taps[pair]);
      even = _mm_add_epi32(even, _mm_madd_epi16(first, factors));
      odd = _mm_add_epi32(odd, _mm_madd_epi16(second, factors));
      if constexpr (pair % 4 == 0) magnitudes = _mm_or_si128(magnitudes, magnitudeBits(first));
      if constexpr (pair == 9) magnitudes = _mm_or_si128(magnitudes, magnitudeBits(second));
    });
    const V packed = _mm_packs_epi32(_mm_srai_epi32(even, 15), _mm_srai_epi32(odd, 15));
    store(exc + n, _mm_unpacklo_epi16(packed, _mm_srli_si128(packed, 8)));
  }
  // The taps of a phase sum up to less than 1.82: samples of 14 bits stay clear of saturation. Otherwise all is done again,
  // from the past alone.
  if (!allWithin(magnitudes, 14)) [[unlikely]]
    ownDecodeAdaptiveVector_G729_16s_I_PX(lag, fraction, exc);
}

void ownAdaptiveCodebookContribution_G729_16s_W7(Zpp16s gain, const Zpp16s* filtered, const Zpp16s* target, Zpp16s* dst) {
  const V factor = _mm_set1_epi16(gain);
  for (int n = 0; n < kSubframe; n += 8) {
    const V y = load(filtered + n);
    const V scaledY = _mm_packs_epi32(_mm_srai_epi32(mulLow(factor, y), 14), _mm_srai_epi32(mulHigh(factor, y), 14));
    store(dst + n, _mm_subs_epi16(load(target + n), scaledY));
  }
}
