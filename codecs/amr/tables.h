// Constant tables of the complete codec. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "codecs/amr/modes.h"

namespace codecs::amr {

// Parameters and bits of a frame. Parameters: LSF indices, then for each subframe lag index, at 12.2 kbit/s the pitch gain,
// code words, at 7.95 kbit/s the pitch gain, gain index (at 4.75 kbit/s in subframes 0 and 2 only).
struct FrameLayout {
  const Zpp8u* widths;  // bits of each parameter, bitno_MR475 ...
  int parameters, bits;
  int octets;            // that hold the bits in a payload
  const Zpp8u* order;    // sent bit i is bit order[i] of the parameters one after the other, sort_475 ...
  const Zpp16s* homing;  // parameters of the decoder homing frame, dhf_MR475 ...
  int firstSubframe;     // parameters up to the end of the first subframe
};
extern const FrameLayout frameLayouts[kModes];
extern const FrameLayout sidLayout;
inline constexpr int kMaxParameters = 57, kMaxBits = 244;

// Windows of the LP analysis: 240, Q15, window_200_40, window_160_80, window_232_8
extern const Zpp16s window200_40[240], window160_80[240], window232_8[240];
// LSPs after reset: 10, Q15, lsp_init_data
extern const Zpp16s lspInit[10];
// LSFs after reset, the mean of the five-way quantiser: 10, 16384 = 4000 Hz, mean_lsf_5
extern const Zpp16s meanLsf[10];

}  // namespace codecs::amr
