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

// What main body and Annex A have in common. They differ in how the error is weighted (clauses 3.3 and A.3.3), which the
// derived classes tell, and in how far they search.
class FrameEncoder {
 public:
  virtual ~FrameEncoder() = default;
  Frame encode(std::span<const Zpp16s, kFrameSize> samples);

 protected:
  explicit FrameEncoder(bool discontinuous);

  // The weighted synthesis filter's response and what its output should be (clauses 3.5 and 3.6)
  struct Goal {
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

  virtual Lsp toLsp(const Filter& a, const Lsp& previous) const = 0;
  // A frame's LP filter is known: its coefficients, LSPs and those of the frame before.
  virtual void analysed(const Filter& a, const std::array<Zpp16s, 2>& reflection, const Lsp& previous, const Lsp& lsp) = 0;
  // The decoder's filters are known, and excitation() holds the LP residual.
  virtual void quantised(const SubframeFilters& filters) = 0;
  virtual Zpp16s openLoopDelay() const = 0;
  virtual Goal goal(int subframe) = 0;
  // Writes the adaptive vector to excitation().
  virtual PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s around, const Goal& goal) = 0;
  // Returns the pitch gain, Q14.
  virtual Zpp16s filterAdaptiveVector(int subframe, const Goal& goal, Subframe& filtered) = 0;
  // Returns signs and positions.
  virtual std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, Zpp32s* matrix,
                                                    Subframe& code) = 0;
  // The excitation of a subframe is complete.
  virtual void coded(int subframe, const Goal& goal, const Result& result) = 0;
  // The decoder's filters are known, and excitation() holds the comfort noise of a silent frame.
  virtual void passedSilence(const SubframeFilters& filters) = 0;

  // The subframe of the frame being coded, and what came before it
  const Zpp16s* speech(int subframe) const { return speech_.data() + 120 + kSubframeSize * subframe; }
  Zpp16s* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }
  // Delays of up to 143 samples
  const Zpp16s* weightedSpeech(int subframe) const { return weighted_.data() + kLongestDelay + kSubframeSize * subframe; }
  Zpp16s* weightedSpeech(int subframe) { return weighted_.data() + kLongestDelay + kSubframeSize * subframe; }

  static constexpr int kPastExcitation = 154;

  // The last samples of goal.target that the result leaves over: the memory of the weighted error (clause 3.10)
  static std::array<Zpp16s, kOrder> weightedError(const Goal& goal, const Result& result);

 private:
  SpeechParameters encodeSpeech();
  SpeechParameters::Subframe encodeSubframe(int subframe, Zpp16s& around);
  std::optional<SidParameters> encodeSilence();
  SubframeFilters moveTo(const Lsp& quantisedLsp);

  HighPassFilter highPass_{HighPassFilter::Kind::input};
  // 120 samples of the past, the frame, and 40 samples of the next
  alignas(16) std::array<Zpp16s, kWindowSize> speech_{};
  alignas(16) std::array<Zpp16s, kLongestDelay + kFrameSize> weighted_{};
  alignas(16) std::array<Zpp16s, kPastExcitation + kFrameSize> excitation_{};
  LevinsonDurbin levinsonDurbin_;
  Lsp lsp_ = kInitialLsp, quantisedLsp_ = kInitialLsp;  // of the frame before
  MaMemory maMemory_;
  std::array<Zpp16s, 4> gainMemory_ = {-14336, -14336, -14336, -14336};
  Zpp16s sharpening_ = kLeastSharpening;
  Taming taming_;
  std::optional<Dtx> dtx_;
};

std::unique_ptr<FrameEncoder> makeFrameEncoder(Variant variant, bool discontinuous);

}  // namespace codecs::g729

#endif
