// Weighted speech at 6.4 kHz and the open-loop pitch lags (3GPP TS 26.190 clauses 5.4 and 5.5).
#pragma once

#include "codecs/amrwb/common.h"

namespace codecs::amrwb {

class OpenLoop {
 public:
  // lpc: the four unquantised filters. speech: the frame, with 16 samples before. scaleChange: of the speech against the last
  // frame's. Afterwards shift() tells by how many bits more the weighted speech is scaled, at most 0.
  void weighSpeech(const Zpp16s* lpc, const Zpp16s* speech, int scaleChange);
  int shift() const { return shift_; }

  // Lags at 12.8 kHz of both halves of the frame; once: one search serves both. toneFlag: the caller's word of the detection of
  // tones, which moves by one bit a search.
  void search(bool once, Zpp16s* toneFlag, Zpp16s (&lags)[2]);

 private:
  static constexpr int kLongestLag = 115, kHalfFrame = kFrame / 2;

  Zpp16s deemphasis_ = 0;
  Zpp16s decimation_[3] = {};
  Zpp16s largest_ = 0;  // sample of the last frame's weighted speech
  int shift_ = 0;
  // At 6.4 kHz: what longer lags reach, then the frame; the same through the high-pass filter
  Zpp16s weighted_[kLongestLag + kHalfFrame] = {}, highPassed_[kLongestLag + kHalfFrame] = {};
  HighPass highPass_{kHighPassPitch};
  Zpp16s tracking_[8] = {40, 0, 0, 40, 40, 40, 40, 40};
};

}  // namespace codecs::amrwb
