// Element-wise arithmetic and settings: SSE2 kernels. Eight 16-bit or four 32-bit elements a step, the portable kernel for the
// rest.
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

// Runs step(n) for blocks of `Block` elements and returns where the rest begins.
template <int Block, class Step>
inline int blocks(int len, Step step) {
  int n = 0;
  for (; n + Block <= len; n += Block) step(n);
  return n;
}

V shiftCount(int n) { return _mm_cvtsi32_si128(n); }

// (v >> n) with round half up, n of 1 or more and beyond 31 as well: bit n-1 is added after the shift, so nothing overflows.
V shrRound(V v, V count, V countMinus1) {
  return _mm_add_epi32(_mm_sra_epi32(v, count), _mm_and_si128(_mm_sra_epi32(v, countMinus1), _mm_set1_epi32(1)));
}

// v >> n with round half to even, n of 1..31. |v| is at most 2^30 here, so v + 2^(n-1) - 1 + (0 or 1) stays below 2^31: the
// last addend is 0 at n = 31 for v of 0 or more.
V shrHalfEven(V v, V count, V bias) {
  const V odd = _mm_and_si128(_mm_sra_epi32(v, count), _mm_set1_epi32(1));
  return _mm_sra_epi32(_mm_add_epi32(_mm_add_epi32(v, bias), odd), count);
}

// v << n saturated, n of 1..31: `most` and `least` are the limits shifted right by n.
V shlSat(V v, V count, V most, V least) {
  const V above = _mm_cmpgt_epi32(v, most), below = _mm_cmplt_epi32(v, least);
  const V shifted = _mm_sll_epi32(v, count);
  return select(above, _mm_set1_epi32(kMax32), select(below, _mm_set1_epi32(kMin32), shifted));
}

// dst[n..n+7] = sat16 of eight 32-bit values, shifted right with round half up
template <class Values>
void storeRounded(Zpp16s* dst, int n, Values values, int scaleFactor) {
  V low, high;
  values(low, high);
  if (scaleFactor > 0) {
    const V count = shiftCount(scaleFactor), countMinus1 = shiftCount(scaleFactor - 1);
    low = shrRound(low, count, countMinus1);
    high = shrRound(high, count, countMinus1);
  }
  store(dst + n, _mm_packs_epi32(low, high));
}

}  // namespace

void ownSet_16s_W7(Zpp16s value, Zpp16s* dst, int len) {
  const int n = blocks<8>(len, [&](int i) { store(dst + i, _mm_set1_epi16(value)); });
  ownSet_16s_PX(value, dst + n, len - n);
}

void ownSet_32s_W7(Zpp32s value, Zpp32s* dst, int len) {
  const int n = blocks<4>(len, [&](int i) { store(dst + i, _mm_set1_epi32(value)); });
  ownSet_32s_PX(value, dst + n, len - n);
}

void ownAbs_16s_W7(const Zpp16s* src, Zpp16s* dst, int len) {
  const int n = blocks<8>(len, [&](int i) {
    const V x = load(src + i);
    store(dst + i, _mm_max_epi16(x, _mm_subs_epi16(_mm_setzero_si128(), x)));
  });
  ownAbs_16s_PX(src + n, dst + n, len - n);
}

void ownAdd_16s_W7(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len) {
  const int n = blocks<8>(len, [&](int i) { store(dst + i, _mm_adds_epi16(load(src1 + i), load(src2 + i))); });
  ownAdd_16s_PX(src1 + n, src2 + n, dst + n, len - n);
}

void ownSub_16s_W7(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len) {
  const int n = blocks<8>(len, [&](int i) { store(dst + i, _mm_subs_epi16(load(src2 + i), load(src1 + i))); });
  ownSub_16s_PX(src1 + n, src2 + n, dst + n, len - n);
}

void ownSubCRev_16s_Sfs_W7(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  const int shift = scaleFactor > 31 ? 31 : scaleFactor < -15 ? -15 : scaleFactor;
  const V minuend = _mm_set1_epi32(value), count = shiftCount(shift < 0 ? -shift : shift);
  const V bias = _mm_set1_epi32(shift > 0 ? (1 << (shift - 1)) - 1 : 0);
  const int n = blocks<8>(len, [&](int i) {
    const V x = load(src + i);
    V low = _mm_sub_epi32(minuend, widenLow(x)), high = _mm_sub_epi32(minuend, widenHigh(x));
    if (shift > 0) {
      low = shrHalfEven(low, count, bias);
      high = shrHalfEven(high, count, bias);
    } else if (shift < 0) {
      // A 16-bit difference shifted by 15 at the most fits 32 bits, and saturates as one shifted further would.
      const V difference = _mm_packs_epi32(low, high);
      low = _mm_sll_epi32(widenLow(difference), count);
      high = _mm_sll_epi32(widenHigh(difference), count);
    }
    store(dst + i, _mm_packs_epi32(low, high));
  });
  ownSubCRev_16s_Sfs_PX(src + n, value, dst + n, len - n, scaleFactor);
}

void ownMul_16s32s_Sfs_W7(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len, int scaleFactor) {
  const int shift = scaleFactor > 31 ? 31 : scaleFactor < -31 ? -31 : scaleFactor;
  const V count = shiftCount(shift < 0 ? -shift : shift);
  const V bias = _mm_set1_epi32(shift > 0 ? (1 << (shift - 1)) - 1 : 0);
  const V most = _mm_set1_epi32(kMax32 >> (shift < 0 ? -shift : 0)), least = _mm_set1_epi32(kMin32 >> (shift < 0 ? -shift : 0));
  const int n = blocks<8>(len, [&](int i) {
    const V a = load(src1 + i), b = load(src2 + i);
    V low = mulLow(a, b), high = mulHigh(a, b);
    if (shift > 0) {
      low = shrHalfEven(low, count, bias);
      high = shrHalfEven(high, count, bias);
    } else if (shift < 0) {
      low = shlSat(low, count, most, least);
      high = shlSat(high, count, most, least);
    }
    store(dst + i, low);
    store(dst + i + 4, high);
  });
  ownMul_16s32s_Sfs_PX(src1 + n, src2 + n, dst + n, len - n, scaleFactor);
}

void ownMul_NR_16s_Sfs_W7(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  const int n = blocks<8>(len, [&](int i) {
    storeRounded(
        dst, i, [a = load(src1 + i), b = load(src2 + i)](V& low, V& high) { low = mulLow(a, b), high = mulHigh(a, b); },
        scaleFactor);
  });
  ownMul_NR_16s_Sfs_PX(src1 + n, src2 + n, dst + n, len - n, scaleFactor);
}

void ownMulC_NR_16s_Sfs_W7(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  const V b = _mm_set1_epi16(value);
  const int n = blocks<8>(len, [&](int i) {
    storeRounded(
        dst, i, [a = load(src + i), b](V& low, V& high) { low = mulLow(a, b), high = mulHigh(a, b); }, scaleFactor);
  });
  ownMulC_NR_16s_Sfs_PX(src + n, value, dst + n, len - n, scaleFactor);
}

// The machine's vector shifts give zeros, or copies of the sign, for counts beyond the width.

// The coefficients of filters of order 8 to 16
void ownMulPowerC_NR_16s_Sfs_W7(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  constexpr int kMost = 17;
  if (scaleFactor != 15 || len < 9 || len > kMost) return ownMulPowerC_NR_16s_Sfs_PX(src, value, dst, len, scaleFactor);
  alignas(16) Zpp16s powers[kMost - 1];
  Zpp32s power = value;
  for (int n = 0; n < len - 1; ++n) {
    powers[n] = low16(power);
    power = wrap16((power * value + (1 << 14)) >> 15);
  }
  const V x = load(src + 1), y = load(src + len - 8), first = load(powers), last = load(powers + len - 9);  // which may overlap
  const auto round = [](V product) { return _mm_srai_epi32(_mm_add_epi32(product, _mm_set1_epi32(1 << 14)), 15); };
  dst[0] = src[0];
  store(dst + 1, _mm_packs_epi32(round(mulLow(x, first)), round(mulHigh(x, first))));
  store(dst + len - 8, _mm_packs_epi32(round(mulLow(y, last)), round(mulHigh(y, last))));
}

void ownLShiftC_16s_W7(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  const int n = blocks<8>(len, [&](int i) { store(dst + i, _mm_sll_epi16(load(src + i), shiftCount(shift))); });
  ownLShiftC_16s_PX(src + n, dst + n, len - n, shift);
}

void ownLShiftCSat_16s_W7(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  const int n = blocks<8>(len, [&](int i) {
    V x = load(src + i);
    for (int s = 0; s < shift; ++s) x = _mm_adds_epi16(x, x);
    store(dst + i, x);
  });
  ownLShiftCSat_16s_PX(src + n, dst + n, len - n, shift);
}

void ownLShiftC_32s_W7(const Zpp32s* src, Zpp32s* dst, int len, int shift) {
  const int n = blocks<4>(len, [&](int i) { store(dst + i, _mm_sll_epi32(load(src + i), shiftCount(shift))); });
  ownLShiftC_32s_PX(src + n, dst + n, len - n, shift);
}

void ownRShiftC_16s_W7(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  const int n = blocks<8>(len, [&](int i) { store(dst + i, _mm_sra_epi16(load(src + i), shiftCount(shift))); });
  ownRShiftC_16s_PX(src + n, dst + n, len - n, shift);
}

void ownRShiftC_32s_W7(const Zpp32s* src, Zpp32s* dst, int len, int shift) {
  const int n = blocks<4>(len, [&](int i) { store(dst + i, _mm_sra_epi32(load(src + i), shiftCount(shift))); });
  ownRShiftC_32s_PX(src + n, dst + n, len - n, shift);
}

void ownConvert_16s32s_W7(const Zpp16s* src, Zpp32s* dst, int len) {
  const int n = blocks<8>(len, [&](int i) {
    const V x = load(src + i);
    store(dst + i, widenLow(x));
    store(dst + i + 4, widenHigh(x));
  });
  ownConvert_16s32s_PX(src + n, dst + n, len - n);
}

void ownConvert_NR_32s16s_Sfs_W7(const Zpp32s* src, Zpp16s* dst, int len, int scaleFactor) {
  const int n = blocks<8>(len, [&](int i) {
    storeRounded(
        dst, i, [a = load(src + i), b = load(src + i + 4)](V& low, V& high) { low = a, high = b; }, scaleFactor);
  });
  ownConvert_NR_32s16s_Sfs_PX(src + n, dst + n, len - n, scaleFactor);
}
