// The frame encoder of ITU-T G.729 and Annex A, with the discontinuous transmission of Annex B on request.
#pragma once

#include <optional>

#include "codecs/fixed_point.h"
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
// The two parts of the weighted synthesis as it came out
struct Result {
  const Subframe& adaptive;
  Zpp16s pitchGain;  // Q14
  const Subframe& fixed;
  Zpp16s codeGain;  // Q1
};
// What the adaptive codebook leaves of the target, and the sharpened impulse response
struct FixedTarget {
  Subframe rest;
  const Subframe& impulse;
  Zpp16s pitchGain;  // Q14, not quantised
};
// The fixed codebook's contribution to the excitation, not sharpened, and through the impulse response
struct FixedVector {
  Subframe code;
  Subframe filtered;
};

// The codebook of four pulses (clause 3.8). search(correlation, matrix, code, codeword) finds signs and positions.
FixedVector filterFourPulses(const Subframe& code, const std::array<Zpp16s, 2>& codeword, const Subframe& impulse);
template <class Search>
FixedVector searchFourPulses(const FixedTarget& target, SpeechParameters::Subframe& parameters, Search search) {
  Subframe correlation, code;
  alignas(16) std::array<Zpp16s, 616> matrix;
  std::array<Zpp16s, 2> codeword;
  require(zppsToeplizMatrix_G729_16s(target.impulse.data(), matrix.data()));
  require(zppsCrossCorr_NormM_16s(target.rest.data(), target.impulse.data(), kSubframeSize, correlation.data()));
  require(search(correlation.data(), matrix.data(), code.data(), codeword.data()));
  parameters.signs = codeword[0];
  parameters.positions = codeword[1];
  return filterFourPulses(code, codeword, target.impulse);
}

// The end of the target that the result leaves over: the memory of the weighted error (clause 3.10)
template <int order = kOrder>
FilterMemory<order> remainder(const SearchTarget& search, const Result& result) {
  FilterMemory<order> left;
  for (int i = 0, n = kSubframeSize - order; i < order; ++i, ++n) {
    const Zpp16s adaptive = sat16((result.adaptive[n] * result.pitchGain) >> 14);
    const Zpp16s fixed = sat16((result.fixed[n] * result.codeGain) >> 13);
    left[i] = subSat16(search.target[n], addSat16(adaptive, fixed));
  }
  return left;
}

// What main body and Annex A have in common. They differ in how the error is weighted (clauses 3.3 and A.3.3), in how far they
// search, and in the bit rates that they know, which is a matter of the Coder, a class derived from this one. It codes a frame
// from the steps below, and has these members for the subframes:
//
//   static Lsp toLsp(const Filter& a, const Lsp& previous)
//   SearchTarget searchTarget(int subframe)
//   PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search)
//       writes the adaptive vector to excitation(), which held the LP residual
//   Zpp16s filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered)
//       returns the pitch gain, Q14
//   FixedVector searchFixedCodebook(int subframe, const FixedTarget& target, SpeechParameters::Subframe& parameters)
//   void coded(int subframe, const SearchTarget& search, const Result& result)
//       the excitation of a subframe is complete
template <class Coder>
class FrameEncoder {
 protected:
  explicit FrameEncoder(bool discontinuous);

  // Takes the next frame and analyses it (clauses 3.1 and 3.2).
  struct Analysis {
    Correlations correlations;
    Filter a;
    Lsp lsp;
  };
  Analysis analyse(const Zpp16s* samples);
  // Whether the voice activity detector takes it for voice; without Annex B every frame is.
  bool detectVoice(const Analysis& analysis);
  // The second half of a frame of speech: its subframes, around an open-loop delay
  void encodeSubframes(Zpp16s openLoopDelay, SpeechParameters& parameters);
  // The first half of a silent frame: fills the excitation and returns the LP filters (Annex B clause B.4).
  struct Silence {
    std::optional<SidParameters> sid;
    SubframeFilters filters;
  };
  Silence describeSilence();
  // Makes room for the next frame.
  void shift();

  // The subframe of the frame being coded, and what came before it
  const Zpp16s* speech(int subframe) const { return speech_.data() + kPastSpeech + kSubframeSize * subframe; }
  Zpp16s* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }
  // Delays of up to 143 samples
  const Zpp16s* weightedSpeech(int subframe) const { return weightedSpeech_.data() + kLongestDelay + kSubframeSize * subframe; }
  Zpp16s* weightedSpeech(int subframe) { return weightedSpeech_.data() + kLongestDelay + kSubframeSize * subframe; }

  static constexpr int kPastSpeech = 120;  // and 40 samples of the next frame

  alignas(16) std::array<Zpp16s, kWindowSize> speech_{};
  alignas(16) std::array<Zpp16s, kLongestDelay + kFrameSize> weightedSpeech_{};
  alignas(16) std::array<Zpp16s, kPastExcitation + kFrameSize> excitation_{};
  HighPassFilter highPass_{HighPassFilter::Kind::input};
  LevinsonDurbin levinsonDurbin_;
  Lsp lsp_ = kInitialLsp;  // of the frame before, unquantised
  LspInterpolation filters_;
  MaMemory maMemory_;
  GainMemory gainMemory_ = kInitialGainMemory;
  std::optional<Dtx> dtx_;

 private:
  Coder& self() { return static_cast<Coder&>(*this); }
  PitchDelay encodeSubframe(int subframe, Zpp16s centre, Rate rate, SpeechParameters::Subframe& parameters);

  Zpp16s sharpening_ = kLeastSharpening;
  Taming taming_;
};

}  // namespace codecs::g729
