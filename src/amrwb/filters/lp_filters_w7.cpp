// LP residual and synthesis filters: SSE2 kernels.
//
// All compute in 32 bits what the standard computes with saturation at every step, so each first bounds its sums: the
// magnitudes of the coefficients times the largest sample.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "amrwb/filters/kernels.h"
#include "amrwb/simd_w7.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// The sum of the magnitudes of 16 coefficients or more
int magnitudesOf(const Zpp16s* coef, int count) {
  int sum = sumLanes32(_mm_add_epi32(magnitudes(load(coef)), magnitudes(load(coef + 8))));
  for (int i = 16; i < count; ++i) sum += std::abs(coef[i]);
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
  const V least = _mm_set1_epi16(kMin16);
  const V isLeast = _mm_or_si128(_mm_cmpeq_epi16(load(lpc), least), _mm_cmpeq_epi16(load(lpc + kOrder + 1 - lanes), least));
  if (_mm_movemask_epi8(isLeast) != 0 || lpc[8] == kMin16) return ownResidualFilter_AMRWB_16s_PX(lpc, src, dst, len);
  // With most coefficients no sample is too large.
  const int harmless = static_cast<int>((magnitudesThatRound(4) - 1) / std::max(1, magnitudesOf(lpc, kOrder + 1)));
  const V taps[2] = {reversed(load(lpc + 9)), reversed(load(lpc + 1))};  // of src[n - 16..n - 9] and src[n - 8..n - 1]
  const V first = _mm_set1_epi16(lpc[0]), half = _mm_set1_epi32(1 << 10);
  const auto past = [&](const Zpp16s* x) {
    return _mm_add_epi32(_mm_madd_epi16(load(x - 16), taps[0]), _mm_madd_epi16(load(x - 8), taps[1]));
  };
  int n = 0;
  for (; n + lanes <= len; n += lanes) {
    const Zpp16s* const x = src + n;
    const V oldest = load(x - 16), older = load(x - 8), now = load(x);
    if (harmless < 32768 && largestMagnitude(_mm_max_epi16(_mm_max_epi16(oldest, older), now),
                                             _mm_min_epi16(_mm_min_epi16(oldest, older), now)) > harmless) {
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
// registers from the latest two outputs before them; all older outputs, and the input, arrive as sums of the four that pmaddwd
// adds up meanwhile.
//
// Factors of a pair of past outputs in four coming ones: for the pair 4 + 2p and 3 + 2p samples before the block, lane j holds
// a[4 + 2p + j] and a[3 + 2p + j].
template <int order>
struct PairFactors {
  static constexpr int pairs = (order - 2) / 2;
  V factor[pairs];

  explicit PairFactors(const Zpp16s* lpc) {
    Zpp16s padded[order + 5] = {};
    std::copy_n(lpc, order + 1, padded);
    unrolled<pairs>([&](auto p) { factor[p] = _mm_unpacklo_epi16(load4(padded + 4 + 2 * p), load4(padded + 3 + 2 * p)); });
  }
};

constexpr Zpp32s mulWrap32(Zpp32s a, Zpp32s b) { return static_cast<Zpp32s>(static_cast<Zpp32u>(a) * static_cast<Zpp32u>(b)); }
template <class... Products>
constexpr Zpp32s lessWrap32(Zpp32s sum, Products... products) {
  ((sum = subWrap32(sum, products)), ...);
  return sum;
}

// Filters until the end or the first block with an output beyond +-harmless; returns the samples done.
template <int order>
int synthesis(const Zpp16s* lpc, Zpp16s inputFactor, int shift, int harmless, Zpp16s* srcDst, int len, const Zpp16s* mem) {
  constexpr int pairs = PairFactors<order>::pairs;
  const PairFactors<order> factors(lpc);
  const Zpp32s a1 = lpc[1], a2 = lpc[2], a3 = lpc[3], a4 = lpc[4], a5 = lpc[5];
  const int down = 15 - shift;
  const V input = _mm_set1_epi32(inputFactor & 0xffff), half = _mm_set1_epi32(1 << (down - 1)),
          limit = _mm_set1_epi32(harmless);

  V pair[pairs];
  unrolled<pairs>([&](auto p) { pair[p] = pairOf(mem[order - 4 - 2 * p], mem[order - 3 - 2 * p]); });
  Zpp32s y2 = mem[order - 2], y1 = mem[order - 1];

  int n = 0;
  for (; n + 4 <= len; n += 4) {
    const V x = load4(srcDst + n);
    V acc = _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(x, x), input), half);
    unrolled<pairs>([&](auto i) {
      constexpr int p = pairs - 1 - i;
      acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair[p], factors.factor[p]));
    });
    alignas(16) Zpp32s sum[4];
    store(sum, acc);
    // Outputs that turn out not to be harmless are not used: their sums may wrap.
    const Zpp32s z0 = lessWrap32(sum[0], mulWrap32(a2, y2), mulWrap32(a1, y1)) >> down;
    const Zpp32s z1 = lessWrap32(sum[1], mulWrap32(a3, y2), mulWrap32(a2, y1), mulWrap32(a1, z0)) >> down;
    const Zpp32s z2 = lessWrap32(sum[2], mulWrap32(a4, y2), mulWrap32(a3, y1), mulWrap32(a2, z0), mulWrap32(a1, z1)) >> down;
    const Zpp32s z3 =
        lessWrap32(sum[3], mulWrap32(a5, y2), mulWrap32(a4, y1), mulWrap32(a3, z0), mulWrap32(a2, z1), mulWrap32(a1, z2)) >>
        down;
    const V z = _mm_unpacklo_epi64(_mm_unpacklo_epi32(_mm_cvtsi32_si128(z0), _mm_cvtsi32_si128(z1)),
                                   _mm_unpacklo_epi32(_mm_cvtsi32_si128(z2), _mm_cvtsi32_si128(z3)));
    const V sign = _mm_srai_epi32(z, 31);
    if (_mm_movemask_epi8(_mm_cmpgt_epi32(_mm_xor_si128(z, sign), limit)) != 0) [[unlikely]]
      break;
    unrolled<pairs - 2>([&](auto i) { pair[pairs - 1 - i] = pair[pairs - 3 - i]; });
    pair[1] = pairOf(y2, y1);
    const V words = _mm_packs_epi32(z, z);
    pair[0] = _mm_shuffle_epi32(words, _MM_SHUFFLE(0, 0, 0, 0));
    store4(srcDst + n, words);
    y2 = z2, y1 = z3;
  }
  return n;
}

}  // namespace

void ownSynthesisFilter_AMRWB_16s_I_W7(const Zpp16s* lpc, int order, Zpp16s inputFactor, int shift, Zpp16s* srcDst, int len,
                                       Zpp16s* mem) {
  // With past outputs within +-harmless, and the four new ones that are kept, no partial sum leaves 31 bits.
  const Zpp64s room = (Zpp64s{1} << 30) - (1 << 15) - Zpp64s{ownMaxAbs_16s(srcDst, len) + 1} * std::abs(inputFactor);
  const int harmless = room < 0 ? -1 : static_cast<int>(std::min<Zpp64s>(32766, room / (magnitudesOf(lpc + 1, order) + 1)));
  int n = 0;
  if (shift <= 14 && ownMaxAbs_16s(mem, order) < harmless)
    n = order == kOrder ? synthesis<16>(lpc, inputFactor, shift, harmless, srcDst, len, mem)
                        : synthesis<20>(lpc, inputFactor, shift, harmless, srcDst, len, mem);
  if (n > 0 && n < order) {
    std::memmove(mem, mem + n, static_cast<unsigned>(order - n) * sizeof(Zpp16s));
    std::memcpy(mem + order - n, srcDst, static_cast<unsigned>(n) * sizeof(Zpp16s));
  } else if (n > 0) {
    std::memcpy(mem, srcDst + n - order, static_cast<unsigned>(order) * sizeof(Zpp16s));
  }
  // The end of the signal, or of the harmless part: step by step from here on
  if (n < len) ownSynthesisFilter_AMRWB_16s_I_PX(lpc, order, inputFactor, shift, srcDst + n, len - n, mem);
}

void ownSynthesisFilter_AMRWB_16s32s_W7(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale) {
  constexpr int pairs = PairFactors<kOrder>::pairs;
  const int shift = norm16(lpc[0]) + 1, magnitudes = magnitudesOf(lpc + 1, kOrder) + 1;
  const Zpp16s inputFactor = shr16(lpc[0], 4 + scale);
  // The sum of the lower words stays within 2^30 as they are of 12 bits; that of the upper words does with past outputs within
  // +-harmless, a sum before the last shift within +-limit.
  const Zpp64s room = (Zpp64s{1} << 30) - 2 * magnitudes - Zpp64s{ownMaxAbs_16s(src, len) + 1} * std::abs(inputFactor);
  const Zpp32s harmless = room < 0 ? -1 : static_cast<Zpp32s>(std::min<Zpp64s>(32766, room / magnitudes));
  bool isHarmless = shift <= 8 && magnitudes < 1 << 18 && harmless >= 0;
  const auto upperWords = [](const Zpp32s* y) {
    return _mm_packs_epi32(_mm_srai_epi32(load(y), 12), _mm_srai_epi32(load(y + 4), 12));
  };
  const V older = upperWords(dst - 16), newer = upperWords(dst - 8);
  isHarmless = isHarmless && largestMagnitude(_mm_max_epi16(older, newer), _mm_min_epi16(older, newer)) < harmless;
  const Zpp32s limit = isHarmless ? (harmless * 65536) >> shift : 0;

  int n = 0;
  if (isHarmless) {
    const PairFactors<kOrder> factors(lpc);
    const V input = _mm_set1_epi32(inputFactor & 0xffff), lowMask = _mm_set1_epi32(4095);
    const Zpp64s a1 = lpc[1], a2 = lpc[2], a3 = lpc[3], a4 = lpc[4], a5 = lpc[5];
    // Pairs of the lower and of the upper words of past outputs
    V lower[pairs], upper[pairs];
    const auto wordsOf = [lowMask](V y) { return _mm_packs_epi32(_mm_and_si128(y, lowMask), _mm_srai_epi32(y, 12)); };
    unrolled<pairs>([&](auto p) {
      const V words = wordsOf(load4(dst - 4 - 2 * p));
      lower[p] = _mm_shuffle_epi32(words, _MM_SHUFFLE(0, 0, 0, 0));
      upper[p] = _mm_shuffle_epi32(words, _MM_SHUFFLE(2, 2, 2, 2));
    });
    Zpp64s y2 = dst[-2], y1 = dst[-1];
    for (; n + 4 <= len; n += 4) {
      const V x = load4(src + n);
      V high = _mm_madd_epi16(_mm_unpacklo_epi16(x, x), input), low = _mm_setzero_si128();
      unrolled<pairs>([&](auto i) {
        constexpr int p = pairs - 1 - i;
        high = _mm_sub_epi32(high, _mm_madd_epi16(upper[p], factors.factor[p]));
        low = _mm_sub_epi32(low, _mm_madd_epi16(lower[p], factors.factor[p]));
      });
      alignas(16) Zpp32s highSum[4], lowSum[4];
      store(highSum, _mm_slli_epi32(high, 1));
      store(lowSum, low);
      // The sum of an output: its lower part, in units of 2^-11, with the terms of the latest outputs, both of their words at
      // once
      const auto sumOf = [&](int j, Zpp64s lowerPart) { return addWrap32(wrap32(lowerPart >> 11), highSum[j]); };
      const auto output = [shift](Zpp32s sum) { return Zpp64s{shlWrap32(sum, shift) >> 4}; };
      const Zpp32s l0 = sumOf(0, lowSum[0] - a2 * y2 - a1 * y1);
      const Zpp64s z0 = output(l0);
      const Zpp32s l1 = sumOf(1, lowSum[1] - a3 * y2 - a2 * y1 - a1 * z0);
      const Zpp64s z1 = output(l1);
      const Zpp32s l2 = sumOf(2, lowSum[2] - a4 * y2 - a3 * y1 - a2 * z0 - a1 * z1);
      const Zpp64s z2 = output(l2);
      const Zpp32s l3 = sumOf(3, lowSum[3] - a5 * y2 - a4 * y1 - a3 * z0 - a2 * z1 - a1 * z2);
      const Zpp64s z3 = output(l3);
      const auto isLoud = [limit](Zpp32s sum) { return sum > limit || sum < -limit; };
      if (isLoud(l0) || isLoud(l1) || isLoud(l2) || isLoud(l3)) [[unlikely]]
        break;
      dst[n] = wrap32(z0);
      dst[n + 1] = wrap32(z1);
      dst[n + 2] = wrap32(z2);
      dst[n + 3] = wrap32(z3);
      unrolled<pairs - 2>([&](auto i) {
        constexpr int p = pairs - 1 - i;
        lower[p] = lower[p - 2], upper[p] = upper[p - 2];
      });
      const V before = wordsOf(load4(dst + n - 2)), now = wordsOf(load4(dst + n));
      lower[1] = _mm_shuffle_epi32(before, _MM_SHUFFLE(0, 0, 0, 0));
      upper[1] = _mm_shuffle_epi32(before, _MM_SHUFFLE(2, 2, 2, 2));
      lower[0] = _mm_shuffle_epi32(now, _MM_SHUFFLE(0, 0, 0, 0));
      upper[0] = _mm_shuffle_epi32(now, _MM_SHUFFLE(2, 2, 2, 2));
      y2 = z2, y1 = z3;
    }
  }
  // The end of the signal, or of the harmless part: step by step from here on
  if (n < len) ownSynthesisFilter_AMRWB_16s32s_PX(lpc, src + n, dst + n, len - n, scale);
}
