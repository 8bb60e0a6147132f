// Recursive filters of a subframe: SSE2 kernels.
//
// A filter is computed in passes over the subframe, in half of the standard's doubled sums and modulo 2^32. Afterwards the
// largest magnitudes of the signals tell whether any step may have saturated; then the portable kernel does it all again. If
// none can have with these results, none has: what precedes the first saturation is exact, and so is all that follows.
#include <cstdlib>

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"
#include "g723/arithmetic.h"
#include "g723/filters/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kBlocks = 8;                  // of eight samples, the last four of which do not count
constexpr Zpp64s kLimit = Zpp64s{1} << 30;  // of half sums

// A subframe behind its delay line, oldest first
struct Line {
  static constexpr int kPast = 16;

  explicit Line(const Zpp16s* memory) {
    for (int j = 0; j < kOrder; ++j) all[kPast - 1 - j] = memory[j];
    store(all + kPast + kSubframe - 4, _mm_setzero_si128());
  }
  Line(const Zpp16s* memory, const Zpp16s* samples) : Line(memory) {
    for (int n = 0; n < kSubframe - 4; n += 8) store(all + kPast + n, load(samples + n));
    store4(all + kPast + kSubframe - 4, load4(samples + kSubframe - 4));
  }
  void save(Zpp16s* memory) const {
    for (int j = 0; j < kOrder; ++j) memory[j] = all[kPast + kSubframe - 1 - j];
  }
  Zpp16s* samples() { return all + kPast; }
  Zpp64s largest() const { return Zpp64s{ownMaxAbs_16s(all + kPast - kOrder, kOrder + kSubframe)} + 1; }

  alignas(16) Zpp16s all[kPast + 8 * kBlocks];
};

struct Sums {
  Zpp32s operator[](int n) const { return half[n]; }

  alignas(16) Zpp32s half[8 * kBlocks];
};

Zpp64s magnitudes(const Zpp16s* coefficients) {
  Zpp64s sum = 0;
  for (int j = 0; j < kOrder; ++j) sum += std::abs(coefficients[j]);
  return sum;
}

// sums = samples << shift
void begin(const Zpp16s* samples, int shift, Sums& sums) {
  const V count = _mm_cvtsi32_si128(16 - shift), zero = _mm_setzero_si128();
  for (int n = 0; n < 8 * kBlocks; n += 8) {
    const V x = load(samples + n);
    store(sums.half + n, _mm_sra_epi32(_mm_unpacklo_epi16(zero, x), count));
    store(sums.half + n + 4, _mm_sra_epi32(_mm_unpackhi_epi16(zero, x), count));
  }
}

// sums = (sums - the products of the past samples with the zeros) << extraBit
void subtractZeros(const Zpp16s* zeros, const Zpp16s* samples, int extraBit, Sums& sums) {
  const V pairs[] = {pairOf(zeros[0], zeros[1]), pairOf(zeros[2], zeros[3]), pairOf(zeros[4], zeros[5]),
                     pairOf(zeros[6], zeros[7]), pairOf(zeros[8], zeros[9])};
  const V count = _mm_cvtsi32_si128(extraBit);
  for (int n = 0; n < 8 * kBlocks; n += 8) {
    V low = load(sums.half + n), high = load(sums.half + n + 4);
    for (int j = 0; j < kOrder / 2; ++j) {
      const V latest = load(samples + n - 1 - 2 * j), before = load(samples + n - 2 - 2 * j);
      low = _mm_sub_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(latest, before), pairs[j]));
      high = _mm_sub_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(latest, before), pairs[j]));
    }
    store(sums.half + n, _mm_sll_epi32(low, count));
    store(sums.half + n + 4, _mm_sll_epi32(high, count));
  }
}

// sums += the products of the past outputs with the poles, sample by sample; each sum is the next output, rounded. The outputs
// are computed four at a time: older ones enter all four by pmaddwd, the latest ones one by one.
void recurse(const Zpp16s* poles, Sums& sums, Zpp16s* outputs) {
  alignas(16) Zpp16s c[16] = {};
  for (int j = 0; j < kOrder; ++j) c[j] = poles[j];
  const auto factors = [&c](int j) { return _mm_unpacklo_epi16(load4(c + j), load4(c + j - 1)); };
  const V factor4 = factors(3), factor6 = factors(5), factor8 = factors(7), factor10 = factors(9);
  const Zpp32s c1 = c[0], c2 = c[1], c3 = c[2], c4 = c[3], c5 = c[4];
  const auto pair = [outputs](int n) { return pairOf(outputs[n], outputs[n + 1]); };
  V pair4 = pair(-4), pair6 = pair(-6), pair8 = pair(-8), pair10 = pair(-10);
  Zpp32s y2 = outputs[-2], y1 = outputs[-1];
  const auto rounded = [](Zpp32s sum) {
    const Zpp32s y = addWrap32(sum, 1 << 12) >> 13;
    return y == static_cast<Zpp16s>(y) ? y : Zpp32s{sat16(y)};
  };
  const auto plus = [](Zpp32s sum, auto... products) {
    ((sum = addWrap32(sum, products)), ...);
    return sum;
  };
  for (int n = 0; n < kSubframe; n += 4) {
    V older = _mm_add_epi32(_mm_madd_epi16(pair10, factor10), _mm_madd_epi16(pair8, factor8));
    older = _mm_add_epi32(older, _mm_add_epi32(_mm_madd_epi16(pair6, factor6), _mm_madd_epi16(pair4, factor4)));
    Zpp32s* s = sums.half + n;
    store(s, _mm_add_epi32(load(s), older));
    s[0] = plus(s[0], c2 * y2, c1 * y1);
    const Zpp32s z0 = rounded(s[0]);
    s[1] = plus(s[1], c3 * y2, c2 * y1, c1 * z0);
    const Zpp32s z1 = rounded(s[1]);
    s[2] = plus(s[2], c4 * y2, c3 * y1, c2 * z0, c1 * z1);
    const Zpp32s z2 = rounded(s[2]);
    s[3] = plus(s[3], c5 * y2, c4 * y1, c3 * z0, c2 * z1, c1 * z2);
    const Zpp32s z3 = rounded(s[3]);
    outputs[n] = low16(z0);
    outputs[n + 1] = low16(z1);
    outputs[n + 2] = low16(z2);
    outputs[n + 3] = low16(z3);
    pair10 = pair6;
    pair8 = pair4;
    pair6 = pairOf(y2, y1);
    pair4 = pairOf(z0, z1);
    y2 = z2;
    y1 = z3;
  }
}

void copySubframe(const Zpp16s* samples, Zpp16s* dst) {
  for (int n = 0; n < kSubframe - 4; n += 8) store(dst + n, load(samples + n));
  store4(dst + kSubframe - 4, load4(samples + kSubframe - 4));
}

}  // namespace

void ownSynthesisFilter_G723_16s_I_W7(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory) {
  Line outputs(memory, srcDst);
  Sums sums;
  begin(outputs.samples(), 12, sums);
  recurse(lpc, sums, outputs.samples());
  if ((1 << 27) + magnitudes(lpc) * outputs.largest() >= kLimit) return ownSynthesisFilter_G723_16s_I_PX(lpc, srcDst, memory);
  copySubframe(outputs.samples(), srcDst);
  outputs.save(memory);
}

void ownPoleZeroFilter_G723_16s_I_W7(const Zpp16s* zeros, const Zpp16s* poles, Zpp16s tilt, Zpp16s* srcDst, Zpp16s* memory) {
  Line inputs(memory, srcDst), outputs(memory + kOrder);
  Sums sums;
  begin(inputs.samples(), 13, sums);
  subtractZeros(zeros, inputs.samples(), 0, sums);
  recurse(poles, sums, outputs.samples());
  const Zpp64s largestInput = inputs.largest(), largestOutput = outputs.largest();
  // Nor may an output have been limited, from the full sum of which the tilt starts.
  if (largestInput * ((1 << 13) + magnitudes(zeros)) + magnitudes(poles) * largestOutput >= kLimit || largestOutput > kMax16)
    return ownPoleZeroFilter_G723_16s_I_PX(zeros, poles, tilt, srcDst, memory);
  inputs.save(memory);
  outputs.save(memory + kOrder);
  if (tilt == 0) return copySubframe(outputs.samples(), srcDst);
  // Sums below 2^28, products below 2^27
  const V factor = _mm_set1_epi16(tilt), half = _mm_set1_epi32(1 << 12);
  const auto result = [&](int n, V product) {
    return _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(load(sums.half + n), half), _mm_srai_epi32(product, 2)), 13);
  };
  for (int n = 0; n < 8 * kBlocks; n += 8) {
    const V before = load(outputs.samples() + n - 1);
    store(inputs.samples() + n, _mm_packs_epi32(result(n, mulLow(before, factor)), result(n + 4, mulHigh(before, factor))));
  }
  copySubframe(inputs.samples(), srcDst);
}

void ownWeightedSynthesis_G723_16s_W7(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* excitation, Zpp16s* dst,
                                      Zpp16s* memory, int extraBit) {
  const Zpp16s *zeros = weighting, *poles = weighting + kOrder;
  Line synthesised(memory, excitation), weighted(memory + kOrder);
  Sums sums;
  begin(synthesised.samples(), 12, sums);
  recurse(lpc, sums, synthesised.samples());
  subtractZeros(zeros, synthesised.samples(), extraBit, sums);
  recurse(poles, sums, weighted.samples());
  const Zpp64s largest = synthesised.largest();
  // Between the filters a sum is what its output, if that was not limited, has been rounded from.
  const Zpp64s between = ((largest << 13) + magnitudes(zeros) * largest) << extraBit;
  if ((1 << 27) + magnitudes(lpc) * largest >= kLimit || largest > kMax16 ||
      between + magnitudes(poles) * weighted.largest() >= kLimit)
    return ownWeightedSynthesis_G723_16s_PX(lpc, weighting, excitation, dst, memory, extraBit);
  copySubframe(weighted.samples(), dst);
  synthesised.save(memory);
  weighted.save(memory + kOrder);
}
