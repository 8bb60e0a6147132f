// Taming of ITU-T G.729's encoder (clause 3.7.3): a decoder that has lost frames carries an error in its excitation, which
// pitch gains above 1 would make grow. The encoder estimates how far the worst case has come, by zones of 40 samples of the
// past, and keeps the gain down where it must.
#pragma once

#include "codecs/fixed_point.h"
#include "codecs/g729/filters.h"

namespace codecs::g729 {

// Numbers: the types of errors and gains, where an error starts, from where on it is too large, and what it becomes in one pass
// through the adaptive codebook
template <class Numbers>
class TamingIn {
 public:
  using Error = typename Numbers::Error;

  // Whether the pitch gain for this delay must stay below 1
  bool isNeeded(const PitchDelay& delay) const {
    constexpr int reach = 10;  // of the interpolation filter, beside the delay
    const int samples = delay[1] > 0 ? delay[0] + 1 : delay[0];
    const int first = zoneOf(std::max(samples - kSubframeSize - reach, 0)), last = zoneOf(samples + reach - 2);
    return *std::max_element(errors_.begin() + first, errors_.begin() + last + 1) > Numbers::threshold;
  }
  // gain: the quantised pitch gain
  void update(typename Numbers::Gain gain, int delay) {
    Error worst = -1;
    if (delay < kSubframeSize) {
      const Error once = Numbers::passed(errors_[0], gain);
      worst = std::max({worst, once, Numbers::passed(once, gain)});
    } else {
      for (int zone = zoneOf(delay - kSubframeSize); zone <= zoneOf(delay - 1); ++zone)
        worst = std::max(worst, Numbers::passed(errors_[zone], gain));
    }
    std::shift_right(errors_.begin(), errors_.end(), 1);
    errors_[0] = worst;
  }

 private:
  static int zoneOf(int samplesBack) { return samplesBack / kSubframeSize; }

  std::array<Error, 4> errors_ = {Numbers::start, Numbers::start, Numbers::start, Numbers::start};  // the newest zone first
};

// Errors and gains in Q14
struct FixedPointErrors {
  using Error = Zpp32s;
  using Gain = Zpp16s;
  static constexpr Error start = 16384, threshold = 983040000;  // 1, 60000
  static Error passed(Error error, Gain gain) { return addSat32(start, shlSat32(mulDbl32(error, gain), 1)); }
};
using Taming = TamingIn<FixedPointErrors>;

}  // namespace codecs::g729
