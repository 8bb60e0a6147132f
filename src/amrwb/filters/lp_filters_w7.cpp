// LP residual and synthesis filters: SSE2 kernels.
//
// All compute in 32 bits what the standard computes with saturation at every step, so each first bounds its partial sums: the
// magnitudes of the coefficients times the largest sample.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "amrwb/filters/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;
using amrwb::kOrder;

namespace {

int magnitudesOf(const Zpp16s* coef, int count) {
  int sum = 0;
  for (int i = 0; i < count; ++i) sum += std::abs(coef[i]);
  return sum;
}

// The largest magnitude of the eight lanes
int largestMagnitude(V greatest, V least) {
  // -32768 has no positive counterpart: ~x is one less than -x.
  V v = _mm_max_epi16(greatest, _mm_xor_si128(least, _mm_set1_epi16(-1)));
  v = _mm_max_epi16(v, _mm_srli_si128(v, 8));
  v = _mm_max_epi16(v, _mm_srli_si128(v, 4));
  v = _mm_max_epi16(v, _mm_srli_si128(v, 2));
  return static_cast<Zpp16s>(_mm_cvtsi128_si32(v)) + 1;
}

}  // namespace

void ownResidualFilter_AMRWB_16s_W7(const Zpp16s* lpc, const Zpp16s* src, Zpp16s* dst, int len) {
  constexpr int lanes = 8;
  const int harmless = ((1 << 30) - 1) / std::max(1, magnitudesOf(lpc, kOrder + 1));
  const V taps[2] = {reversed(load(lpc + 9)), reversed(load(lpc + 1))};  // of src[n - 16..n - 9] and src[n - 8..n - 1]
  const V first = _mm_set1_epi16(lpc[0]), half = _mm_set1_epi32(1 << 10);
  const auto past = [&](const Zpp16s* x) {
    return _mm_add_epi32(_mm_madd_epi16(load(x - 16), taps[0]), _mm_madd_epi16(load(x - 8), taps[1]));
  };
  int n = 0;
  for (; n + lanes <= len; n += lanes) {
    const Zpp16s* const x = src + n;
    const V oldest = load(x - 16), older = load(x - 8), now = load(x);
    if (largestMagnitude(_mm_max_epi16(_mm_max_epi16(oldest, older), now), _mm_min_epi16(_mm_min_epi16(oldest, older), now)) >
        harmless) {
      ownResidualFilter_AMRWB_16s_PX(lpc, x, dst + n, lanes);
      continue;
    }
    V low = sumsOfLanes32(past(x), past(x + 1), past(x + 2), past(x + 3));
    V high = sumsOfLanes32(past(x + 4), past(x + 5), past(x + 6), past(x + 7));
    low = _mm_add_epi32(_mm_add_epi32(low, mulLow(now, first)), half);
    high = _mm_add_epi32(_mm_add_epi32(high, mulHigh(now, first)), half);
    store(dst + n, _mm_packs_epi32(_mm_srai_epi32(low, 11), _mm_srai_epi32(high, 11)));
  }
  if (n < len) ownResidualFilter_AMRWB_16s_PX(lpc, src + n, dst + n, len - n);
}

namespace {

// The recursion is serial: what counts is the path from one output to the next. Blocks of four outputs are computed in scalar
// registers from the four outputs before them; all older outputs, and the input, arrive as sums that pmaddwd adds up.
//
// Factors of a pair of past outputs in four coming ones: a pair d samples before the block, lane j holds a[d + j], a[d + j -
// 1].
struct PairFactors {
  static constexpr int mostPairs = 8;
  V factor[mostPairs];

  // Pairs 6, 8 .. samples before the block: all outputs but the latest four
  PairFactors(const Zpp16s* lpc, int order) {
    Zpp16s padded[32] = {};
    std::copy_n(lpc, order + 1, padded);
    for (int p = 0; p < (order - 4) / 2; ++p) {
      const int d = 6 + 2 * p;
      const V upper = load4(padded + d), lower = load4(padded + d - 1);
      factor[p] = _mm_unpacklo_epi16(upper, lower);
    }
  }
};

template <int order>
void synthesis(const Zpp16s* lpc, Zpp16s inputFactor, int shift, int harmless, Zpp16s* srcDst, int len, Zpp16s* mem) {
  constexpr int pairs = (order - 4) / 2;
  const PairFactors factors(lpc, order);
  const Zpp32s a1 = lpc[1], a2 = lpc[2], a3 = lpc[3], a4 = lpc[4];
  const Zpp32s a5 = lpc[5], a6 = lpc[6], a7 = lpc[7];
  const V input = _mm_set1_epi32(inputFactor & 0xffff);
  const Zpp32s half = 1 << (14 - shift);
  const int down = 15 - shift;

  V pair[pairs];  // pair p: the outputs 6 + 2p and 5 + 2p samples before the block
  for (int p = 0; p < pairs; ++p) pair[p] = pairOf(mem[order - 6 - 2 * p], mem[order - 5 - 2 * p]);
  Zpp32s y4 = mem[order - 4], y3 = mem[order - 3], y2 = mem[order - 2], y1 = mem[order - 1];

  int n = 0;
  for (; n + 4 <= len; n += 4) {
    const V x = load4(srcDst + n);
    V acc = _mm_madd_epi16(_mm_unpacklo_epi16(x, x), input);
    for (int p = 0; p < pairs; ++p) acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair[p], factors.factor[p]));
    alignas(16) Zpp32s sum[4];
    store(sum, acc);
    // Sums of outputs that turn out not to be harmless are not used: they may wrap.
    const auto out = [down](Zpp32s total) { return total >> down; };
    const auto less = [](Zpp32s total, auto... products) { return ((total = subWrap32(total, products)), ..., total); };
    const auto mul = [](Zpp32s a, Zpp32s y) { return static_cast<Zpp32s>(static_cast<Zpp32u>(a) * static_cast<Zpp32u>(y)); };
    const Zpp32s s0 = less(sum[0] + half, mul(a4, y4), mul(a3, y3), mul(a2, y2));
    const Zpp32s s1 = less(sum[1] + half, mul(a5, y4), mul(a4, y3), mul(a3, y2), mul(a2, y1));
    const Zpp32s s2 = less(sum[2] + half, mul(a6, y4), mul(a5, y3), mul(a4, y2), mul(a3, y1));
    const Zpp32s s3 = less(sum[3] + half, mul(a7, y4), mul(a6, y3), mul(a5, y2), mul(a4, y1));
    const Zpp32s z0 = out(less(s0, mul(a1, y1)));
    const Zpp32s z1 = out(less(s1, mul(a1, z0)));
    const Zpp32s z2 = out(less(s2, mul(a2, z0), mul(a1, z1)));
    const Zpp32s z3 = out(less(s3, mul(a3, z0), mul(a2, z1), mul(a1, z2)));
    const auto isLoud = [harmless](Zpp32s z) { return static_cast<Zpp32u>(z + harmless) > static_cast<Zpp32u>(2 * harmless); };
    if (isLoud(z0) || isLoud(z1) || isLoud(z2) || isLoud(z3)) [[unlikely]]
      break;
    for (int p = pairs - 1; p >= 2; --p) pair[p] = pair[p - 2];
    pair[1] = pairOf(y4, y3);
    pair[0] = pairOf(y2, y1);
    y4 = z0, y3 = z1, y2 = z2, y1 = z3;
    srcDst[n] = low16(z0);
    srcDst[n + 1] = low16(z1);
    srcDst[n + 2] = low16(z2);
    srcDst[n + 3] = low16(z3);
  }
  // The end of the signal, or of the harmless part: step by step from here on
  Zpp16s last[order];
  if (n >= order)
    std::copy_n(srcDst + n - order, order, last);
  else {
    std::copy_n(mem + n, order - n, last);
    std::copy_n(srcDst, n, last + order - n);
  }
  if (n < len) ownSynthesisFilter_AMRWB_16s_I_PX(lpc, order, inputFactor, shift, srcDst + n, len - n, last);
  std::copy_n(last, order, mem);
}

}  // namespace

void ownSynthesisFilter_AMRWB_16s_I_W7(const Zpp16s* lpc, int order, Zpp16s inputFactor, int shift, Zpp16s* srcDst, int len,
                                       Zpp16s* mem) {
  // With past outputs within +-harmless, and the four new ones that are kept, no partial sum leaves 31 bits.
  const Zpp64s room = (Zpp64s{1} << 30) - (1 << 15) - Zpp64s{ownMaxAbs_16s(srcDst, len) + 1} * std::abs(inputFactor);
  const int harmless = room < 0 ? -1 : static_cast<int>(std::min<Zpp64s>(32766, room / (magnitudesOf(lpc + 1, order) + 1)));
  if (shift > 14 || ownMaxAbs_16s(mem, order) >= harmless)
    return ownSynthesisFilter_AMRWB_16s_I_PX(lpc, order, inputFactor, shift, srcDst, len, mem);
  if (order == kOrder)
    synthesis<16>(lpc, inputFactor, shift, harmless, srcDst, len, mem);
  else
    synthesis<20>(lpc, inputFactor, shift, harmless, srcDst, len, mem);
}

void ownSynthesisFilter_AMRWB_16s32s_W7(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale) {
  constexpr int pairs = (kOrder - 4) / 2;
  const int shift = norm16(lpc[0]) + 1, magnitudes = magnitudesOf(lpc + 1, kOrder) + 1;
  const Zpp16s inputFactor = shr16(lpc[0], 4 + scale);
  // The sum of the lower words stays within 2^30 as they are of 12 bits; that of the upper words does with past outputs within
  // +-harmless, a sum before the last shift within +-limit.
  const Zpp64s room = (Zpp64s{1} << 30) - 2 * magnitudes - Zpp64s{ownMaxAbs_16s(src, len) + 1} * std::abs(inputFactor);
  const Zpp32s harmless = room < 0 ? -1 : static_cast<Zpp32s>(std::min<Zpp64s>(32766, room / magnitudes));
  bool isHarmless = shift <= 8 && magnitudes < 1 << 18 && harmless >= 0;
  for (int j = 1; j <= kOrder; ++j) isHarmless = isHarmless && std::abs(dst[-j] / 4096) < harmless;
  const Zpp32s limit = isHarmless ? (harmless * 65536) >> shift : 0;

  const PairFactors factors(lpc, kOrder);
  const V input = _mm_set1_epi32(inputFactor & 0xffff), lowMask = _mm_set1_epi32(4095);
  const Zpp64s a1 = lpc[1], a2 = lpc[2], a3 = lpc[3], a4 = lpc[4], a5 = lpc[5], a6 = lpc[6], a7 = lpc[7];
  int n = 0;
  if (isHarmless) {
    // Pair p of the lower and of the upper words: the outputs 6 + 2p and 5 + 2p samples before the block
    V lower[pairs], upper[pairs];
    const auto enter = [&](const Zpp32s* four) {  // two pairs more
      for (int p = pairs - 1; p >= 2; --p) lower[p] = lower[p - 2], upper[p] = upper[p - 2];
      const V y = load(four), low = _mm_and_si128(y, lowMask), high = _mm_srai_epi32(y, 12);
      const V words = _mm_packs_epi32(low, high);
      lower[1] = _mm_shuffle_epi32(words, _MM_SHUFFLE(0, 0, 0, 0));
      lower[0] = _mm_shuffle_epi32(words, _MM_SHUFFLE(1, 1, 1, 1));
      upper[1] = _mm_shuffle_epi32(words, _MM_SHUFFLE(2, 2, 2, 2));
      upper[0] = _mm_shuffle_epi32(words, _MM_SHUFFLE(3, 3, 3, 3));
    };
    for (int p = 0; p < pairs; ++p) lower[p] = upper[p] = _mm_setzero_si128();
    enter(dst - 16);
    enter(dst - 12);
    enter(dst - 8);
    Zpp64s y4 = dst[-4], y3 = dst[-3], y2 = dst[-2], y1 = dst[-1];
    for (; n + 4 <= len; n += 4) {
      const V x = load4(src + n);
      V high = _mm_madd_epi16(_mm_unpacklo_epi16(x, x), input), low = _mm_setzero_si128();
      for (int p = 0; p < pairs; ++p) {
        high = _mm_sub_epi32(high, _mm_madd_epi16(upper[p], factors.factor[p]));
        low = _mm_sub_epi32(low, _mm_madd_epi16(lower[p], factors.factor[p]));
      }
      alignas(16) Zpp32s highSum[4], lowSum[4];
      store(highSum, high);
      store(lowSum, low);
      // The sum of an output: its lower part, in units of 2^-12, with the terms of the latest outputs, both of its words at
      // once
      const auto sumOf = [&](int j, Zpp64s lowerPart) { return static_cast<Zpp32s>((2 * lowerPart) >> 12) + 2 * highSum[j]; };
      const auto output = [shift](Zpp32s sum) { return shlWrap32(sum, shift) >> 4; };
      const Zpp32s l0 = sumOf(0, lowSum[0] - a4 * y4 - a3 * y3 - a2 * y2 - a1 * y1), z0 = output(l0);
      const Zpp32s l1 = sumOf(1, lowSum[1] - a5 * y4 - a4 * y3 - a3 * y2 - a2 * y1 - a1 * z0), z1 = output(l1);
      const Zpp32s l2 = sumOf(2, lowSum[2] - a6 * y4 - a5 * y3 - a4 * y2 - a3 * y1 - a2 * z0 - a1 * z1), z2 = output(l2);
      const Zpp32s l3 = sumOf(3, lowSum[3] - a7 * y4 - a6 * y3 - a5 * y2 - a4 * y1 - a3 * z0 - a2 * z1 - a1 * z2),
                   z3 = output(l3);
      const auto isLoud = [limit](Zpp32s sum) { return sum > limit || sum < -limit; };
      if (isLoud(l0) || isLoud(l1) || isLoud(l2) || isLoud(l3)) [[unlikely]]
        break;
      enter(dst + n - 4);
      y4 = z0, y3 = z1, y2 = z2, y1 = z3;
      dst[n] = z0;
      dst[n + 1] = z1;
      dst[n + 2] = z2;
      dst[n + 3] = z3;
    }
  }
  // The end of the signal, or of the harmless part: step by step from here on
  if (n < len) ownSynthesisFilter_AMRWB_16s32s_PX(lpc, src + n, dst + n, len - n, scale);
}
