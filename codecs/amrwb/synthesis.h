// From the excitation to the output at 16 kHz: synthesis, post-processing and the high band (3GPP TS 26.190 clauses 6.1 to
// 6.3).
#pragma once

#include <algorithm>

#include "codecs/amrwb/common.h"

namespace codecs::amrwb {

inline constexpr int kHighOrder = 20;

// How the high band of a subframe is made
struct HighBand {
  int codedGain;       // index of the gain; below 0: estimated from the tilt
  bool lowPass;        // 23.85 kbit/s
  const Zpp16s* isf;   // 6.60 kbit/s: spectrum of the lower band, to be extrapolated; null: the lower band's filter, weighted
  int inactiveFrames;  // frames of speech since the VAD flag was last set
};

class Synthesis {
 public:
  Synthesis() : highPass50_(kHighPass50), highPass400_(kHighPass400) {}

  // lpc: 17; excitation: 64, scaled by 2^scale; pcm: 80
  void subframe(const Zpp16s* lpc, const Zpp16s* excitation, int scale, const HighBand& highBand, Zpp16s* pcm);
  // The modes that do not extrapolate leave the oldest part of the high band's memory empty.
  void shortenHighBandMemory() { std::fill_n(highBandMemory_, kHighOrder - kOrder, Zpp16s{0}); }

 private:
  void makeHighBand(const Zpp16s* lpc, const HighBand& highBand, Zpp16s* noise);

  Zpp32s past_[kOrder] = {};
  Zpp16s deemphasis_ = 0;
  HighPass highPass50_, highPass400_;
  Zpp16s upSampling_[24] = {};
  Zpp16s highBandMemory_[kHighOrder] = {}, bandPass_[30] = {}, lowPass_[30] = {};
  Zpp16s seed_ = 21845;
};

}  // namespace codecs::amrwb
