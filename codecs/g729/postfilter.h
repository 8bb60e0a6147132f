// The postfilter of ITU-T G.729 (clauses 4.2, A.4.2 and E.4.2): long-term, short-term, tilt compensation, gain control.
#pragma once

#include "codecs/g729/filters.h"

namespace codecs::g729 {

// Main body and the other rates. At 11.8 kbit/s it withdraws from music.
class MainBodyPostfilter {
 public:
  // What holds for a frame
  struct Frame {
    bool noise;   // has no long-term part
    bool kbit12;  // the frame is one of 11.8 kbit/s,
    bool music;   // and of music
  };
  void start(const Frame& frame, Zpp16s delay);
  // filter: the subframe's quantised LP filter; synthesis: a subframe, with kBackwardOrder samples before it. Returns whether
  // the long-term part was at work.
  bool filter(const AnyFilter& filter, const Zpp16s* synthesis, Zpp16s* output);

 private:
  // How strong its parts are
  struct Strength {
    Zpp16s longTerm;                // gain factor, Q15
    Zpp16s denominator, numerator;  // weights of the LP filter, Q15
  };
  static constexpr Strength kSpeech = {16384, 22938, 18022};       // 0.5, 0.7 and 0.55
  static constexpr Strength kMostOfKbit12 = {8192, 22938, 21300};  // 0.25, 0.7 and 0.65
  static constexpr Strength kStep = {410, 1147, 1065};             // from frame to frame, a twentieth
  static constexpr int kPastResidual = 154;

  Frame frame_{};
  Zpp16s delay_ = 0;
  Strength strength_ = kMostOfKbit12;
  alignas(16) std::array<Zpp16s, kPastResidual + kSubframeSize> residual_{};    // through the numerator
  alignas(16) std::array<Zpp16s, kBackwardOrder + kSubframeSize> shortTerm_{};  // through the denominator as well
  Zpp16s tiltMemory_ = 0;
  Zpp16s gain_ = 16384;  // Q14
};

class AnnexAPostfilter {
 public:
  // a: the subframe's quantised LP filter; synthesis: a subframe, with kOrder samples before it; noise has no long-term part.
  void filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output);

 private:
  static constexpr int kPastResidual = 154;
  alignas(16) std::array<Zpp16s, kPastResidual + kSubframeSize> residual_{};
  alignas(16) std::array<Zpp16s, kOrder + kSubframeSize> shortTerm_{};
  Zpp16s tiltMemory_ = 0;
  Zpp16s gain_ = 4096;  // Q12
};

}  // namespace codecs::g729
