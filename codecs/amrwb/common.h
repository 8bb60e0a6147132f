// What both directions of AMR-WB share: sizes, filters, initial values.
#pragma once

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::amrwb {

inline constexpr int kInputFrame = 320, kInputSubframe = 80;        // at 16 kHz
inline constexpr int kFrame = 256, kSubframe = 64, kSubframes = 4;  // at 12.8 kHz
inline constexpr int kOrder = 16, kFilter = kOrder + 1;
inline constexpr int kPastExcitation = 248;

inline constexpr Zpp16s kPreemphasis = 22282;      // 0.68, Q15
inline constexpr Zpp16s kPitchSharpening = 27853;  // 0.85, Q15
inline constexpr Zpp16s kHighBandWeight = 19661;   // 0.6, Q15
inline constexpr Zpp16s kLevelScale = 12483;       // comfort noise: levels in the logarithm to steps of the descriptor
inline constexpr Zpp16s kHomingSample = 8;         // a frame of such samples resets encoder and decoder

extern const Zpp16s initialIsf[kOrder], initialIsp[kOrder];

// Numerator, then feedback factors of the high-pass filters of 50 Hz (Q12, Q13), 400 Hz (Q10, Q14) and of the weighted speech
inline constexpr Zpp16s kHighPass50[5] = {4053, -8106, 4053, 16211, -8021};
inline constexpr Zpp16s kHighPass400[5] = {915, -1830, 915, 29280, -14160};
inline constexpr Zpp16s kHighPassPitch[7] = {-3432, 10280, -10280, 3432, 21663, -19258, 5734};

// A high-pass filter of order 2 or 3 with its memory
class HighPass {
 public:
  template <int count>
  explicit HighPass(const Zpp16s (&coefficients)[count]) {
    require(zppsHighPassFilterInit_AMRWB_16s(coefficients, (count - 1) / 2, state_));
  }
  void filter(Zpp16s* samples, int len, int shift) { require(zppsHighPassFilter_AMRWB_16s_I(samples, len, shift, state_)); }
  // Multiplies the memory by 2^shift.
  void scale(int shift) { require(zppsHighPassFilterScale_AMRWB_16s(shift, state_)); }

 private:
  Zpp8u state_[40];
};

constexpr ZppSpeechRate rateOf(int mode) {
  constexpr ZppSpeechRate rates[9] = {ZPP_RATE_6600,  ZPP_RATE_8850,  ZPP_RATE_12650, ZPP_RATE_14250, ZPP_RATE_15850,
                                      ZPP_RATE_18250, ZPP_RATE_19850, ZPP_RATE_23050, ZPP_RATE_23850};
  return rates[mode];
}
// 6.60 and 8.85 kbit/s
constexpr bool isLowRate(int mode) { return mode < 2; }
inline constexpr int kHighestMode = 8;  // 23.85 kbit/s, which codes the high band's gain

// x * 2^shift, rounded half up where it shifts right, saturated where it shifts left; shift up to 14
inline void scale(Zpp16s* x, int len, int shift) {
  if (shift > 0)
    require(zppsMulC_NR_16s_ISfs(x, static_cast<Zpp16s>(1 << shift), len, 0));
  else if (shift < 0)
    require(zppsMulC_NR_16s_ISfs(x, 1, len, -shift));
}
inline void scale(const Zpp16s* x, Zpp16s* dst, int len, int shift) {
  require(shift > 0 ? zppsMulC_NR_16s_Sfs(x, static_cast<Zpp16s>(1 << shift), dst, len, 0)
                    : zppsMulC_NR_16s_Sfs(x, 1, dst, len, -shift));
}
constexpr Zpp16s shlSat16(Zpp16s x, int n) { return sat16(shlSat32(x, n)); }

// lpc[j] * factor^j
inline void weight(const Zpp16s* lpc, Zpp16s factor, Zpp16s* dst, int len = kFilter) {
  require(zppsMulPowerC_NR_16s_Sfs(lpc, factor, dst, len, 15));
}

}  // namespace codecs::amrwb
