// Normalised correlation of the closed-loop pitch search: SSE2 kernel.
#include <algorithm>
#include <bit>

#include "amr/pitch/kernels.h"
#include "amr/pitch/pitch_correlation.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

void ownNormCorr_GSMAMR_16s_W7(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag,
                               Zpp16s* corr) {
  constexpr int kVectors = kSubframe / 8;
  alignas(16) Zpp16s filtered[kSubframe];
  ownFilteredExcitation_GSMAMR_16s(excitation, minLag, impulse, filtered);
  const bool loud = isLoud(filtered);
  const int shift = loud ? 14 : 12;
  // Products with the new samples are shifted right by 12 or 14 bits: pmulhw does it by 16 where the factors have room to be
  // shifted left by the rest; they are then so small that nothing saturates.
  const auto room = [](const Zpp16s* x, int len) { return norm16(ownMaxAbs_16s(x, len)); };
  const int responseBits = std::min(room(impulse, kSubframe), 16 - shift), sampleBits = 16 - shift - responseBits;
  const bool roomy = room(excitation - maxLag, maxLag - minLag + 1) >= sampleBits;
  const V filteredBits = _mm_cvtsi32_si128(loud ? 2 : 0), impulseBits = _mm_cvtsi32_si128(roomy ? responseBits : 0);
  V f[kVectors], h[kVectors], x[kVectors];
  unrolled<kVectors>([&](int i) {
    f[i] = _mm_sra_epi16(load(filtered + 8 * i), filteredBits);
    h[i] = _mm_sll_epi16(load(impulse + 8 * i), impulseBits);
    x[i] = load(target + 8 * i);
  });

  // Ten squares of magnitudes up to 14653 fit 32 bits. No sum of products with the target exceeds the root of the product of
  // the two energies, so below 2^60 no step of the standard's sum can saturate. Beyond either limit all is computed step by
  // step.
  constexpr Zpp16s kLargest = 14653;
  const auto targetEnergy = static_cast<std::uint64_t>(ownDotProd_16s(target, target, kSubframe));
  const auto energyLimit = static_cast<Zpp64s>(std::uint64_t{1} << (60 - std::bit_width(targetEnergy)));
  V largest = _mm_setzero_si128(), smallest = largest;
  const V count = _mm_cvtsi32_si128(shift);
  for (int lag = minLag;; ++lag) {
    V squares = _mm_setzero_si128(), products = squares;
    unrolled<kVectors>([&](int i) {
      largest = _mm_max_epi16(largest, f[i]);
      smallest = _mm_min_epi16(smallest, f[i]);
      squares = _mm_add_epi32(squares, _mm_madd_epi16(f[i], f[i]));
      products = _mm_add_epi32(products, _mm_madd_epi16(f[i], x[i]));
    });
    const Zpp64s energy = sumLanes64(addUnsigned64(squares));
    if (energy >= energyLimit) break;
    // Beyond the limit on magnitudes the sums may wrap; their results are not kept.
    corr[lag - minLag] = normalisedCorrelation(wrap32(Zpp64s{2} * sumLanes32(products)), sat32(2 * energy));
    if (lag == maxLag) {
      const V beyond = _mm_or_si128(_mm_cmpgt_epi16(largest, _mm_set1_epi16(kLargest)),
                                    _mm_cmpgt_epi16(_mm_set1_epi16(-kLargest), smallest));
      if (_mm_movemask_epi8(beyond) != 0) break;
      return;
    }
    // One sample further back: the filtered excitation moves on and the response to the new sample is added.
    const Zpp16s sample = excitation[-lag - 1];
    const V factor = _mm_set1_epi16(static_cast<Zpp16s>(roomy ? sample * (1 << sampleBits) : sample));
    const auto moveOn = [&](auto response) {
      unrolled<kVectors>([&](auto k) {
        constexpr int i = kVectors - 1 - decltype(k)::value;
        const V moved = _mm_slli_si128(f[i], 2);
        f[i] = _mm_adds_epi16(i > 0 ? _mm_or_si128(moved, _mm_srli_si128(f[i > 0 ? i - 1 : 0], 14)) : moved, response(h[i]));
      });
    };
    if (roomy)
      moveOn([&](V of) { return _mm_mulhi_epi16(factor, of); });
    else
      moveOn([&](V of) {
        return _mm_packs_epi32(_mm_sra_epi32(mulLow(factor, of), count), _mm_sra_epi32(mulHigh(factor, of), count));
      });
    f[0] = _mm_insert_epi16(f[0], loud ? sample >> 2 : sample, 0);
  }
  ownNormCorr_GSMAMR_16s_PX(excitation, target, impulse, minLag, maxLag, corr);
}
