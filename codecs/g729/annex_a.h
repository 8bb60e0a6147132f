// What Annex A does simpler than the main body of ITU-T G.729: with the weighting A(z) / A(z/0.75) of the quantised filter the
// weighted synthesis filter is 1/A(z/0.75) alone, the open-loop delay is found on every second sample, and the codebooks are
// searched in part.
#pragma once

#include "codecs/g729/encoder.h"

namespace codecs::g729 {

class AnnexAEncoder : public FrameEncoder<AnnexAEncoder> {
 public:
  explicit AnnexAEncoder(bool discontinuous) : FrameEncoder(discontinuous) {}
  Frame encode(const Zpp16s* samples);

 private:
  friend FrameEncoder;

  static Lsp toLsp(const Filter& a, const Lsp& previous);
  SpeechParameters encodeSpeech();
  void passSilence(const SubframeFilters& filters);
  void weightSpeech(int subframe, const Zpp16s* residual);
  SearchTarget searchTarget(int subframe);
  PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search);
  Zpp16s filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered);
  static FixedVector searchFixedCodebook(int, const FixedTarget& target, SpeechParameters::Subframe& parameters) {
    return searchFourPulses(target, parameters, zppsFixedCodebookSearch_G729A_16s);
  }
  void coded(int, const SearchTarget& search, const Result& result) { weightedErrorMemory_ = remainder(search, result); }

  SubframeFilters synthesis_;  // 1/A(z/0.75) of the frame
  FilterMemory<> weightedErrorMemory_{};
};

}  // namespace codecs::g729
