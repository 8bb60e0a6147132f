// LP analysis and the weighting filters (3GPP TS 26.090 clauses 5.2 and 5.3).
#pragma once

#include "codecs/amr/modes.h"

namespace codecs::amr {

// Autocorrelation and Levinson-Durbin recursion
class LpAnalysis {
 public:
  // speech: 240; a: 11, Q12. A frame whose recursion fails takes the last filter.
  void analyse(const Zpp16s* speech, const Zpp16s* window, Zpp16s* a);

 private:
  Zpp16s lastA_[kSet] = {4096};
};

// A(z/g1) and A(z/g2) of a subframe
struct Weighting {
  Zpp16s numerator[kSet], denominator[kSet];

  Weighting(const Zpp16s* a, int mode);
};

// Speech weighted for the open-loop search by the filters of the subframes; the first sample needs 10 before it. dst: 160
class PerceptualWeighting {
 public:
  void weigh(const Zpp16s* speech, const Weighting* filters, Zpp16s* dst);

 private:
  Zpp16s memory_[kOrder] = {};
};

// Keeps a pitch gain low where the synthesis filter resonates for long, lest transmission errors build up
// (TS 26.090 clause 5.6.2).
class ResonanceGuard {
 public:
  // lsp: of the frame's end
  void examine(const Zpp16s* lsp);
  // Whether a subframe's pitch gain, Q14, is to be limited
  bool limits(Zpp16s pitchGain) const;
  void note(Zpp16s pitchGain);

  static constexpr Zpp16s kLimit = 15565;  // 0.95

 private:
  Zpp16s frames_ = 0, gains_[7] = {};  // gains: oldest first, Q11
};

}  // namespace codecs::amr
