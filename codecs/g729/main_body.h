// The main body of ITU-T G.729: the error is weighted by W(z) = A(z/gamma1) / A(z/gamma2) of the unquantised filter, whose
// factors follow the flatness of the spectrum, and the codebooks are searched at length.
#pragma once

#include "codecs/g729/encoder.h"

namespace codecs::g729 {

// Chooses gamma1 and gamma2 (clause 3.3).
class WeightingFactors {
 public:
  struct Factors {
    Zpp16s gamma1, gamma2;  // Q15
  };
  // The first two reflection coefficients of a frame; normalised LSFs of its two subframes
  std::array<Factors, kSubframes> next(const std::array<Zpp16s, 2>& reflection, const std::array<Lsf, kSubframes>& lsf);

 private:
  Factors choose(Zpp16s logAreaRatio0, Zpp16s logAreaRatio1, const Lsf& lsf);

  std::array<Zpp16s, 2> logAreaRatios_{};  // Q11, of the frame before
  bool flat_ = true;
};

class MainBodyEncoder : public FrameEncoder<MainBodyEncoder> {
 public:
  explicit MainBodyEncoder(bool discontinuous) : FrameEncoder(discontinuous) {}

 private:
  friend FrameEncoder;

  static Lsp toLsp(const Filter& a, const Lsp& previous);
  void analysed(const Filter& a, const std::array<Zpp16s, 2>& reflection, const Lsp& previous, const Lsp& lsp);
  void quantised(const SubframeFilters& filters) { synthesis_ = filters; }
  Zpp16s openLoopDelay() const;
  SearchTarget searchTarget(int subframe);
  PitchDelay searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search);
  Zpp16s filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered);
  std::array<Zpp16s, 2> searchFixedCodebook(int subframe, const Subframe& correlation, CorrelationMatrix& matrix,
                                            Subframe& code);
  void coded(int subframe, const SearchTarget& search, const Result& result);
  void passedSilence(const SubframeFilters& filters);

  // error: the subframe with the kOrder samples before it
  Subframe weightError(int subframe, const Zpp16s* error) const;
  Subframe synthesiseLocally(int subframe);

  WeightingFactors weightingFactors_;
  SubframeFilters numerators_, denominators_;  // of W(z)
  SubframeFilters synthesis_;                  // 1/A(z), quantised
  FilterMemory synthesisMemory_{}, errorMemory_{}, weightedErrorMemory_{};
  Zpp16s searchBudget_ = 0;
};

}  // namespace codecs::g729
