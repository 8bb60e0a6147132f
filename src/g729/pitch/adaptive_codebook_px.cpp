// Adaptive codebook: portable kernels. Sums saturate after each step, as the standard's do.
#include "core/fixed_point.h"
#include "g729/pitch/kernels.h"
#include "g729/pitch/normalised_correlation.h"
#include "g729/pitch/tables.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr int kTapsPerSide = 10;  // of the excitation's interpolation filter
constexpr Zpp32s kLoud = 67108864;

}  // namespace

void ownMeanSquareWeightedError_16s_PX(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* exc, int tMin, int tMax,
                                       Zpp16s* corr) {
  Zpp16s filtered[kSubframe];
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s acc = 0;
    for (int i = 0; i <= n; ++i) acc = macDbl(acc, exc[i - tMin], impulse[n - i]);
    filtered[n] = high16(shlSat32(acc, 3));
  }
  // A loud first vector scales those of all delays.
  const int scale = dotSat(filtered, filtered, kSubframe) > kLoud ? 2 : 0;
  for (Zpp16s& y : filtered) y = shr16(y, scale);

  for (int t = tMin;; ++t) {
    const Zpp32s energy = dotSat(filtered, filtered, kSubframe);
    corr[t - tMin] = sat16(overRoot(dotSat(target, filtered, kSubframe), energy));
    if (t == tMax) return;
    // One sample more in front: the filtered vector moves on and gains that sample's response (h[0] being 1).
    const Zpp16s sample = exc[-(t + 1)];
    for (int j = kSubframe - 1; j > 0; --j)
      filtered[j] = addSat16(high16(shlSat32(mulDbl(sample, impulse[j]), 3 - scale)), filtered[j - 1]);
    filtered[0] = shr16(sample, scale);
  }
}

int ownBestFraction_G729_16s_PX(const Zpp16s* corr, int first, int last) {
  const auto interpolated = [corr](int fraction) {
    const Zpp16s* x = fraction < 0 ? corr - 1 : corr;
    const int phase = fraction < 0 ? fraction + 3 : fraction;
    Zpp32s acc = 0;
    for (int i = 0; i < 4; ++i) {
      acc = macDbl(acc, x[-i], inter_3[3 * i + phase]);
      acc = macDbl(acc, x[i + 1], inter_3[3 * i + 3 - phase]);
    }
    return roundHigh16(acc);
  };
  int best = first;
  Zpp16s most = interpolated(first);
  for (int fraction = first + 1; fraction <= last; ++fraction) {
    const Zpp16s value = interpolated(fraction);
    if (value <= most) continue;
    most = value;
    best = fraction;
  }
  return best;
}

void ownDecodeAdaptiveVector_G729_16s_I_PX(int lag, int fraction, Zpp16s* exc) {
  constexpr int kRead = 64;  // from the tenth sample before the first centre on, behind whose last tap there are zeros
  const int phase = fraction > 0 ? 3 - fraction : -fraction;
  const Zpp16s* const centre = fraction > 0 ? exc - lag - 1 : exc - lag;
  const Zpp16s* const first = centre - (kTapsPerSide - 1);
  const Zpp16s(&taps)[24] = inter_3l_taps.at[phase];
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32u sum = 1 << 14;
    for (int k = 0; k < 24; ++k) sum += static_cast<Zpp32u>(first[n + k] * taps[k]);
    exc[n] = sat16(static_cast<Zpp32s>(sum) >> 15);
  }
  // The taps of a phase sum up to less than 1.82: samples of 14 bits stay clear of saturation. Otherwise all is done again,
  // from the past alone.
  int bits = 0;
  for (int n = 0; n < kRead; ++n) bits |= first[n] < 0 ? ~first[n] : first[n];
  if (bits < 1 << 14) [[likely]]
    return;
  const Zpp16s* x = centre;
  for (int n = 0; n < kSubframe; ++n, ++x) {
    Zpp32s acc = 0;
    for (int i = 0; i < kTapsPerSide; ++i) {
      acc = macDbl(acc, x[-i], inter_3l[3 * i + phase]);
      acc = macDbl(acc, x[i + 1], inter_3l[3 * i + 3 - phase]);
    }
    exc[n] = roundHigh16(acc);
  }
}

void ownAdaptiveCodebookContribution_G729_16s_PX(Zpp16s gain, const Zpp16s* filtered, const Zpp16s* target, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = subSat16(target[n], sat16((Zpp32s{gain} * filtered[n]) >> 14));
}
