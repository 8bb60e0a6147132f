// From the input to pre-emphasised speech at 12.8 kHz, scaled to what 16 bits hold (3GPP TS 26.190 clause 5.1).
#pragma once

#include "codecs/amrwb/common.h"

namespace codecs::amrwb {

class Preprocessing {
 public:
  // pcm: a frame at 16 kHz, Q0. Afterwards the signal is scaled by 2^scale(), by 2^scaleChange() more than before.
  void process(const Zpp16s* pcm);

  int scale() const { return scale_; }
  int scaleChange() const { return scaleChange_; }
  // What LP analysis sees: 64 samples before the frame, the frame, and 64 of the next, of which the filters know 12 as yet
  const Zpp16s* window() const { return speech_; }
  // A subframe, with samples before it
  const Zpp16s* speech(int subframe) const { return speech_ + kLookBack + kSubframe * subframe; }
  // The samples that came new, in Q0 less one bit, which the voice activity detection takes
  void newSpeech(Zpp16s* dst) const;

 private:
  static constexpr int kLookBack = 64, kWindow = 384, kOld = 116, kAhead = 12;

  Zpp16s speech_[kWindow] = {};  // newest last
  Zpp16s downSampling_[30] = {};
  HighPass highPass_{kHighPass50};
  Zpp16s last_ = 0;  // before pre-emphasis
  int scale_ = 15, scaleChange_ = 0;
  int possible_[2] = {15, 15};  // scales that the last two frames allowed, newest first
};

}  // namespace codecs::amrwb
