// Which lags a subframe searches and how they are coded (3GPP TS 26.190 clause 5.7): the one place that encoder and decoder
// share. Lags are in samples at 12.8 kHz.
#pragma once

#include <algorithm>

#include "amrwb/rate.h"

namespace zpp::amrwb {

inline constexpr int kMinLag = 34, kMaxLag = 231;
inline constexpr int kLagsOfRange = 16;  // integer lags that an absolute subframe searches and a relative one codes

struct PitchLag {
  int samples, quarters;
};

constexpr bool hasLowRate(Mode mode) { return mode == mode660 || mode == mode885; }
// Whether the subframe's lag is coded by itself, not relative to the one before
constexpr bool codesAbsolute(int subframe, Mode mode) { return subframe == 0 || (subframe == 2 && mode != mode660); }

// The first lag of the range around a lag
constexpr int rangeAround(int lag) { return std::clamp(lag - kLagsOfRange / 2, kMinLag, kMaxLag - (kLagsOfRange - 1)); }

// Absolute codes step by the finest resolution below firstHalf, by halves of a sample from there to firstWhole, then by
// samples. At the low rates the finest resolution is a half.
struct Resolution {
  int finest;  // steps a sample
  int firstHalf, firstWhole;
};
constexpr Resolution resolutionOf(Mode mode) { return hasLowRate(mode) ? Resolution{2, 92, 92} : Resolution{4, 128, 160}; }

constexpr int encodedLag(PitchLag lag, bool absolute, int rangeStart, Mode mode) {
  const Resolution r = resolutionOf(mode);
  const int inFinest = lag.quarters / (4 / r.finest);
  if (!absolute) return (lag.samples - rangeStart) * r.finest + inFinest;
  if (lag.samples < r.firstHalf) return (lag.samples - kMinLag) * r.finest + inFinest;
  const int halvesStart = (r.firstHalf - kMinLag) * r.finest, wholesStart = halvesStart + 2 * (r.firstWhole - r.firstHalf);
  if (lag.samples < r.firstWhole) return halvesStart + (lag.samples - r.firstHalf) * 2 + lag.quarters / 2;
  return wholesStart + lag.samples - r.firstWhole;
}

// index: within its field of 8 or 5 bits at the low rates, 9 or 6 at the others
constexpr PitchLag decodedLag(int index, bool absolute, int rangeStart, Mode mode) {
  const Resolution r = resolutionOf(mode);
  const auto inSteps = [](int start, int steps, int perSample) {
    return PitchLag{start + steps / perSample, steps % perSample * (4 / perSample)};
  };
  if (!absolute) return inSteps(rangeStart, index, r.finest);
  const int halvesStart = (r.firstHalf - kMinLag) * r.finest, wholesStart = halvesStart + 2 * (r.firstWhole - r.firstHalf);
  if (index < halvesStart) return inSteps(kMinLag, index, r.finest);
  if (index < wholesStart) return inSteps(r.firstHalf, index - halvesStart, 2);
  return {r.firstWhole + index - wholesStart, 0};
}
static_assert(decodedLag(439, true, 0, mode2385).samples == 159 && decodedLag(511, true, 0, mode2385).samples == kMaxLag);
static_assert(decodedLag(115, true, 0, mode660).samples == 91 && decodedLag(255, true, 0, mode660).samples == kMaxLag);

}  // namespace zpp::amrwb
