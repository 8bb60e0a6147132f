// Sampling-rate conversion and filters of the high band: SSE2 kernels.
//
// Four outputs a pass, each a sum of pmaddwd over its window.
#include <cstring>

#include "amrwb/filters/kernels.h"
#include "amrwb/filters/tables.h"
#include "amrwb/simd_w7.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// (sum + half) >> shift, saturated to 16 bits, of four sums
V rounded(V sums, int shift) { return _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(1 << (shift - 1))), shift); }
void storeFour(Zpp16s* dst, V values) { store4(dst, _mm_packs_epi32(values, values)); }

}  // namespace

void ownDownSampling_AMRWB_16s_W7(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem) {
  // The magnitudes of a filter's taps add up to 30851 at the most: no input saturates.
  Zpp16s signal[kDownSamplingMemory + 320 + 8];
  std::memcpy(signal, mem, kDownSamplingMemory * sizeof(Zpp16s));
  std::memcpy(signal + kDownSamplingMemory, src, static_cast<unsigned>(len) * sizeof(Zpp16s));
  std::memset(signal + kDownSamplingMemory + len, 0, 8 * sizeof(Zpp16s));
  std::memcpy(mem, signal + len, kDownSamplingMemory * sizeof(Zpp16s));
  const Zpp16s* x = signal + 1;
  for (int n = 0; n < len; n += 5, x += 5, dst += 4) {
    V sum[4];
    unrolled<4>([&](auto f) {
      const Zpp16s* const taps = downSamplingTaps[5 * f % 4];
      const V t[4] = {load(taps), load(taps + 8), load(taps + 16), load(taps + 24)};
      sum[f] = windowSums<4>(x + 5 * f / 4, t);
    });
    storeFour(dst, rounded(sumsOfLanes32(sum[0], sum[1], sum[2], sum[3]), 14));
  }
}

void ownUpSampling_AMRWB_16s_W7(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem) {
  // The magnitudes of a filter's taps add up to 37140 at the most: no input needs the standard's steps.
  static_assert(32768 * Zpp64s{37140} <= magnitudesThatRound(1));
  Zpp16s signal[kUpSamplingMemory + 256 + 8];
  std::memcpy(signal, mem, kUpSamplingMemory * sizeof(Zpp16s));
  std::memcpy(signal + kUpSamplingMemory, src, static_cast<unsigned>(len) * sizeof(Zpp16s));
  std::memcpy(mem, signal + len, kUpSamplingMemory * sizeof(Zpp16s));
  const Zpp16s* x = signal + 1;
  for (int n = 0; n < len; n += 4, x += 4, dst += 5) {
    dst[0] = x[11];  // the filter of fraction 0 is a delay
    V sum[4];
    unrolled<4>([&](auto i) {
      constexpr int f = i + 1;
      const Zpp16s* const taps = upSamplingTaps[(4 * f) % 5];
      const V t[3] = {load(taps), load(taps + 8), load(taps + 16)};
      sum[i] = windowSums<3>(x + 4 * f / 5, t);
    });
    storeFour(dst + 1, rounded(sumsOfLanes32(sum[0], sum[1], sum[2], sum[3]), 14));
  }
}

void ownHighBandFilter_AMRWB_16s_I_W7(const Zpp16s* coef, Zpp16s* srcDst, int len, int inputShift, Zpp16s* mem) {
  constexpr int block = 80;
  V taps[4];
  for (int i = 0; i < 3; ++i) taps[i] = load(coef + 8 * i);
  taps[3] = loadFirst(coef + 24, 7);
  const V sums = _mm_add_epi32(_mm_add_epi32(magnitudes(taps[0]), magnitudes(taps[1])),
                               _mm_add_epi32(magnitudes(taps[2]), magnitudes(taps[3])));
  // Here the partial sums have to stay below 2^30.
  const int largest = ((1 << 30) - 1) / (sumLanes32(sums) + 1);
  const int largestInput = ownMaxAbs_16s(srcDst, len) + (1 << inputShift) - 1;
  if (largestInput >> inputShift > largest || ownMaxAbs_16s(mem, kHighBandMemory) > largest)
    return ownHighBandFilter_AMRWB_16s_I_PX(coef, srcDst, len, inputShift, mem);

  const V shift = _mm_cvtsi32_si128(inputShift);
  Zpp16s signal[kHighBandMemory + block + 8] = {};
  std::memcpy(signal, mem, kHighBandMemory * sizeof(Zpp16s));
  while (len > 0) {
    const int count = len < block ? len : block;
    int n = 0;
    for (; n + 8 <= count; n += 8) store(signal + kHighBandMemory + n, _mm_sra_epi16(load(srcDst + n), shift));
    for (; n < count; ++n) signal[kHighBandMemory + n] = shr16(srcDst[n], inputShift);
    n = 0;
    for (; n + 4 <= count; n += 4)
      storeFour(srcDst + n, rounded(sumsOfLanes32(windowSums<4>(signal + n, taps), windowSums<4>(signal + n + 1, taps),
                                                  windowSums<4>(signal + n + 2, taps), windowSums<4>(signal + n + 3, taps)),
                                    15));
    for (; n < count; ++n) srcDst[n] = sat16((sumLanes32(windowSums<4>(signal + n, taps)) + 0x4000) >> 15);
    std::memmove(signal, signal + count, kHighBandMemory * sizeof(Zpp16s));
    srcDst += count;
    len -= count;
  }
  std::memcpy(mem, signal, kHighBandMemory * sizeof(Zpp16s));
}

void ownDecimateBy2_AMRWB_16s_I_W7(Zpp16s* srcDst, int len, Zpp16s* mem) {
  // The taps add up to 32767: nothing can saturate.
  Zpp16s signal[kDecimationMemory + 256 + 8];
  std::memcpy(signal, mem, kDecimationMemory * sizeof(Zpp16s));
  std::memcpy(signal + kDecimationMemory, srcDst, static_cast<unsigned>(len) * sizeof(Zpp16s));
  std::memset(signal + kDecimationMemory + len, 0, 8 * sizeof(Zpp16s));
  std::memcpy(mem, signal + len, kDecimationMemory * sizeof(Zpp16s));
  const V first = pairOf(decimationTaps[0], decimationTaps[1]), second = pairOf(decimationTaps[2], decimationTaps[3]),
          third = pairOf(decimationTaps[4], 0);
  const auto four = [&](const Zpp16s* x) {
    const V sum = _mm_add_epi32(_mm_madd_epi16(load(x), first), _mm_madd_epi16(load(x + 2), second));
    return rounded(_mm_add_epi32(sum, _mm_madd_epi16(load(x + 4), third)), 15);
  };
  const int outputs = len / 2;
  int j = 0;
  for (; j + 4 <= outputs; j += 4) storeFour(srcDst + j, four(signal + 2 * j));
  if (j == outputs) return;
  Zpp16s rest[4];
  storeFour(rest, four(signal + 2 * j));
  std::memcpy(srcDst + j, rest, static_cast<unsigned>(outputs - j) * sizeof(Zpp16s));
}
