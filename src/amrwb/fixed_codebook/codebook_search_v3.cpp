// Search of the algebraic codebook: AVX2 kernels.
#include <bit>

#include "amrwb/arithmetic.h"
#include "amrwb/fixed_codebook/kernels.h"
#include "amrwb/fixed_codebook/lead_w7.h"
#include "core/simd_v3.h"

using namespace zpp;
using namespace zpp::amrwb;

void ownPulseGains_AMRWB_16s_V3(const Zpp16s* impulse, const Zpp16s* filteredCode, const PulseTarget* target, int track,
                                Zpp16s* gain, bool exact) {
  if (!exact) return ownPulseGains_AMRWB_16s_PX(impulse, filteredCode, target, track, gain, exact);
  constexpr int lanes = 16;
  alignas(32) Zpp16s code[2 * kSubframe];  // silence follows
  for (int n = 0; n < kSubframe; n += lanes) {
    storeWide(code + n, loadWide(filteredCode + n));
    storeWide(code + kSubframe + n, _mm256_setzero_si256());
  }
  W response[4];
  unrolled<4>([&](int i) __attribute__((always_inline)) { response[i] = loadWide(impulse + lanes * i); });
  for (int k = 0; k < 2; ++k) {
    const int t = (track + k) % 4;
    V sums[4];
    unrolled<4>([&](auto quarter) __attribute__((always_inline)) {
      // Four positions; the response to the last of them ends after 64 - 16 quarter samples.
      const Zpp16s* const from = code + 16 * quarter + t;
      W of[4];
      unrolled<4>([&](int i) __attribute__((always_inline)) {
        of[i] = _mm256_madd_epi16(response[0], loadWide(from + 4 * i));
        unrolled<3 - quarter>([&](int n) __attribute__((always_inline)) {
          const W samples = loadWide(from + lanes * (n + 1) + 4 * i);
          of[i] = _mm256_add_epi32(of[i], _mm256_madd_epi16(response[n + 1], samples));
        });
      });
      // The saturated rounding of four times the sum is that of packing.
      sums[quarter] = _mm_srai_epi32(_mm_add_epi32(sumsOfLanes32(of[0], of[1], of[2], of[3]), _mm_set1_epi32(0x2000)), 14);
    });
    for (int half = 0; half < 2; ++half) {
      const V product = mulQ15(_mm_packs_epi32(sums[2 * half], sums[2 * half + 1]), load(target->sign + 16 * t + 8 * half));
      store(gain + 16 * k + 8 * half, _mm_adds_epi16(product, load(target->energy + 16 * t + 8 * half)));
    }
  }
}

PulsePair ownSearchPulsePair_AMRWB_16s_V3(const PulseTarget* target, int track, Zpp16s corr, Zpp16s energy, const Zpp16s* gain,
                                          const Zpp16s* candidate) {
  // The three terms that are added to the energy stay below 2^30 together.
  if (energy >= 16383 || energy <= -16383) return ownSearchPulsePair_AMRWB_16s_PX(target, track, corr, energy, gain, candidate);
  const W corr2 = loadWide(target->corr + 16 * ((track + 1) % 4)), gain2 = loadWide(gain + 16);
  const W zero = _mm256_setzero_si256(), weights = _mm256_set1_epi32(8192 << 16 | 16384);  // of a cross term and of a gain
  alignas(32) Zpp16s partCorr[16];
  alignas(32) Zpp32s partEnergy[16];
  storeWide(partCorr, _mm256_adds_epi16(_mm256_set1_epi16(corr), loadWide(target->corr + 16 * track)));
  const W base = _mm256_set1_epi32(energy * 65536 + 0x8000);
  for (int i = 0; i < 16; i += 8)
    storeWide(partEnergy + i, _mm256_add_epi32(base, _mm256_slli_epi32(_mm256_cvtepi16_epi32(load(gain + i)), 13)));

  // The lanes are the second pulse's positions. Each keeps its best ratio as (energy, -square), and the row that it lies in.
  W low = _mm256_set1_epi32(0x00010001), high = low, row = zero, least = low;
  auto rows = ~static_cast<unsigned>(_mm256_movemask_epi8(_mm256_cmpeq_epi16(loadWide(candidate), zero))) & 0x55555555;
  for (; rows != 0; rows &= rows - 1) {
    const int i = std::countr_zero(rows) / 2;
    const W sum = _mm256_adds_epi16(_mm256_set1_epi16(partCorr[i]), corr2), cross = loadWide(target->cross[track] + 16 * i);
    const W part = _mm256_set1_epi32(partEnergy[i]);
    const W alpLow = _mm256_add_epi32(part, _mm256_madd_epi16(_mm256_unpacklo_epi16(cross, gain2), weights));
    const W alpHigh = _mm256_add_epi32(part, _mm256_madd_epi16(_mm256_unpackhi_epi16(cross, gain2), weights));
    const W alp = _mm256_packs_epi32(_mm256_srai_epi32(alpLow, 16), _mm256_srai_epi32(alpHigh, 16));
    least = _mm256_min_epi16(least, alp);
    const W square = mulQ15(sum, sum), minus = _mm256_sub_epi16(zero, square);
    const auto replace = [&](W & best, W ratio, W replacement) __attribute__((always_inline)) {
      const W better = _mm256_cmpgt_epi32(_mm256_madd_epi16(ratio, best), zero);
      best = _mm256_xor_si256(best, _mm256_and_si256(better, _mm256_xor_si256(best, replacement)));
      return better;
    };
    const W betterLow = replace(low, _mm256_unpacklo_epi16(square, alp), _mm256_unpacklo_epi16(alp, minus));
    const W betterHigh = replace(high, _mm256_unpackhi_epi16(square, alp), _mm256_unpackhi_epi16(alp, minus));
    const W better = _mm256_packs_epi32(betterLow, betterHigh);
    row = _mm256_max_epi16(row, _mm256_and_si256(better, _mm256_set1_epi16(static_cast<Zpp16s>(i))));
  }
  // With energies above 0 ratios can be put in order, so that lanes may be compared in any.
  if (_mm256_movemask_epi8(_mm256_cmpgt_epi16(_mm256_set1_epi16(1), least)) != 0)
    return ownSearchPulsePair_AMRWB_16s_PX(target, track, corr, energy, gain, candidate);

  const W place =
      _mm256_or_si256(_mm256_slli_epi16(row, 4), _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
  Lead first = {lowHalf(low), lowHalf(_mm256_unpacklo_epi16(place, zero))};
  Lead second = {lowHalf(high), lowHalf(_mm256_unpackhi_epi16(place, zero))};
  first.meet({highHalf(low), highHalf(_mm256_unpacklo_epi16(place, zero))});
  second.meet({highHalf(high), highHalf(_mm256_unpackhi_epi16(place, zero))});
  first.meet(second);
  return first.found();
}
