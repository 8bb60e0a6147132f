// What Annex A does simpler than the main body of ITU-T G.729: with the weighting A(z) / A(z/0.75) of the quantised filter the
// weighted synthesis filter is 1/A(z/0.75) alone, the open-loop delay is found on every second sample, and the codebooks are
// searched in part.
#pragma once

#include "codecs/g729/encoder.h"

namespace codecs::g729 {

class AnnexAEncoder : public FrameEncoder<AnnexAEncoder> {
 public:
  explicit AnnexAEncoder(bool discontinuous) : FrameEncoder(discontinuous) {}

 private:
  friend FrameEncoder;

  static Lsp toLsp(const Filter& a, const Lsp& previous);
  void analysed(const Filter&, const std::array<Zpp16s, 2>&, const Lsp&, const Lsp&) {}
  void quantised(const SubframeFilters& filters);
  Zpp16s openLoopDelay() const;
  SearchTarget searchTarget(int subframe);
  PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search);
  Zpp16s filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered);
  std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, CorrelationMatrix& matrix,
                                            Subframe& code);
  void coded(int subframe, const SearchTarget& search, const Result& result);
  void passedSilence(const SubframeFilters& filters);

  void weightSpeech(int subframe, const Zpp16s* residual);

  SubframeFilters synthesis_;  // 1/A(z/0.75) of the frame
  FilterMemory weightedErrorMemory_{};
};

}  // namespace codecs::g729
