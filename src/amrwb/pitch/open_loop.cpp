// Open-loop pitch search on the decimated weighted speech (3GPP TS 26.190 clause 5.4.2).
#include <algorithm>
#include <cstring>

#include "amrwb/pitch/kernels.h"
#include "amrwb/pitch/tables.h"
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsOpenLoopPitchSearch_AMRWB_16s(const Zpp16s* wsp, const Zpp16s* hpWsp, int len, Zpp16s* lag, Zpp16s* gain,
                                            Zpp16s* mem) {
  if (anyNull(wsp, hpWsp, lag, gain, mem)) return zppStsNullPointer;
  if (len != kSubframe && len != 2 * kSubframe) return zppStsBadSize;
  ownOpenLoopPitchSearch_AMRWB_16s(wsp, hpWsp, len, lag, gain, mem);
  return zppStsOk;
}

namespace {

constexpr int kLags = kOpenLoopMaxLag - kOpenLoopMinLag + 1;

// The caller's memory
struct LagTrack {
  Zpp16s median, weight, weighting;
  Zpp16s past[5];  // newest first
};
static_assert(sizeof(LagTrack) == 8 * sizeof(Zpp16s));

// correlation[k]: lag kOpenLoopMaxLag - k
void correlate(const Zpp16s* wsp, int len, Zpp32s* correlation) {
  const Zpp16s* const oldest = wsp - kOpenLoopMaxLag;
  const Zpp64s energyNew = ownDotProd_16s(wsp, wsp, len);
  if (productsFit(energyNew, energyNew + ownDotProd_16s(oldest, oldest, kOpenLoopMaxLag))) {
    ownCorr_16s32s(wsp, oldest, len, correlation, kLags);
    for (int k = 0; k < kLags; ++k) correlation[k] *= 2;
  } else {
    for (int k = 0; k < kLags; ++k) correlation[k] = dotProductStepwise(wsp, oldest + k, len, 0);
  }
}

// Normalised correlation of x with itself `lag` samples earlier, Q15
Zpp16s normalisedCorrelation(const Zpp16s* x, int len, int lag) {
  const Zpp16s* const past = x - lag;
  const Zpp64s energyNew = ownDotProd_16s(x, x, len), energyPast = ownDotProd_16s(past, past, len);
  const Floating c = normalised(dotProduct(x, past, len, 0, energyNew, energyPast));
  const Floating e0 = normalised(sat32(1 + 2 * energyNew)), e1 = normalised(sat32(1 + 2 * energyPast));
  const Floating product = normalised(mulDbl(roundHigh16(e1.mantissa), roundHigh16(e0.mantissa)));
  const Floating root = inverseSqrt({product.mantissa, e0.exponent + e1.exponent + product.exponent - 28});
  return roundHigh16(shlSat32(mulDbl(roundHigh16(c.mantissa), roundHigh16(root.mantissa)), c.exponent + 1 + root.exponent));
}

Zpp16s medianOf(const Zpp16s* x) {
  Zpp16s sorted[5];
  std::copy_n(x, 5, sorted);
  std::nth_element(sorted, sorted + 2, sorted + 5);
  return sorted[2];
}

}  // namespace

void ownOpenLoopPitchSearch_AMRWB_16s(const Zpp16s* wsp, const Zpp16s* hpWsp, int len, Zpp16s* lag, Zpp16s* gain, Zpp16s* mem) {
  LagTrack track;
  std::memcpy(&track, mem, sizeof track);

  Zpp32s correlation[kLags];
  correlate(wsp, len, correlation);
  Zpp32s largest = kMin32;
  int best = kOpenLoopMinLag;
  for (int i = kOpenLoopMaxLag; i >= kOpenLoopMinLag; --i) {
    Zpp32s value = mulDpf16(toDpf(correlation[kOpenLoopMaxLag - i]), lagWeights[83 + i]);
    if (track.median > 0 && track.weighting > 0)
      value = mulDpf16(toDpf(value), lagWeights[std::clamp(98 - track.median + i, 0, 198)]);
    if (value < largest) continue;
    largest = value;
    best = i;
  }
  *lag = static_cast<Zpp16s>(best);
  *gain = normalisedCorrelation(hpWsp, len, best);

  if (*gain > 19661) {  // 0.6
    std::copy_backward(track.past, track.past + 4, track.past + 5);
    track.past[0] = *lag;
    track.median = medianOf(track.past);
    track.weight = kMax16;
  } else {
    track.weight = mulQ15(track.weight, 29491);
  }
  track.weighting = track.weight >= 26214 ? 1 : 0;  // 0.8
  std::memcpy(mem, &track, sizeof track);
}
