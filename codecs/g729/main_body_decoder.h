// The frame decoder of ITU-T G.729's main body and of the other rates (Annexes D and E, with F, G, H and I), with the comfort
// noise of Annex B and the concealment of lost frames.
#pragma once

#include "codecs/g729/backward.h"
#include "codecs/g729/decoder.h"
#include "codecs/g729/postfilter.h"

namespace codecs::g729 {

// Follows the delay from subframe to subframe, so that one which leaps in a lost frame at 11.8 kbit/s is put right (clause
// E.4.4).
class PitchTracker {
 public:
  // Takes the delay of the next subframe; returns the one that suits its predecessors.
  PitchDelay take(const PitchDelay& delay);
  void restart() { steady_ = 0; }

 private:
  int previous_ = 30;
  int steady_ = 0;  // how many delays agreed, up to 7
  PitchDelay kept_{};
};

class MainBodyDecoder {
 public:
  MainBodyDecoder();
  void decode(const Frame& frame, Zpp16s* samples) { play(frame, false, samples); }
  // For a frame that has not arrived: speech goes on at its rate, silence as silence.
  void conceal(Zpp16s* samples);

 private:
  using SubframeParameters = SpeechParameters::Subframe;

  void play(const Frame& frame, bool lost, Zpp16s* samples);
  void decodeSpeech(const SpeechParameters& parameters);
  void decodeNoise(const SidParameters* sid);
  void deriveFilters(const SpeechParameters& parameters);
  void moveForward(const Lsp& lsp, bool interpolated);
  PitchDelay takeDelay(const SpeechParameters& parameters, int subframe);
  void decodeSubframe(const SubframeParameters& parameters, const PitchDelay& delay, int subframe);
  void decodeGains(const Subframe& code, const Zpp16s* index);
  void fadeGains();
  void synthesiseSubframe(int subframe, const Subframe* code);

  Zpp16s* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }

  // The frame, and what was kept of the one before
  struct Kind {
    bool speech = true, lost = false;
    Rate rate = Rate::kbit8;
    bool backward = false;
    bool voiced = false;  // by the postfilter in the frame before; what a lost frame takes from the excitation
  };
  Kind kind_, last_;

  alignas(16) std::array<Zpp16s, kPastExcitation + kFrameSize> excitation_{};
  BackwardAnalysis synthesis_;
  AnySubframeFilters filters_;
  Zpp16s delay_ = 60;  // of the first subframe, for the postfilter

  // What is predicted from, or repeated in a lost frame
  LspDecoder lsp_;
  LspInterpolation interpolation_;
  BackwardInterpolation backwardInterpolation_;
  PitchDelay lastDelay_ = {60, 0};
  PitchTracker tracker_;
  GainMemory gainMemory_ = kInitialGainMemory;
  std::array<Zpp16s, 2> gains_{};
  Zpp16s sharpening_ = kLeastSharpening;
  bool voiced_ = true;  // by the postfilter
  RandomNumbers random_{21845};

  // 11.8 kbit/s
  Dominance dominance_;
  int backwardRun_ = 0;              // subframes, up to 30
  int lostSubframes_ = 0;            // one after the other
  Zpp16s muting_ = 32767;            // of the gains in lost frames, Q15
  BackwardFilter beforeLoss_{4096};  // the filter that the encoder may still have while ours has gone astray,
  Zpp16s shareBeforeLoss_ = 0;       // and its share of what is used, Q12

  std::array<Zpp8u, 20> dispersion_;  // 6.4 kbit/s
  SilenceDecoder silence_;
  MainBodyPostfilter postfilter_;
  HighPassFilter highPass_{HighPassFilter::Kind::output};
};

}  // namespace codecs::g729
