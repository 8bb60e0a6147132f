// What Annex A does simpler than the main body of ITU-T G.729: the error is weighted by 1/A(z/0.75) of the quantised filter,
// the open-loop delay is found on every second sample, and the codebooks are searched in part.
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
  Goal goal(int subframe) override;
  PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s around, const Goal& goal) override;
  Zpp16s filterAdaptiveVector(int subframe, const Goal& goal, Subframe& filtered) override;
  std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, Zpp32s* matrix, Subframe& code) override;
  void coded(int subframe, const Goal& goal, const Result& result) override;
  void passedSilence(const SubframeFilters& filters) override;

  void weightSpeech(int subframe, const Zpp16s* residual);

  SubframeFilters synthesis_;                 // 1/A(z/0.75) of the frame
  std::array<Zpp16s, kOrder> errorMemory_{};  // of the weighted error
};

}  // namespace codecs::g729

#endif
