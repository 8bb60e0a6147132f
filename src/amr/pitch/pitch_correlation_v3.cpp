// Normalised correlation of the closed-loop pitch search: AVX2 kernel.
#include <algorithm>
#include <bit>

#include "amr/pitch/kernels.h"
#include "amr/pitch/pitch_correlation.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_v3.h"
#include "core/tables.h"

using namespace zpp;

namespace {

// ownInvSqrt of eight numbers, none negative
W inverseRoots(W x) {
  // The highest bit of each, by conversion to floating point; the bit below it is cleared, so that nothing is rounded up.
  const W bits = _mm256_castps_si256(_mm256_cvtepi32_ps(_mm256_andnot_si256(_mm256_srli_epi32(x, 1), x)));
  const W highest = _mm256_sub_epi32(_mm256_srli_epi32(bits, 23), _mm256_set1_epi32(127));
  const W odd = _mm256_and_si256(highest, _mm256_set1_epi32(1));
  const W normalised = _mm256_sllv_epi32(x, _mm256_sub_epi32(_mm256_set1_epi32(30), highest));
  const W mantissa = _mm256_srlv_epi32(normalised, _mm256_xor_si256(odd, _mm256_set1_epi32(1)));
  const W index = _mm256_sub_epi32(_mm256_srli_epi32(mantissa, 25), _mm256_set1_epi32(16));
  const W fraction = _mm256_and_si256(_mm256_srli_epi32(mantissa, 10), _mm256_set1_epi32(0x7fff));
  // An entry (low) and the next, which is smaller; entry 0 for numbers of 0
  const W isZero = _mm256_cmpeq_epi32(x, _mm256_setzero_si256());
  const W entries = _mm256_i32gather_epi32(reinterpret_cast<const int*>(tabsqr), _mm256_andnot_si256(isZero, index), 2);
  const W difference = _mm256_madd_epi16(entries, _mm256_set1_epi32(-65536 + 1));
  const W root =
      _mm256_sub_epi32(_mm256_slli_epi32(entries, 16), _mm256_slli_epi32(_mm256_madd_epi16(fraction, difference), 1));
  const W scaled = _mm256_srlv_epi32(root, _mm256_add_epi32(_mm256_srli_epi32(highest, 1), _mm256_set1_epi32(1)));
  return _mm256_blendv_epi8(scaled, _mm256_set1_epi32(0x3fffffff), isZero);
}

// normalisedCorrelation of eight
V normalisedCorrelations(W products, W energies) {
  const W roots = inverseRoots(energies), lowMask = _mm256_set1_epi32(0x7fff);
  const W upper1 = _mm256_srli_epi32(products, 16), upper2 = _mm256_srli_epi32(roots, 16);
  const W lower1 = _mm256_and_si256(_mm256_srli_epi32(products, 1), lowMask);
  const W lower2 = _mm256_and_si256(_mm256_srli_epi32(roots, 1), lowMask);
  const W crossed = _mm256_add_epi32(_mm256_srai_epi32(_mm256_madd_epi16(upper1, lower2), 15),
                                     _mm256_srai_epi32(_mm256_madd_epi16(lower1, upper2), 15));
  const W sum = _mm256_slli_epi32(_mm256_add_epi32(_mm256_madd_epi16(upper1, upper2), crossed), 1);
  return _mm_packs_epi32(lowHalf(sum), highHalf(sum));
}

}  // namespace

void ownNormCorr_GSMAMR_16s_V3(const Zpp16s* excitation, const Zpp16s* target, const Zpp16s* impulse, int minLag, int maxLag,
                               Zpp16s* corr) {
  constexpr int kVectors = 3, kLanes = 16, kTogether = 8;
  alignas(32) Zpp16s filtered[kVectors * kLanes] = {};
  ownFilteredExcitation_GSMAMR_16s(excitation, minLag, impulse, filtered);
  const bool loud = isLoud(filtered);
  const int shift = loud ? 14 : 12;
  // Products with the new samples are shifted right by 12 or 14 bits: vpmulhw does it by 16 where the factors have room to be
  // shifted left by the rest; they are then so small that nothing saturates.
  const auto room = [](const Zpp16s* x, int len) { return norm16(ownMaxAbs_16s(x, len)); };
  const int responseBits = std::min(room(impulse, kSubframe), 16 - shift), sampleBits = 16 - shift - responseBits;
  const auto targetEnergy = static_cast<std::uint64_t>(ownDotProd_16s(target, target, kSubframe));
  if (room(excitation - maxLag, maxLag - minLag + 1) < sampleBits)
    return ownNormCorr_GSMAMR_16s_W7(excitation, target, impulse, minLag, maxLag, corr);
  const V filteredBits = _mm_cvtsi32_si128(loud ? 2 : 0), impulseBits = _mm_cvtsi32_si128(responseBits);
  // Forty elements, and eight zeros behind
  const auto loaded = [](const Zpp16s* p, int i) {
    return i < 2 ? loadWide(p + kLanes * i) : joined(load(p + 2 * kLanes), _mm_setzero_si128());
  };
  W f[kVectors], h[kVectors], x[kVectors];
  unrolled<kVectors>([&](int i) __attribute__((always_inline)) {
    f[i] = _mm256_sra_epi16(loaded(filtered, i), filteredBits);
    h[i] = _mm256_sll_epi16(loaded(impulse, i), impulseBits);
    x[i] = loaded(target, i);
  });

  // As in the SSE2 kernel: ten squares of magnitudes up to 14653 fit 32 bits, and below 2^60 no step of the standard's sum of
  // products can saturate.
  constexpr Zpp16s kLargest = 14653;
  const auto energyLimit = static_cast<Zpp64s>(std::uint64_t{1} << (60 - std::bit_width(targetEnergy)));
  const W forty = joined(_mm_set1_epi16(-1), _mm_setzero_si128());
  W largest = _mm256_setzero_si256(), smallest = largest;
  alignas(32) Zpp32s energies[kTogether] = {}, products[kTogether] = {};
  for (int lag = minLag, n = 0;; ++lag) {
    W squares = _mm256_setzero_si256(), sums = squares;
    unrolled<kVectors>([&](int i) __attribute__((always_inline)) {
      largest = _mm256_max_epi16(largest, f[i]);
      smallest = _mm256_min_epi16(smallest, f[i]);
      squares = _mm256_add_epi32(squares, _mm256_madd_epi16(f[i], f[i]));
      sums = _mm256_add_epi32(sums, _mm256_madd_epi16(f[i], x[i]));
    });
    const Zpp64s energy = sumLanes64(addUnsigned64(_mm_add_epi32(lowHalf(squares), highHalf(squares))));
    if (energy >= energyLimit) break;
    // Beyond the limit on magnitudes the sums may wrap; their results are not kept.
    energies[n] = sat32(2 * energy);
    products[n] = wrap32(Zpp64s{2} * sumLanes32(_mm_add_epi32(lowHalf(sums), highHalf(sums))));
    if (++n == kTogether || lag == maxLag) {
      alignas(16) Zpp16s found[kTogether];
      store(found, normalisedCorrelations(loadWide(products), loadWide(energies)));
      std::copy_n(found, n, corr + lag + 1 - n - minLag);
      n = 0;
    }
    if (lag == maxLag) {
      const W beyond = _mm256_or_si256(_mm256_cmpgt_epi16(largest, _mm256_set1_epi16(kLargest)),
                                       _mm256_cmpgt_epi16(_mm256_set1_epi16(-kLargest), smallest));
      if (_mm256_testz_si256(beyond, beyond) == 0) break;
      return;
    }
    // One sample further back: the filtered excitation moves on and the response to the new sample is added.
    const Zpp16s sample = excitation[-lag - 1];
    const W factor = _mm256_set1_epi16(static_cast<Zpp16s>(sample * (1 << sampleBits)));
    unrolled<kVectors>([&](auto k) __attribute__((always_inline)) {
      constexpr int i = kVectors - 1 - decltype(k)::value;
      const W before =
          i > 0 ? _mm256_permute2x128_si256(f[i > 0 ? i - 1 : 0], f[i], 0x21) : _mm256_permute2x128_si256(f[0], f[0], 0x08);
      f[i] = _mm256_adds_epi16(_mm256_alignr_epi8(f[i], before, 14), _mm256_mulhi_epi16(factor, h[i]));
    });
    f[kVectors - 1] = _mm256_and_si256(f[kVectors - 1], forty);
    f[0] = _mm256_insert_epi16(f[0], loud ? sample >> 2 : sample, 0);
  }
  ownNormCorr_GSMAMR_16s_PX(excitation, target, impulse, minLag, maxLag, corr);
}
