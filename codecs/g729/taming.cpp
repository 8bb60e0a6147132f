#include "codecs/g729/taming.h"

#include <algorithm>

#include "codecs/fixed_point.h"

namespace codecs::g729 {
namespace {

constexpr int kReach = 10;                // of the interpolation filter, beside the delay
constexpr Zpp32s kThreshold = 983040000;  // 60000, Q14

int zoneOf(int samplesBack) { return samplesBack / kSubframeSize; }

// What an error becomes in one pass through the adaptive codebook
Zpp32s passed(Zpp32s error, Zpp16s gain) { return addSat32(16384, shlSat32(mulDbl32(error, gain), 1)); }

}  // namespace

bool Taming::isNeeded(const PitchDelay& delay) const {
  const int samples = delay[1] > 0 ? delay[0] + 1 : delay[0];
  const int first = zoneOf(std::max(samples - kSubframeSize - kReach, 0)), last = zoneOf(samples + kReach - 2);
  return *std::max_element(errors_.begin() + first, errors_.begin() + last + 1) > kThreshold;
}

void Taming::update(Zpp16s gain, int delay) {
  Zpp32s worst = -1;
  if (delay < kSubframeSize) {
    const Zpp32s once = passed(errors_[0], gain);
    worst = std::max({worst, once, passed(once, gain)});
  } else {
    for (int zone = zoneOf(delay - kSubframeSize); zone <= zoneOf(delay - 1); ++zone)
      worst = std::max(worst, passed(errors_[zone], gain));
  }
  std::shift_right(errors_.begin(), errors_.end(), 1);
  errors_[0] = worst;
}

}  // namespace codecs::g729
