// The state block of the voice activity detector: the variables of 3GPP TS 46.032 that live from frame to frame.
//
// The application owns the block, at any alignment. A call copies it into this structure, decides, and copies it back.
#pragma once

#include <algorithm>
#include <compare>
#include <cstring>

#include "core/fixed_point.h"

namespace zpp::gsmfr {

inline constexpr int vadStateSize = 320;
inline constexpr int vadLags = 9;

// 2^exponent * mantissa / 32768; the mantissa is 0, or 16384..32767, so that numbers compare by exponent, then mantissa.
struct Pseudofloat {
  Zpp32s exponent, mantissa;
  constexpr auto operator<=>(const Pseudofloat&) const = default;
};

struct VadState {
  Zpp32s sums[3][vadLags] = {};      // sacf: scaled lags of the last three frames, a ring
  Zpp32s averages[4][vadLags] = {};  // sav0: sums over four frames as they were in the last four frames, a ring
  Zpp32s distortion = 0;             // lastdm, Q28 of the spectral distance
  Pseudofloat threshold = {20, 31250};
  Zpp16s predictor[vadLags] = {24576, -16384, 4096};  // rvad: autocorrelation of the adaptive filter's coefficients
  Zpp16s predictorNorm = 7;                           // normrvad
  Zpp16s oldLagCount = 0, veryOldLagCount = 0;
  Zpp16s oldLag = 40;
  Zpp16s hang = -1;  // hangcount
  Zpp8u sumPlace = 0, averagePlace = 0;
  Zpp8u burst = 0;  // burstcount
  Zpp8u adapt = 0;  // adaptcount
  Zpp8u tone = 0;
  Zpp8u downlink = 0;
  Zpp8u unused[22] = {};
};
static_assert(sizeof(VadState) == vadStateSize);

// Fields are brought into ranges that the arithmetic keeps by itself: a block of rubbish decides at random, but does no harm.
inline VadState loadVadState(const void* block) {
  VadState state;
  std::memcpy(&state, block, sizeof state);
  state.sumPlace %= 3;
  state.averagePlace %= 4;
  state.threshold.exponent = std::clamp(state.threshold.exponent, -32768, 32767);
  state.threshold.mantissa &= 32767;
  state.predictorNorm &= 31;
  state.oldLag = std::clamp<Zpp16s>(state.oldLag, 40, 120);
  state.hang = std::clamp<Zpp16s>(state.hang, -1, 5);
  state.burst = std::min<Zpp8u>(state.burst, 3);
  state.adapt = std::min<Zpp8u>(state.adapt, 9);
  return state;
}

inline void storeVadState(const VadState& state, void* block) { std::memcpy(block, &state, sizeof state); }

}  // namespace zpp::gsmfr
