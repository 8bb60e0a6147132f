// Music detection of ITU-T G.729 at 11.8 kbit/s (Annex G clause G.3): keeps the voice activity detector from taking music for
// noise. It watches how well a long past predicts the signal: the pitch gains and how steady the delays are, and backward LP.
#pragma once

#include "codecs/g729/analysis.h"
#include "codecs/g729/frame.h"

namespace codecs::g729 {

class MusicDetector {
 public:
  struct Input {
    Zpp32s energy;  // of the windowed frame, energy * 2^exponent
    int exponent;
    const Reflection& reflection;
    bool voice, voiceBefore;  // the voice activity detector's decision, and the one on the frame before that was accepted
    Zpp16s level;             // its energy of the frame
    int frame;                // its number of the frame
    bool afterBackward;       // the mode of the frame before
    Rate rate;
  };
  // Takes the next frame and returns whether it is voice or music. Below 11.8 kbit/s voice remains what it is.
  bool take(const Input& input);

  // Of frames and subframes that are coded as speech: the open-loop delay and the quantised pitch gains, Q14
  void takeDelay(Zpp16s delay);
  void takePitchGain(Zpp16s gain);

 private:
  bool isPeriodic(bool voiceBefore, Rate rate);

  // Counts occurrences over blocks of 64 frames, and the mean of these counts; steadied: many of them move it less.
  struct Occurrences {
    Zpp16s count = 0, mean = 0, absent = 0;  // 256 an occurrence; frames without one
  };
  void track(Occurrences& o, bool occurred, int frame, int absentLimit, bool steadied);

  std::array<Zpp16s, kOrder> meanReflection_{};                             // of noise
  Zpp16s meanLevel_ = 0;                                                    // of the LP residual of noise
  std::array<Zpp16s, 5> delays_ = {20, 20, 20, 20, 20};                     // the newest last
  std::array<Zpp16s, 5> pitchGains_ = {11469, 11469, 11469, 11469, 11469};  // the newest last
  Zpp16s meanPitchGain_ = 8192;                                             // Q14
  Occurrences backward_, periodic_;
  int flatFrames_ = 0;  // without resonance, one after the other
};

}  // namespace codecs::g729
