// The encoder of ITU-T G.729's main body and of the other rates (Annexes D and E, with G, H and I): the error is weighted by
// W(z) = A(z/gamma1) / A(z/gamma2) of the unquantised filter, whose factors follow the flatness of the spectrum, and the
// codebooks are searched at length. At 11.8 kbit/s a frame may take its LP filter from the past synthesis.
#pragma once

#include "codecs/g729/encoder.h"
#include "codecs/g729/mode_decision.h"
#include "codecs/g729/music.h"

namespace codecs::g729 {

// Chooses gamma1 and gamma2 (clause 3.3).
class WeightingFactors {
 public:
  struct Factors {
    Zpp16s gamma1, gamma2;  // Q15
  };
  // The reflection coefficients of a frame, of which the first two count; normalised LSFs of its two subframes
  std::array<Factors, kSubframes> next(const Reflection& reflection, const std::array<Lsf, kSubframes>& lsf);

 private:
  Factors choose(Zpp16s logAreaRatio0, Zpp16s logAreaRatio1, const Lsf& lsf);

  std::array<Zpp16s, 2> logAreaRatios_{};  // Q11, of the frame before
  bool flat_ = true;
};

class MainBodyEncoder : public FrameEncoder<MainBodyEncoder> {
 public:
  // everyRate: the rate may change from frame to frame
  MainBodyEncoder(bool discontinuous, bool everyRate);
  Frame encode(const Zpp16s* samples, Rate rate);

 private:
  friend FrameEncoder;

  // What a frame of speech is coded with, before it is known which of the filters it takes
  struct Quantised {
    Lsp lsp;
    Lsf codeVector;
    std::array<Zpp16s, 2> code;
    SubframeFilters filters;
  };
  bool isVoice(const Analysis& analysis);
  Quantised quantise(const Lsp& lsp);
  void chooseFilters(const Analysis& analysis, const Quantised& quantised);
  void weightSpeech(const Analysis& analysis);
  SpeechParameters encodeSpeech(const Quantised& quantised);
  std::optional<SidParameters> encodeSilence();

  static Lsp toLsp(const Filter& a, const Lsp& previous);
  SearchTarget searchTarget(int subframe);
  PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search);
  Zpp16s filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered);
  FixedVector searchFixedCodebook(int subframe, const FixedTarget& target, SpeechParameters::Subframe& parameters);
  void coded(int subframe, const SearchTarget& search, const Result& result);

  // error: the subframe with the kBackwardOrder samples before it
  Subframe weightError(int subframe, const Zpp16s* error) const;
  void synthesiseLocally(int subframe);

  Rate rate_ = Rate::kbit8;                       // of the frame
  bool backward_ = false;                         // its LP filter
  bool afterBackward_ = false;                    // that of the frame before
  AnySubframeFilters synthesisFilters_;           // 1/A(z), quantised
  AnySubframeFilters numerators_, denominators_;  // of W(z)
  Subframe residual_{};                           // of the speech, at 11.8 kbit/s

  WeightingFactors weightingFactors_;
  BackwardAnalysis synthesis_;
  BackwardInterpolation interpolation_;
  ModeDecision mode_;
  std::optional<MusicDetector> music_;  // where Annex B is at work and frames of 11.8 kbit/s may come
  FilterMemory<kBackwardOrder> errorMemory_{}, weightedErrorMemory_{};
  Zpp16s searchBudget_ = 0;
};

}  // namespace codecs::g729
