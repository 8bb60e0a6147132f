// Voice activity detection (ITU-T G.723.1 Annex A, clause A.2).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/dtx/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kLags = 4;

// All open-loop lags near multiples of the smallest one
bool isPeriodic(const Zpp16s* lags) {
  const int period = std::min<int>(kHistory, *std::min_element(lags, lags + kLags));
  int matches = 0;
  for (int i = 0; i < kLags; ++i)
    for (int j = 1; j <= 8; ++j) {
      const int difference = j * period - lags[i];
      matches += difference >= -3 && difference <= 3 ? 1 : 0;
    }
  return matches == kLags;
}

// Energy of the frame's last three subframes behind the inverse filter of the noise
Zpp32s residualEnergy(const Zpp16s* src, const Zpp16s* noiseLpc) {
  constexpr Zpp16s kMean = 2913;  // Q15: 16/180
  Zpp32s energy = 0;
  for (int n = kSubframe; n < kFrame; ++n) {
    Zpp32s sum = src[n] * (1 << 14);
    for (int j = 0; j < kOrder; ++j) sum = msuDbl(sum, src[n - 1 - j], noiseLpc[j]);
    const Zpp16s residual = roundHigh16(sum);
    energy = macDbl(energy, residual, residual);
  }
  return mul32Q15(energy, kMean);
}

// The noise level follows the last frame's energy down at once, and up while no activity forbids it.
Zpp32s adapted(Zpp64s level, Zpp32s lastEnergy, bool adapts) {
  if (level > lastEnergy) level = (lastEnergy - (lastEnergy >> 2)) + (level >> 2);
  level += adapts ? level >> 5 : -(level >> 11);
  return static_cast<Zpp32s>(std::clamp<Zpp64s>(level, 128, 131071));
}

// The energy up to which a frame counts as noise: a factor that falls as the level (128..131071) rises, interpolated
Zpp32s silenceThreshold(Zpp32s level) {
  const int norm = norm32(level << 13);  // 1..10
  const auto fraction = static_cast<Zpp16s>((((level << (13 + norm)) & 0x3f000000) << 1) >> 16);
  const Zpp16s here = VadScaleTbl[norm], next = VadScaleTbl[norm - 1];
  const Zpp16s factor = high16(msuDbl(macDbl(fromHigh16(here), fraction, next), fraction, here));
  return mulDbl(low16(level >> 2), factor) >> 11;
}

}  // namespace

ZppStatus zppsVAD_G723_16s(const Zpp16s* src, const Zpp16s* lags, const Zpp16s* noiseLpc, Zpp32s* levels, Zpp16s* counters,
                           Zpp16s* vad, Zpp16s sineDetector) {
  if (anyNull(src, lags, noiseLpc, counters, vad) || anyNull(levels)) return zppStsNullPointer;
  *vad = ownVAD_G723_16s(src, lags, noiseLpc, levels, counters, sineDetector < 0) ? 1 : 0;
  return zppStsOk;
}

bool ownVAD_G723_16s(const Zpp16s* src, const Zpp16s* lags, const Zpp16s* noiseLpc, Zpp32s* levels, Zpp16s* counters,
                     bool sine) {
  constexpr Zpp16s kHangover = 6, kBurst = 2;
  Zpp16s &hangover = counters[0], &activity = counters[1], &adaptation = counters[2];
  const bool tonal = sine || isPeriodic(lags);
  adaptation = static_cast<Zpp16s>(std::clamp(adaptation + (tonal ? 2 : -1), 0, 6));

  const Zpp32s energy = residualEnergy(src, noiseLpc);
  levels[1] = adapted(levels[1], levels[0], adaptation == 0);
  levels[0] = energy;
  const bool silent = silenceThreshold(levels[1]) > energy;

  if (silent) {
    activity = static_cast<Zpp16s>(std::max(activity - 1, 0));
  } else {
    activity = addSat16(activity, 1);
    hangover = addSat16(hangover, 1);
  }
  if (activity >= kBurst) {
    hangover = kHangover;
    activity = std::min<Zpp16s>(activity, kBurst + 1);
  }
  bool active = !silent;
  if (hangover != 0) {
    active = true;
    if (activity == 0) hangover = subSat16(hangover, 1);
  }
  return active;
}
