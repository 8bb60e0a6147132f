// The frame encoder of ITU-T G.729 Annex C in single precision, for main body and Annex A.
#pragma once

#include "codecs/g729/frame.h"
#include "codecs/g729/single_precision/filters.h"
#include "codecs/g729/taming.h"

namespace codecs::g729f {

using g729::SpeechParameters;

struct Errors {
  using Error = Zpp32f;
  using Gain = Zpp32f;
  static constexpr Error start = 1, threshold = 60000;
  static Error passed(Error error, Gain gain) { return start + gain * error; }
};
using Taming = g729::TamingIn<Errors>;

// The weighted synthesis filter's response and what its output should be (clauses 3.5 and 3.6)
struct SearchTarget {
  Subframe impulse;
  Subframe target;
};

// The delays among which the search of a subframe chooses (clause 3.7): around that of the frame, then that of the first
// subframe
struct DelayRange {
  int least, most;
};
DelayRange delaysAround(int centre, int subframe);
// Longer delays of a first subframe have no fraction.
inline constexpr int kLongestFractional = 84;

// impulse[n] * input, and the correlation of a target with the response: sums of target[j] * impulse[j - n]
Subframe convolve(const Subframe& input, const Subframe& impulse);
Subframe backwardFilter(const Subframe& target, const Subframe& impulse);

// What main body and Annex A have in common. The Coder, a class derived from this one, has the members
//
//   static Lsp toLsp(const Filter& a, const Lsp& previous)
//   void analysed(const Filter& a, const std::array<Zpp32f, 2>& reflection, const Lsp& previous, const Lsp& lsp)
//       a frame's LP filter is known: its coefficients, LSPs and those of the frame before
//   void quantised(const SubframeFilters& filters)
//       the decoder's filters are known, and excitation() holds the LP residual
//   int openLoopDelay() const
//   SearchTarget searchTarget(int subframe)
//   PitchDelay searchAdaptiveCodebook(int subframe, int centre, const SearchTarget& search)
//       writes the adaptive vector to excitation()
//   Subframe filterAdaptiveVector(int subframe, const SearchTarget& search)
//   std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, Zpp32f* matrix, Subframe& code)
//       returns signs and positions
//   void coded(int subframe, const Subframe& rest)
//       the excitation of a subframe is complete; rest: what it leaves of the target
template <class Coder>
class FrameEncoder {
 public:
  SpeechParameters encode(const Zpp16s* samples);

 protected:
  // The subframe of the frame being coded, and what came before it
  const Zpp32f* speech(int subframe) const { return speech_.data() + kPastSpeech + kSubframeSize * subframe; }
  Zpp32f* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }
  const Zpp32f* weightedSpeech(int subframe) const { return weightedSpeech_.data() + kLongestDelay + kSubframeSize * subframe; }
  Zpp32f* weightedSpeech(int subframe) { return weightedSpeech_.data() + kLongestDelay + kSubframeSize * subframe; }

 private:
  Coder& self() { return static_cast<Coder&>(*this); }
  void analyse();
  SubframeFilters quantise(SpeechParameters& parameters);
  PitchDelay encodeSubframe(int subframe, int centre, SpeechParameters::Subframe& parameters);

  static constexpr int kWindowSize = 240;
  static constexpr int kPastSpeech = 120;  // and 40 samples of the next frame

  HighPassFilter highPass_{HighPassFilter::kInput};
  std::array<Zpp32f, kWindowSize> speech_{};
  std::array<Zpp32f, kLongestDelay + kFrameSize> weightedSpeech_{};
  std::array<Zpp32f, kPastExcitation + kFrameSize> excitation_{};
  Filter filter_ = {1};                 // the last stable one, unquantised
  std::array<Zpp32f, 2> reflection_{};  // that belong to it
  Lsp lsp_ = kInitialLsp;               // of the frame before, unquantised
  LspInterpolation filters_;
  MaMemory maMemory_;
  GainMemory gainMemory_ = kInitialGainMemory;
  Zpp32f sharpening_ = kLeastSharpening;
  Taming taming_;
};

// Annex A
class AnnexAEncoder : public FrameEncoder<AnnexAEncoder> {
 private:
  friend FrameEncoder;

  static Lsp toLsp(const Filter& a, const Lsp& previous);
  void analysed(const Filter&, const std::array<Zpp32f, 2>&, const Lsp&, const Lsp&) {}
  void quantised(const SubframeFilters& filters);
  int openLoopDelay() const;
  SearchTarget searchTarget(int subframe);
  PitchDelay searchAdaptiveCodebook(int subframe, int centre, const SearchTarget& search);
  Subframe filterAdaptiveVector(int subframe, const SearchTarget& search);
  std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, Zpp32f* matrix, Subframe& code);
  void coded(int, const Subframe& rest) { weightedErrorMemory_ = lastOf(rest); }

  SubframeFilters synthesis_{};  // 1/A(z/0.75) of the frame
  FilterMemory weightedErrorMemory_{};
};

// Chooses gamma1 and gamma2 (clause 3.3).
class WeightingFactors {
 public:
  struct Factors {
    Zpp32f gamma1, gamma2;
  };
  std::array<Factors, kSubframes> next(const std::array<Zpp32f, 2>& reflection, const std::array<Lsp, kSubframes>& lsp);

 private:
  Factors choose(Zpp32f logAreaRatio0, Zpp32f logAreaRatio1, const Lsp& lsp);

  std::array<Zpp32f, 2> logAreaRatios_{};  // of the frame before
  bool flat_ = true;
};

// The main body
class MainBodyEncoder : public FrameEncoder<MainBodyEncoder> {
 private:
  friend FrameEncoder;

  static Lsp toLsp(const Filter& a, const Lsp& previous);
  void analysed(const Filter& a, const std::array<Zpp32f, 2>& reflection, const Lsp& previous, const Lsp& lsp);
  void quantised(const SubframeFilters& filters) { synthesis_ = filters; }
  int openLoopDelay() const;
  SearchTarget searchTarget(int subframe);
  PitchDelay searchAdaptiveCodebook(int subframe, int centre, const SearchTarget& search);
  Subframe filterAdaptiveVector(int subframe, const SearchTarget& search);
  std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, Zpp32f* matrix, Subframe& code);
  void coded(int subframe, const Subframe& rest);

  WeightingFactors weightingFactors_;
  SubframeFilters numerators_{}, denominators_{};  // of W(z)
  SubframeFilters synthesis_{};                    // 1/A(z), quantised
  FilterMemory synthesisMemory_{}, errorMemory_{}, weightedErrorMemory_{};
  Zpp16s searchBudget_ = 0;
};

}  // namespace codecs::g729f
