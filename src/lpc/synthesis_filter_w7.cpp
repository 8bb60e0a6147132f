// LP synthesis filters: SSE2 kernels.
//
// The recursion is serial: what counts is the path from one output to the next. The outputs are computed in scalar registers,
// with the two to five latest outputs, and a sample is clamped behind a branch that is hardly ever taken, so that this path is
// one multiplication, one subtraction and one shift. All older outputs arrive as sums of four coming outputs, which pmaddwd
// adds up meanwhile, two past outputs at a time.
#include <cstdint>
#include <cstring>

#include "core/fixed_point.h"
#include "core/simd_w7.h"
#include "lpc/kernels.h"
#include "lpc/simd_filter_w7.h"

using namespace zpp;

namespace {

// Factors of the pairs of past outputs that lie 6, 8 and 10 samples before a block of four. Lane j of the first holds a[6 + j],
// a[5 + j]; zeros behind the order.
struct PairFactors {
  V at6, at8, at10;

  // from3: a[3..10]
  explicit PairFactors(V from3)
      : at6(_mm_unpacklo_epi16(_mm_srli_si128(from3, 6), _mm_srli_si128(from3, 4))),
        at8(_mm_unpacklo_epi16(_mm_srli_si128(from3, 10), _mm_srli_si128(from3, 8))),
        at10(_mm_unpacklo_epi16(_mm_srli_si128(from3, 14), _mm_srli_si128(from3, 12))) {}
};

constexpr Zpp16s kSilence[kLpcOrder] = {};

// Any signal: a sample is clamped behind a branch that is hardly ever taken.
template <int scaleFactor>
bool filterClamping(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  const V a3 = load(coef + 3);
  const PairFactors factors(a3);
  const V factor4 = _mm_unpacklo_epi16(_mm_srli_si128(a3, 2), a3);
  const V inputFactor = _mm_set1_epi32((coef[0] & 0xffff) | (1 << (scaleFactor - 1 + 16)));  // input and rounding
  const V ones = _mm_set1_epi16(1);
  const Zpp32s a1 = coef[1], a2 = coef[2], a3s = coef[3], a4 = coef[4], a5 = coef[5];

  const Zpp16s* past = hist != nullptr ? hist : kSilence;
  V pair4 = pairOf(past[6], past[7]), pair6 = pairOf(past[4], past[5]), pair8 = pairOf(past[2], past[3]),
    pair10 = pairOf(past[0], past[1]);
  Zpp32s y2 = past[8], y1 = past[9];  // the latest two outputs

  bool overflow = false;
  // The next output from its sum and the terms of the latest outputs, all modulo 2^32
  const auto output = [&](Zpp32s sum) {
    const Zpp32s y = sum >> scaleFactor;
    if (y != static_cast<Zpp16s>(y)) [[unlikely]] {
      overflow = true;
      return Zpp32s{sat16(y)};
    }
    return y;
  };
  int n = 0;
  for (; n + 4 <= len; n += 4) {
    alignas(16) Zpp32s sum[4];
    V acc = _mm_madd_epi16(_mm_unpacklo_epi16(load4(src + n), ones), inputFactor);
    acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair10, factors.at10));
    acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair8, factors.at8));
    acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair6, factors.at6));
    acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair4, factor4));
    store(sum, acc);
    const Zpp32s z0 = output(subWrap32(subWrap32(sum[0], a2 * y2), a1 * y1));
    const Zpp32s z1 = output(subWrap32(subWrap32(subWrap32(sum[1], a3s * y2), a2 * y1), a1 * z0));
    const Zpp32s z2 = output(subWrap32(subWrap32(subWrap32(subWrap32(sum[2], a4 * y2), a3s * y1), a2 * z0), a1 * z1));
    const Zpp32s z3 =
        output(subWrap32(subWrap32(subWrap32(subWrap32(subWrap32(sum[3], a5 * y2), a4 * y1), a3s * z0), a2 * z1), a1 * z2));
    dst[n] = low16(z0);
    dst[n + 1] = low16(z1);
    dst[n + 2] = low16(z2);
    dst[n + 3] = low16(z3);
    pair10 = pair6;
    pair8 = pair4;
    pair6 = pairOf(y2, y1);
    pair4 = pairOf(z0, z1);
    y2 = z2;
    y1 = z3;
  }
  if (n < len) overflow |= ownSynthesisFilter_NR_16s_PX(coef, src + n, dst + n, len - n, scaleFactor, dst + n - kLpcOrder);
  return overflow;
}

// In 64-bit registers, until a sample would be clamped: how many samples, a multiple of four, are done, the rest being
// untouched. Two outputs share a register, the first one's sum in the upper half, and a product with a past output:
// the lower half, 2^31 added, is not negative and leaves the upper one alone. It holds all but one term of its sum, which fits
// 32 bits when harmlessSums(coef). The upper half wraps as the standard's accumulator does.
template <int scaleFactor>
int filterUnclamped(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  constexpr int kBlock = 80;
  const auto swapped = [](V v) { return _mm_shuffle_epi32(v, _MM_SHUFFLE(2, 3, 0, 1)); };
  const PairFactors factors(load(coef + 3));
  const V factor6 = swapped(factors.at6), factor8 = swapped(factors.at8), factor10 = swapped(factors.at10);
  const V factor4 = _mm_slli_si128(factor6, 8);  // for the last two of four outputs; the others are still waited for
  const V inputFactor = pairOf(coef[0], 0), zero = _mm_setzero_si128();
  constexpr Zpp32s kHalf = 1 << (scaleFactor - 1);
  const V start = _mm_setr_epi32(kHalf + kMin32, kHalf, kHalf + kMin32, kHalf);
  const auto both = [](Zpp16s first, Zpp16s second) { return Zpp64s{first} * (Zpp64s{1} << 32) + second; };
  const Zpp64s a1 = coef[1], a12 = both(coef[1], coef[2]), a23 = both(coef[2], coef[3]), a34 = both(coef[3], coef[4]),
               a45 = both(coef[4], coef[5]);
  const auto product = [](Zpp64s a, Zpp64s y) { return static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(y); };

  const Zpp16s* past = hist != nullptr ? hist : kSilence;
  V pair6 = pairOf(past[4], past[5]), pair8 = pairOf(past[2], past[3]), pair10 = pairOf(past[0], past[1]);
  Zpp64s y4 = past[6], y3 = past[7], y2 = past[8], y1 = past[9];  // y1: the latest output
  // The next two outputs from the older ones' share
  const auto advance = [&](V older) {
    const std::uint64_t sums = static_cast<std::uint64_t>(lowLane64(older)) - product(a45, y4) - product(a34, y3) -
                               product(a23, y2) - product(a12, y1);
    y4 = y2;
    y3 = y1;
    y2 = static_cast<Zpp64s>(sums) >> (32 + scaleFactor);
    y1 = (Zpp64s{static_cast<Zpp32u>(sums)} + kMin32 - a1 * y2) >> scaleFactor;
  };
  for (int n = 0; n + 4 <= len;) {
    alignas(16) Zpp32s outputs[kBlock];
    const int count = len - n < kBlock ? (len - n) & ~3 : kBlock;
    for (int i = 0; i < count; i += 4) {
      const V x = _mm_shufflelo_epi16(load4(src + n + i), _MM_SHUFFLE(2, 3, 0, 1));
      V acc = _mm_add_epi32(start, _mm_madd_epi16(_mm_unpacklo_epi16(x, zero), inputFactor));
      acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair10, factor10));
      acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair8, factor8));
      acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair6, factor6));
      const V pair4 = pairOf(static_cast<Zpp32s>(y4), static_cast<Zpp32s>(y3));
      pair10 = pair6;
      pair8 = pair4;
      pair6 = pairOf(static_cast<Zpp32s>(y2), static_cast<Zpp32s>(y1));
      advance(acc);
      outputs[i] = static_cast<Zpp32s>(y2);
      outputs[i + 1] = static_cast<Zpp32s>(y1);
      acc = _mm_sub_epi32(acc, _mm_madd_epi16(pair4, factor4));
      advance(_mm_unpackhi_epi64(acc, acc));
      outputs[i + 2] = static_cast<Zpp32s>(y2);
      outputs[i + 3] = static_cast<Zpp32s>(y1);
    }
    V seen = zero;
    for (int i = 0; i < count; i += 4) seen = _mm_or_si128(seen, _mm_add_epi32(load(outputs + i), _mm_set1_epi32(32768)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi32(_mm_srli_epi32(seen, 16), zero)) != 0xffff) return n;
    for (int i = 0; i < count; i += 4, n += 4) {
      const V four = load(outputs + i);
      store4(dst + n, _mm_packs_epi32(four, four));
    }
  }
  return len & ~3;
}

template <int scaleFactor>
bool filter(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  int done = 0;
  if constexpr (sizeof(void*) == 8)
    if (harmlessSums(coef)) done = filterUnclamped<scaleFactor>(coef, src, dst, len, hist);
  if (done == len) return false;
  return filterClamping<scaleFactor>(coef, src + done, dst + done, len - done, done > 0 ? dst + done - kLpcOrder : hist);
}

}  // namespace

bool ownSynthesisFilter_NR_16s_W7(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, int scaleFactor,
                                  const Zpp16s* hist) {
  if (len < 12) return ownSynthesisFilter_NR_16s_PX(coef, src, dst, len, scaleFactor, hist);
  return scaleFactor == 12 ? filter<12>(coef, src, dst, len, hist) : filter<13>(coef, src, dst, len, hist);
}

// Orders up to 32: as above, with as many pairs as it takes and the outputs of the past read from a copy
bool ownSynthesisFilter_G729E_16s_W7(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len,
                                     const Zpp16s* hist) {
  constexpr int kMost = 32, kBlock = 64, kPairs = kMost / 2;
  constexpr int kPast = kMost + 2;  // the last pair reaches behind the largest order
  if (order > kMost || len < 4) return ownSynthesisFilter_G729E_16s_PX(coef, order, src, dst, len, hist);
  alignas(16) Zpp16s a[kMost + 16] = {};  // zeros behind the order
  std::memcpy(a, coef, static_cast<unsigned>(order + 1) * sizeof *a);
  // Pair k lies 4 + 2 k samples before a block of four. An even number of pairs, so that two sums share them.
  const int pairs = order <= 4 ? 2 : ((order - 1) / 2 + 1) & ~1;
  V factor[kPairs];
  for (int k = 0; k < pairs; ++k) {
    const V from = load(a + 3 + 2 * k);
    factor[k] = _mm_unpacklo_epi16(_mm_srli_si128(from, 2), from);
  }
  const V inputFactor = pairOf(a[0], 1 << 11), ones = _mm_set1_epi16(1);
  const Zpp32s a1 = a[1], a2 = a[2], a3 = a[3], a4 = a[4], a5 = a[5];

  alignas(16) Zpp16s past[kPast + kBlock] = {};
  if (hist != nullptr) std::memcpy(past + kPast - order, hist, static_cast<unsigned>(order) * sizeof *past);
  const auto pairAt = [](const Zpp16s* samples) {
    int pair = 0;
    std::memcpy(&pair, samples, sizeof pair);
    return pair;
  };
  bool overflow = false;
  const auto output = [&](Zpp32s sum) {
    const Zpp32s y = sum >> 12;
    if (y != static_cast<Zpp16s>(y)) [[unlikely]] {
      overflow = true;
      return Zpp32s{sat16(y)};
    }
    return y;
  };
  Zpp32s y2 = past[kPast - 2], y1 = past[kPast - 1];
  Zpp16s* y = past + kPast;
  int n = 0;
  for (; n + 4 <= len; n += 4, y += 4) {
    if (y == past + kPast + kBlock) {
      std::memcpy(past, past + kBlock, kPast * sizeof *past);
      y = past + kPast;
    }
    V acc = _mm_madd_epi16(_mm_unpacklo_epi16(load4(src + n), ones), inputFactor), rest = _mm_setzero_si128();
    for (int k = pairs - 2; k >= 0; k -= 2) {  // the latest outputs last
      const V older = _mm_set1_epi32(pairAt(y - 6 - 2 * k)), newer = _mm_set1_epi32(pairAt(y - 4 - 2 * k));
      rest = _mm_sub_epi32(rest, _mm_madd_epi16(older, factor[k + 1]));
      acc = _mm_sub_epi32(acc, _mm_madd_epi16(newer, factor[k]));
    }
    alignas(16) Zpp32s sum[4];
    store(sum, _mm_add_epi32(acc, rest));
    const Zpp32s z0 = output(subWrap32(subWrap32(sum[0], a2 * y2), a1 * y1));
    const Zpp32s z1 = output(subWrap32(subWrap32(subWrap32(sum[1], a3 * y2), a2 * y1), a1 * z0));
    const Zpp32s z2 = output(subWrap32(subWrap32(subWrap32(subWrap32(sum[2], a4 * y2), a3 * y1), a2 * z0), a1 * z1));
    const Zpp32s z3 =
        output(subWrap32(subWrap32(subWrap32(subWrap32(subWrap32(sum[3], a5 * y2), a4 * y1), a3 * z0), a2 * z1), a1 * z2));
    // Stored in the pairs in which they are soon read again
    const Zpp32s stored[2] = {(z1 * 65536) | (z0 & 0xffff), (z3 * 65536) | (z2 & 0xffff)};
    std::memcpy(y, &stored[0], sizeof stored[0]);
    std::memcpy(y + 2, &stored[1], sizeof stored[1]);
    std::memcpy(dst + n, stored, sizeof stored);
    y2 = z2;
    y1 = z3;
  }
  if (n < len) overflow |= ownSynthesisFilter_G729E_16s_PX(coef, order, src + n, dst + n, len - n, y - order);
  return overflow;
}
