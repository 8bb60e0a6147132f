// The frame encoder of ITU-T G.729 and Annex A, with the discontinuous transmission of Annex B on request.
#ifndef ZPPSC_EXAMPLES_G729_ENCODER_H
#define ZPPSC_EXAMPLES_G729_ENCODER_H

#include <memory>
#include <optional>

#include "g729_analysis.h"
#include "g729_dtx.h"
#include "g729_filters.h"
#include "g729_frame.h"
#include "g729_taming.h"

namespace codecs::g729 {

// What main body and Annex A have in common. They differ in how the error is weighted (clauses 3.3 and A.3.3) and in how far
// they search, which the derived classes know. Their members are called in this order:
//
//   every frame     toLsp, analysed
//   speech          quantised, openLoopDelay; for each subframe searchTarget, searchAdaptiveCodebook, filterAdaptiveVector,
//                   searchFixedCodebook, coded
//   silence         toLsp for a descriptor, passedSilence
class FrameEncoder {
 public:
  virtual ~FrameEncoder() = default;
  Frame encode(std::span<const Zpp16s, kFrameSize> samples);

 protected:
  explicit FrameEncoder(bool discontinuous);

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

  virtual Lsp toLsp(const Filter& a, const Lsp& previous) const = 0;
  // A frame's LP filter is known: its coefficients, LSPs and those of the frame before.
  virtual void analysed(const Filter& a, const std::array<Zpp16s, 2>& reflection, const Lsp& previous, const Lsp& lsp) = 0;
  // The decoder's filters are known, and excitation() holds the LP residual.
  virtual void quantised(const SubframeFilters& filters) = 0;
  virtual Zpp16s openLoopDelay() const = 0;
  virtual SearchTarget searchTarget(int subframe) = 0;
  // Writes the adaptive vector to excitation().
  virtual PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search) = 0;
  // Returns the pitch gain, Q14.
  virtual Zpp16s filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered) = 0;
  // Returns signs and positions.
  virtual std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, CorrelationMatrix& matrix,
                                                    Subframe& code) = 0;
  // The excitation of a subframe is complete.
  virtual void coded(int subframe, const SearchTarget& search, const Result& result) = 0;
  // The decoder's filters are known, and excitation() holds the comfort noise of a silent frame.
  virtual void passedSilence(const SubframeFilters& filters) = 0;

  // The subframe of the frame being coded, and what came before it
  const Zpp16s* speech(int subframe) const { return speech_.data() + kPastSpeech + kSubframeSize * subframe; }
  Zpp16s* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }
  // Delays of up to 143 samples
  const Zpp16s* weightedSpeech(int subframe) const { return weightedSpeech_.data() + kLongestDelay + kSubframeSize * subframe; }
  Zpp16s* weightedSpeech(int subframe) { return weightedSpeech_.data() + kLongestDelay + kSubframeSize * subframe; }

  // The end of the target that the result leaves over: the memory of the weighted error (clause 3.10)
  static FilterMemory remainder(const SearchTarget& search, const Result& result);

 private:
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

std::unique_ptr<FrameEncoder> makeFrameEncoder(Variant variant, bool discontinuous);

}  // namespace codecs::g729

#endif
