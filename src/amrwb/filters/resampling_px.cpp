// Sampling-rate conversion and filters of the high band: portable kernels.
#include <cstring>

#include "amrwb/filters/kernels.h"
#include "amrwb/filters/tables.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// The magnitudes of the filters' taps add up to 30851 and 37140 at the most: no input needs the steps.
template <int taps>
Zpp16s resampled(const Zpp16s* x, const Zpp16s* coef) {
  static_assert(32768 * Zpp64s{37140} <= magnitudesThatRound(1));
  return roundedSum(exactDotProduct<taps>(x, coef), 1);
}

}  // namespace

void ownDownSampling_AMRWB_16s_PX(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem) {
  Zpp16s signal[kDownSamplingMemory + 320 + 2] = {};  // 32 taps, of which the last two are 0
  std::memcpy(signal, mem, kDownSamplingMemory * sizeof(Zpp16s));
  std::memcpy(signal + kDownSamplingMemory, src, static_cast<unsigned>(len) * sizeof(Zpp16s));
  std::memcpy(mem, signal + len, kDownSamplingMemory * sizeof(Zpp16s));
  for (int j = 0; j < len * 4 / 5; ++j) {
    const int position = 5 * j;  // quarters of an input sample
    dst[j] = resampled<32>(signal + 1 + position / 4, downSamplingTaps[position % 4]);
  }
}

void ownUpSampling_AMRWB_16s_PX(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem) {
  Zpp16s signal[kUpSamplingMemory + 256];
  std::memcpy(signal, mem, kUpSamplingMemory * sizeof(Zpp16s));
  std::memcpy(signal + kUpSamplingMemory, src, static_cast<unsigned>(len) * sizeof(Zpp16s));
  std::memcpy(mem, signal + len, kUpSamplingMemory * sizeof(Zpp16s));
  for (int j = 0; j < len * 5 / 4; ++j) {
    const int position = 4 * j;  // fifths of an input sample
    dst[j] = resampled<kUpSamplingMemory>(signal + 1 + position / 5, upSamplingTaps[position % 5]);
  }
}

void ownHighBandFilter_AMRWB_16s_I_PX(const Zpp16s* coef, Zpp16s* srcDst, int len, int inputShift, Zpp16s* mem) {
  constexpr int block = 80, taps = kHighBandMemory + 1;
  Zpp16s padded[taps + 1] = {};
  std::memcpy(padded, coef, taps * sizeof(Zpp16s));
  Zpp64s magnitudes = 0;
  for (const Zpp16s c : padded) magnitudes += absSat16(c);
  Zpp16s signal[kHighBandMemory + block + 1] = {};
  std::memcpy(signal, mem, kHighBandMemory * sizeof(Zpp16s));
  while (len > 0) {
    const int count = len < block ? len : block;
    for (int n = 0; n < count; ++n) signal[kHighBandMemory + n] = shr16(srcDst[n], inputShift);
    if (magnitudes * (ownMaxAbs_16s(signal, kHighBandMemory + count) + 1) <= magnitudesThatRound(0))
      for (int n = 0; n < count; ++n) srcDst[n] = roundedSum(exactDotProduct<taps + 1>(signal + n, padded), 0);
    else
      for (int n = 0; n < count; ++n) srcDst[n] = roundHigh16(dotProductStepwise(signal + n, coef, taps, 0));
    std::memmove(signal, signal + count, kHighBandMemory * sizeof(Zpp16s));
    srcDst += count;
    len -= count;
  }
  std::memcpy(mem, signal, kHighBandMemory * sizeof(Zpp16s));
}

void ownDecimateBy2_AMRWB_16s_I_PX(Zpp16s* srcDst, int len, Zpp16s* mem) {
  Zpp16s last[kDecimationMemory], x[5];
  std::memcpy(last, srcDst + len - kDecimationMemory, sizeof last);
  std::memcpy(x, mem, kDecimationMemory * sizeof(Zpp16s));
  for (int n = 0; n < len; n += 2) {
    x[3] = srcDst[n];
    x[4] = srcDst[n + 1];
    Zpp32s sum = 0;  // the taps add up to 32767: nothing can saturate
    for (int k = 0; k < 5; ++k) sum += decimationTaps[k] * x[k];
    srcDst[n / 2] = roundHigh16(2 * sum);
    for (int k = 0; k < kDecimationMemory; ++k) x[k] = x[k + 2];
  }
  std::memcpy(mem, last, sizeof last);
}
