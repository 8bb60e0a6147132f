// The frame encoder of ITU-T G.729 and Annex A, with the discontinuous transmission of Annex B on request.
#pragma once

#include <optional>

#include "codecs/g729/analysis.h"
#include "codecs/g729/dtx.h"
#include "codecs/g729/filters.h"
#include "codecs/g729/frame.h"
#include "codecs/g729/taming.h"

namespace codecs::g729 {

// The weighted synthesis filter's response and what its output should be (clauses 3.5 and 3.6)
struct SearchTarget {
  Subframe impulse;
  Subframe target;
};
using CorrelationMatrix = std::array<Zpp32s, 616>;
// The two parts of the weighted synthesis as it came out
struct Result {
  const Subframe& adaptive;
  Zpp16s pitchGain;  // Q14
  const Subframe& fixed;
  Zpp16s codeGain;  // Q1
};

// What main body and Annex A have in common. They differ in how the error is weighted (clauses 3.3 and A.3.3) and in how far
// they search, which the Coder, a class derived from this one, knows. It has the members
//
//   static Lsp toLsp(const Filter& a, const Lsp& previous)
//   void analysed(const Filter& a, const std::array<Zpp16s, 2>& reflection, const Lsp& previous, const Lsp& lsp)
//       a frame's LP filter is known: its coefficients, LSPs and those of the frame before
//   void quantised(const SubframeFilters& filters)
//       the decoder's filters are known, and excitation() holds the LP residual
//   Zpp16s openLoopDelay() const
//   SearchTarget searchTarget(int subframe)
//   PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search)
//       writes the adaptive vector to excitation()
//   Zpp16s filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered)
//       returns the pitch gain, Q14
//   std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, CorrelationMatrix& matrix, Subframe&
//   code)
//       returns signs and positions
//   void coded(int subframe, const SearchTarget& search, const Result& result)
//       the excitation of a subframe is complete
//   void passedSilence(const SubframeFilters& filters)
//       the decoder's filters are known, and excitation() holds the comfort noise of a silent frame
//
// They are called in this order:
//
//   every frame     toLsp, analysed
//   speech          quantised, openLoopDelay; for each subframe searchTarget, searchAdaptiveCodebook, filterAdaptiveVector,
//                   searchFixedCodebook, coded
//   silence         toLsp for a descriptor, passedSilence
template <class Coder>
class FrameEncoder {
 public:
  Frame encode(std::span<const Zpp16s, kFrameSize> samples);

 protected:
  explicit FrameEncoder(bool discontinuous);

  // The subframe of the frame being coded, and what came before it
  const Zpp16s* speech(int subframe) const { return speech_.data() + kPastSpeech + kSubframeSize * subframe; }
  Zpp16s* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }
  // Delays of up to 143 samples
  const Zpp16s* weightedSpeech(int subframe) const { return weightedSpeech_.data() + kLongestDelay + kSubframeSize * subframe; }
  Zpp16s* weightedSpeech(int subframe) { return weightedSpeech_.data() + kLongestDelay + kSubframeSize * subframe; }

  // The end of the target that the result leaves over: the memory of the weighted error (clause 3.10)
  static FilterMemory remainder(const SearchTarget& search, const Result& result);

 private:
  Coder& self() { return static_cast<Coder&>(*this); }
  SpeechParameters encodeSpeech();
  PitchDelay encodeSubframe(int subframe, Zpp16s centre, SpeechParameters::Subframe& parameters);
  std::optional<SidParameters> encodeSilence();

  static constexpr int kPastSpeech = 120;  // and 40 samples of the next frame

  HighPassFilter highPass_{HighPassFilter::Kind::input};
  alignas(16) std::array<Zpp16s, kWindowSize> speech_{};
  alignas(16) std::array<Zpp16s, kLongestDelay + kFrameSize> weightedSpeech_{};
  alignas(16) std::array<Zpp16s, kPastExcitation + kFrameSize> excitation_{};
  LevinsonDurbin levinsonDurbin_;
  Lsp lsp_ = kInitialLsp;  // of the frame before, unquantised
  LspInterpolation filters_;
  MaMemory maMemory_;
  GainMemory gainMemory_ = kInitialGainMemory;
  Zpp16s sharpening_ = kLeastSharpening;
  Taming taming_;
  std::optional<Dtx> dtx_;
};

}  // namespace codecs::g729
