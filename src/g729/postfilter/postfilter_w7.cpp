// Postfilter: SSE2 kernels.
#include "core/fixed_point.h"
#include "core/simd_w7.h"
#include "g729/postfilter/kernels.h"
#include "g729/postfilter/tables.h"

using namespace zpp;

namespace {

constexpr int kSubframe = kPostfilterSubframe, kVectors = kSubframe / 8;

V magnitudes(V x) { return _mm_max_epi16(x, _mm_subs_epi16(_mm_setzero_si128(), x)); }

}  // namespace

int ownNormaliseResidual_G729_16s_W7(const Zpp16s* residual, Zpp16s* scaled) {
  constexpr int len = kPostfilterHistory + kSubframe;
  static_assert(len % 16 == 0);
  const Zpp16s* src = residual - kPostfilterHistory;
  V any = _mm_setzero_si128();
  for (int n = 0; n < len; n += 16)
    any = _mm_or_si128(any, _mm_or_si128(magnitudes(load(src + n)), magnitudes(load(src + n + 8))));
  any = _mm_or_si128(any, _mm_unpackhi_epi64(any, any));
  any = _mm_or_si128(any, _mm_shufflelo_epi16(any, _MM_SHUFFLE(1, 0, 3, 2)));
  const int low = _mm_cvtsi128_si32(any);
  const int shift = 3 - norm16(static_cast<Zpp16s>(low | low >> 16));
  if (shift > 0) {
    const V count = _mm_cvtsi32_si128(shift);
    for (int n = 0; n < len; n += 8) store(scaled + n, _mm_sra_epi16(load(src + n), count));
  } else {
    const V count = _mm_cvtsi32_si128(-shift);
    for (int n = 0; n < len; n += 8) store(scaled + n, _mm_sll_epi16(load(src + n), count));
  }
  return shift;
}

// The pairs of neighbouring samples that the filters multiply serve all phases. Sums run over y[0..39]; those over y[1..40]
// follow from them by the terms of y[0] and y[40].
void ownMatchFractions_G729_16s_W7(const Zpp16s* c, int delay, DelayedMatch (*match)[2]) {
  const Zpp16s* x = c - delay + 1;
  V pairs[kVectors][4];  // x[n], x[n-1] and x[n-2], x[n-3], each for n = 0..3 and 4..7 of a vector
  for (int v = 0; v < kVectors; ++v) {
    const Zpp16s* at = x + 8 * v;
    const V x0 = load(at), x1 = load(at - 1), x2 = load(at - 2), x3 = load(at - 3);
    pairs[v][0] = _mm_unpacklo_epi16(x0, x1);
    pairs[v][1] = _mm_unpackhi_epi16(x0, x1);
    pairs[v][2] = _mm_unpacklo_epi16(x2, x3);
    pairs[v][3] = _mm_unpackhi_epi16(x2, x3);
  }
  const V half = _mm_set1_epi32(16384);
  const Zpp16s* end = x + kSubframe;
  for (int phase = 0; phase < 7; ++phase) {
    const Zpp16s* h = tab_hup_s[phase];
    const V h01 = pairOf(h[0], h[1]), h23 = pairOf(h[2], h[3]);
    V early = _mm_setzero_si128(), late = early, energy = early;
    Zpp32s first = 0;
    for (int v = 0; v < kVectors; ++v) {
      const V low = _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(pairs[v][0], h01), _mm_madd_epi16(pairs[v][2], h23)), half);
      const V high = _mm_add_epi32(_mm_add_epi32(_mm_madd_epi16(pairs[v][1], h01), _mm_madd_epi16(pairs[v][3], h23)), half);
      const V y = _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15));
      if (v == 0) first = static_cast<Zpp16s>(_mm_cvtsi128_si32(y));
      early = _mm_add_epi32(early, _mm_madd_epi16(y, load(c + 8 * v)));
      late = _mm_add_epi32(late, _mm_madd_epi16(y, load(c + 8 * v - 1)));
      energy = _mm_add_epi32(energy, _mm_madd_epi16(y, y));
    }
    alignas(16) Zpp32s sum[4];
    store(sum, sumsOfLanes32(early, late, energy, energy));
    const Zpp32s last = (h[0] * end[0] + h[1] * end[-1] + h[2] * end[-2] + h[3] * end[-3] + 16384) >> 15;
    match[phase][0] = {2 * sum[0], 2 * sum[2]};
    match[phase][1] = {2 * (sum[1] - c[-1] * first + c[kSubframe - 1] * last), 2 * (sum[2] - first * first + last * last)};
  }
}

void ownInterpolate_G729_16s_W7(const Zpp16s* src, const Zpp16s* filter, int taps, Zpp16s* dst) {
  const V half = _mm_set1_epi32(16384);
  for (int n = 0; n < kSubframe; n += 8) {
    V low = half, high = half;
    for (int i = 0; i < taps; i += 2) {
      const V factors = pairOf(filter[i], filter[i + 1]);
      const V x0 = load(src + n - i), x1 = load(src + n - i - 1);
      low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(x0, x1), factors));
      high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(x0, x1), factors));
    }
    store(dst + n, _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15)));
  }
}

void ownHarmonicFilter_G729_16s_W7(const Zpp16s* x, const Zpp16s* y, Zpp16s gainX, Zpp16s gainY, Zpp16s* dst) {
  const V gains = pairOf(gainX, gainY), half = _mm_set1_epi32(16384);
  for (int n = 0; n < kSubframe; n += 8) {
    const V vx = load(x + n), vy = load(y + n);
    const V low = _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(vx, vy), gains), half);
    const V high = _mm_add_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(vx, vy), gains), half);
    store(dst + n, _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15)));
  }
}

void ownHarmonicFilter_G729A_16s_W7(const Zpp16s* x, const Zpp16s* y, Zpp16s gainX, Zpp16s gainY, Zpp16s* dst) {
  const V vx = _mm_set1_epi16(gainX), vy = _mm_set1_epi16(gainY);
  for (int n = 0; n < kSubframe; n += 8)
    store(dst + n, _mm_adds_epi16(mulWrapQ15(load(x + n), vx), mulWrapQ15(load(y + n), vy)));
}

void ownTiltFilter_G729_16s_W7(Zpp16s* srcDst, Zpp16s previous, Zpp16s factor, Zpp16s gain, int shift) {
  const V factors = pairOf(16384, factor), half = _mm_set1_epi32(8192);
  const V gains = _mm_set1_epi16(gain), rounding = _mm_set1_epi32(1 << (shift - 1)), count = _mm_cvtsi32_si128(shift);
  V carried = _mm_cvtsi32_si128(previous & 0xffff);  // the sample before the vector
  for (int n = 0; n < kSubframe; n += 8) {
    const V x = load(srcDst + n), past = _mm_or_si128(_mm_slli_si128(x, 2), carried);
    carried = _mm_srli_si128(x, 14);
    // The low 16 bits: shifted up and back down, so that packing does not saturate
    const auto filtered = [&](V pair) {
      return _mm_srai_epi32(_mm_slli_epi32(_mm_add_epi32(_mm_madd_epi16(pair, factors), half), 2), 16);
    };
    const V w = _mm_packs_epi32(filtered(_mm_unpacklo_epi16(x, past)), filtered(_mm_unpackhi_epi16(x, past)));
    const V low = _mm_sra_epi32(_mm_add_epi32(mulLow(w, gains), rounding), count);
    const V high = _mm_sra_epi32(_mm_add_epi32(mulHigh(w, gains), rounding), count);
    store(srcDst + n, _mm_packs_epi32(low, high));
  }
}

void ownPreemphasize_G729A_16s_W7(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s factor, Zpp16s previous) {
  const V factors = _mm_set1_epi16(factor);
  int n = 0;
  for (; n + 8 <= len; n += 8) {
    const V x = load(src + n), past = _mm_or_si128(_mm_slli_si128(x, 2), _mm_cvtsi32_si128(previous & 0xffff));
    previous = src[n + 7];
    store(dst + n, _mm_subs_epi16(x, mulQ15(past, factors)));
  }
  if (n < len) ownPreemphasize_G729A_16s_PX(src + n, dst + n, len - n, factor, previous);
}

Zpp32s ownMagnitudeSum_16s_W7(const Zpp16s* src) {
  V sum = _mm_setzero_si128();
  for (int n = 0; n < kSubframe; n += 8) {
    const V x = load(src + n), signs = _mm_or_si128(_mm_srai_epi16(x, 15), _mm_set1_epi16(1));
    sum = _mm_add_epi32(sum, _mm_madd_epi16(x, signs));
  }
  return sumLanes32(sum);
}

void ownApplyGain_G729A_16s_W7(const Zpp16s* gain, Zpp16s* srcDst) {
  for (int n = 0; n < kSubframe; n += 8) {
    const V x = load(srcDst + n), g = load(gain + n);
    store(srcDst + n, _mm_packs_epi32(_mm_srai_epi32(mulLow(x, g), 12), _mm_srai_epi32(mulHigh(x, g), 12)));
  }
}

void ownConvolveCircular_G729D_16s_W7(const Zpp16s* code, const Zpp16s* response, Zpp16s* dst) {
  alignas(16) Zpp16s periods[2 * kSubframe];  // the response twice: any rotation is a run of it
  V sum[kVectors];
  for (int v = 0; v < kVectors; ++v) {
    const V h = load(response + 8 * v);
    store(periods + 8 * v, h);
    store(periods + kSubframe + 8 * v, h);
    sum[v] = _mm_setzero_si128();
  }
  for (int p = 0; p < kSubframe; ++p) {
    if (code[p] == 0) continue;
    const V pulse = _mm_set1_epi16(code[p]);
    for (int v = 0; v < kVectors; ++v)
      sum[v] = _mm_adds_epi16(sum[v], mulWrapQ15(pulse, load(periods + kSubframe - p + 8 * v)));
  }
  for (int v = 0; v < kVectors; ++v) store(dst + 8 * v, sum[v]);
}
