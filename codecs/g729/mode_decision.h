// The choice between forward and backward LP filters at 11.8 kbit/s (ITU-T G.729 clause E.3.2.5): by what each takes away from
// the speech, with a liking for what has lasted.
#pragma once

#include "codecs/g729/backward.h"

namespace codecs::g729 {

class ModeDecision {
 public:
  struct Candidates {
    const Zpp16s* speech;          // the frame, and what came before it
    const BackwardFilter& newest;  // not interpolated
    const AnySubframeFilters& backward;
    const SubframeFilters& forward;
    const Lsp &previousLsp, &lsp;  // unquantised
    bool afterBackward;            // the mode of the frame before
  };
  // Whether the frame is to be coded backward
  bool take(const Candidates& candidates);
  // Instead, in frames that have no choice
  void pass();

  // Backward frames prevail: the weighting filter follows the filter that is sent.
  bool dominant() const { return dominance_.dominant(); }

 private:
  void trackStationarity(bool backward, bool afterBackward, Zpp16s forwardGain, Zpp16s backwardGain);

  Dominance dominance_;
  Zpp16s stationarity_ = 10000;  // 0..32000
  int run_ = 0;                  // of backward frames, up to 21
  Zpp16s runValue_ = 0;          // what its end leaves of the stationarity
};

}  // namespace codecs::g729
