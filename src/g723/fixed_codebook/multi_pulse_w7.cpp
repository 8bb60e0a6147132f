// Multipulse excitation: SSE2 kernels.
#include <bit>
#include <cstdlib>

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"
#include "g723/arithmetic.h"
#include "g723/fixed_codebook/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kLanes = 32;  // places, and two that hold no pulse

V magnitude(V v) {
  const V sign = _mm_srai_epi32(v, 31);
  return _mm_sub_epi32(_mm_xor_si128(v, sign), sign);
}
V larger(V a, V b) { return select(_mm_cmpgt_epi32(a, b), a, b); }

// The first of the largest of kLanes values
int firstLargest(const Zpp32s* values) {
  V most = load(values);
  for (int i = 4; i < kLanes; i += 4) most = larger(most, load(values + i));
  most = larger(most, _mm_shuffle_epi32(most, _MM_SHUFFLE(1, 0, 3, 2)));
  most = larger(most, _mm_shuffle_epi32(most, _MM_SHUFFLE(2, 3, 0, 1)));
  const auto found = [=](int i) { return _mm_cmpeq_epi32(load(values + i), most); };
  const auto sixteen = [=](int i) {
    const V bytes = _mm_packs_epi16(_mm_packs_epi32(found(i), found(i + 4)), _mm_packs_epi32(found(i + 8), found(i + 12)));
    return static_cast<Zpp32u>(_mm_movemask_epi8(bytes));
  };
  return std::countr_zero(sixteen(0) | sixteen(16) << 16);
}

}  // namespace

void ownMultiPulseSet_G723_16s32s_W7(const Zpp32s* scores, const Zpp16s* autocorr, PulseSet* set) {
  const Zpp16s amplitude = absSat16(set->amplitude[0]);
  // centre[d]: what a positive pulse takes off the score d places on, |d| up to 31
  alignas(16) Zpp32s share[2 * kLanes], left[kLanes], magnitudes[kLanes], taken[kLanes];
  Zpp32s* const centre = share + kLanes;
  const V factor = _mm_set1_epi16(amplitude);
  for (int d = 0; d < kLanes; d += 8) {
    const V q = d + 8 <= kPulsePlaces ? load(autocorr + d) : _mm_srli_si128(load(autocorr + kPulsePlaces - 8), 4);
    const V low = _mm_slli_epi32(mulLow(q, factor), 1), high = _mm_slli_epi32(mulHigh(q, factor), 1);
    store(centre + d, low);
    store(centre + d + 4, high);
    store(centre - d - 3, _mm_shuffle_epi32(low, _MM_SHUFFLE(0, 1, 2, 3)));
    store(centre - d - 7, _mm_shuffle_epi32(high, _MM_SHUFFLE(0, 1, 2, 3)));
  }
  V bits = _mm_setzero_si128();  // of all magnitudes; that of -2^31 has the sign's
  for (int i = 0; i < kLanes; i += 4) {
    const V score = i + 4 <= kPulsePlaces ? load(scores + i) : load4(scores + i);
    bits = _mm_or_si128(bits, magnitude(score));
    store(left + i, score);
    store(taken + i, _mm_setzero_si128());
  }
  bits = _mm_or_si128(bits, _mm_shuffle_epi32(bits, _MM_SHUFFLE(1, 0, 3, 2)));
  bits = _mm_or_si128(bits, _mm_shuffle_epi32(bits, _MM_SHUFFLE(2, 3, 0, 1)));
  const Zpp64s bound = static_cast<Zpp32u>(_mm_cvtsi128_si32(bits));
  // No score can saturate when all shares together leave it within 32 bits.
  if (bound + Zpp64s{set->count - 1} * 2 * amplitude * (ownMaxAbs_16s(autocorr, kPulsePlaces) + 1) >= kMax32)
    return ownMultiPulseSet_G723_16s32s_PX(scores, autocorr, set);

  taken[kPulsePlaces] = taken[kPulsePlaces + 1] = taken[set->place[0]] = -1;
  for (int k = 1; k < set->count; ++k) {
    const V negative = _mm_set1_epi32(set->amplitude[k - 1] >> 15);
    const Zpp32s* shares = centre - set->place[k - 1];
    for (int i = 0; i < kLanes; i += 4) {
      const V signedShare = _mm_sub_epi32(_mm_xor_si128(load(shares + i), negative), negative);
      const V score = _mm_sub_epi32(load(left + i), signedShare);
      store(left + i, score);
      store(magnitudes + i, _mm_or_si128(magnitude(score), load(taken + i)));
    }
    const int next = firstLargest(magnitudes);
    taken[next] = -1;
    set->place[k] = static_cast<Zpp16s>(next);
    set->amplitude[k] = left[next] < 0 ? static_cast<Zpp16s>(-amplitude) : amplitude;
  }
}

Zpp32s ownMultiPulseFit_G723_16s32s_W7(const Zpp16s* target, const Zpp16s* response, int grid, const PulseSet* set) {
  constexpr int kPadded = 64;
  // The response behind zeros, so that it may be delayed; what lies behind the subframe does not count.
  alignas(16) Zpp16s delayed[2 * kPadded];
  for (int n = 0; n < kPadded; n += 8) store(delayed + n, _mm_setzero_si128());
  Zpp16s* const start = delayed + kPadded;
  for (int n = 0; n < kSubframe - 4; n += 8) store(start + n, load(response + n));
  store(start + kSubframe - 4, load4(response + kSubframe - 4));
  Zpp64s loudness = 0;
  for (int k = 0; k < set->count; ++k) loudness += std::abs(set->amplitude[k]);
  // With sums below 2^30 none of the doubled ones saturates.
  if (loudness * (ownMaxAbs_16s(response, kSubframe) + 1) >= 1 << 30)
    return ownMultiPulseFit_G723_16s32s_PX(target, response, grid, set);

  const Zpp16s* from[kMaxPulses];
  V factors[kMaxPulses / 2];
  for (int k = 0; k < kMaxPulses; ++k) from[k] = k < set->count ? start - 2 * set->place[k] - grid : delayed;
  for (int k = 0; k < kMaxPulses; k += 2)
    factors[k / 2] = pairOf(k < set->count ? set->amplitude[k] : 0, k + 1 < set->count ? set->amplitude[k + 1] : 0);
  alignas(16) Zpp16s filtered[kPadded];
  V fits = _mm_setzero_si128(), bounds = fits;
  for (int n = 0; n < kPadded; n += 8) {
    V low = _mm_setzero_si128(), high = low;
    for (int k = 0; k < kMaxPulses; k += 2) {
      const V a = load(from[k] + n), b = load(from[k + 1] + n);
      low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(a, b), factors[k / 2]));
      high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(a, b), factors[k / 2]));
    }
    // The upper half of four times the doubled sum, limited
    V y = _mm_packs_epi32(_mm_srai_epi32(low, 13), _mm_srai_epi32(high, 13));
    V t = n + 8 <= kSubframe ? load(target + n) : load4(target + n);
    if (n + 8 > kSubframe) y = _mm_unpacklo_epi64(y, _mm_setzero_si128());
    store(filtered + n, y);
    const V yy = _mm_madd_epi16(y, y), tt = _mm_madd_epi16(t, t);
    fits = _mm_add_epi32(fits, _mm_sub_epi32(_mm_slli_epi32(_mm_madd_epi16(t, y), 1), yy));
    // Each doubled product is at most the sum of its factors' squares: t t + 2 y y, in units of 32, bounds every partial sum.
    const V twice = _mm_srli_epi32(yy, 4), once = _mm_srli_epi32(tt, 5);
    bounds = _mm_add_epi32(bounds, _mm_add_epi32(twice, once));
  }
  // Eight times two shares of 2^27 and less in each lane: modulo 2^32 they are whole.
  alignas(16) Zpp32u lanes[4];
  store(lanes, bounds);
  const Zpp64s bound = Zpp64s{lanes[0]} + lanes[1] + lanes[2] + lanes[3] + 2 * kSubframe;
  if (bound < 1 << 26) return sumLanes32(fits);
  Zpp32s fit = 0;
  for (int n = 0; n < kSubframe; ++n) {
    fit = macDbl(fit, target[n], filtered[n]);
    fit = subSat32(fit, mulDbl(filtered[n], filtered[n]) >> 1);
  }
  return fit;
}
