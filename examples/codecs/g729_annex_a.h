// What Annex A does simpler than the main body of ITU-T G.729: with the weighting A(z) / A(z/0.75) of the quantised filter the
// weighted synthesis filter is 1/A(z/0.75) alone, the open-loop delay is found on every second sample, and the codebooks are
// searched in part.
#ifndef ZPPSC_EXAMPLES_G729_ANNEX_A_H
#define ZPPSC_EXAMPLES_G729_ANNEX_A_H

#include "g729_encoder.h"

namespace codecs::g729 {

class AnnexAEncoder : public FrameEncoder {
 public:
  explicit AnnexAEncoder(bool discontinuous) : FrameEncoder(discontinuous) {}

 private:
  Lsp toLsp(const Filter& a, const Lsp& previous) const override;
  void analysed(const Filter&, const std::array<Zpp16s, 2>&, const Lsp&, const Lsp&) override {}
  void quantised(const SubframeFilters& filters) override;
  Zpp16s openLoopDelay() const override;
  SearchTarget searchTarget(int subframe) override;
  PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search) override;
  Zpp16s filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered) override;
  std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, CorrelationMatrix& matrix,
                                            Subframe& code) override;
  void coded(int subframe, const SearchTarget& search, const Result& result) override;
  void passedSilence(const SubframeFilters& filters) override;

  void weightSpeech(int subframe, const Zpp16s* residual);

  SubframeFilters synthesis_;  // 1/A(z/0.75) of the frame
  FilterMemory weightedErrorMemory_{};
};

}  // namespace codecs::g729

#endif
