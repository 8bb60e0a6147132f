// Search of the algebraic codebook: AVX2 kernels.
#include "amrwb/arithmetic.h"
#include "amrwb/fixed_codebook/kernels.h"
#include "amrwb/fixed_codebook/search.h"
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

namespace {

W wideFactors(const BestRatio& ratio) {
  return _mm256_set1_epi32(static_cast<int>(static_cast<Zpp32u>(-ratio.square) << 16 | (ratio.energy & 0xffff)));
}

}  // namespace

PulsePair ownSearchPulsePair_AMRWB_16s_V3(const PulseTarget* target, int track, Zpp16s corr, Zpp16s energy, const Zpp16s* gain,
                                          const Zpp16s* candidate) {
  // The three terms that are added to the energy stay below 2^30 together.
  if (energy >= 16383 || energy <= -16383) return ownSearchPulsePair_AMRWB_16s_PX(target, track, corr, energy, gain, candidate);
  const Zpp16s* const corr1 = target->corr + 16 * track;
  const W corr2 = loadWide(target->corr + 16 * ((track + 1) % 4)), gain2 = loadWide(gain + 16), zero = _mm256_setzero_si256();
  // Gains times 2^13
  const W gain2Low = _mm256_srai_epi32(_mm256_unpacklo_epi16(zero, gain2), 3),
          gain2High = _mm256_srai_epi32(_mm256_unpackhi_epi16(zero, gain2), 3);
  PulsePair best = {0, 0, 1};
  BestRatio ratio;
  W factors = wideFactors(ratio), least = _mm256_set1_epi16(1);
  for (int i = 0; i < 16; ++i) {
    if (!candidate[i]) continue;
    const W sum = _mm256_adds_epi16(_mm256_set1_epi16(addSat16(corr, corr1[i])), corr2);
    const W cross = loadWide(target->cross[track] + 16 * i);
    const W partEnergy = _mm256_set1_epi32(energy * 65536 + 0x8000 + gain[i] * 8192);
    const W low =
        _mm256_add_epi32(_mm256_add_epi32(partEnergy, gain2Low), _mm256_srai_epi32(_mm256_unpacklo_epi16(zero, cross), 2));
    const W high =
        _mm256_add_epi32(_mm256_add_epi32(partEnergy, gain2High), _mm256_srai_epi32(_mm256_unpackhi_epi16(zero, cross), 2));
    const W alp = _mm256_packs_epi32(_mm256_srai_epi32(low, 16), _mm256_srai_epi32(high, 16));
    const W square = mulQ15(sum, sum);
    least = _mm256_min_epi16(least, alp);
    // Sixteen candidates against the best so far, and those that pass in turn against better ones
    const W better = _mm256_cmpgt_epi16(_mm256_packs_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(square, alp), factors),
                                                           _mm256_madd_epi16(_mm256_unpackhi_epi16(square, alp), factors)),
                                        zero);
    const auto passing = static_cast<unsigned>(_mm256_movemask_epi8(better)) & 0x55555555;
    if (passing == 0) continue;
    alignas(32) Zpp16s squares[16], alps[16];
    storeWide(squares, square);
    storeWide(alps, alp);
    ratio.play(passing, squares, alps, [&](int j) { best = {static_cast<Zpp16s>(i), static_cast<Zpp16s>(j), ratio.energy}; });
    factors = wideFactors(ratio);
  }
  // With energies above 0 ratios can be put in order, so that what fails against a candidate fails against better ones too.
  if (_mm256_movemask_epi8(_mm256_cmpgt_epi16(_mm256_set1_epi16(1), least)) != 0)
    return ownSearchPulsePair_AMRWB_16s_PX(target, track, corr, energy, gain, candidate);
  return best;
}
