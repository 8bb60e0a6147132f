#include "codecs/g729/backward.h"

#include <algorithm>
#include <bit>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::g729 {

BackwardAnalysis::BackwardAnalysis() { require(zppsWinHybridInit_G729E_16s(window_.data())); }

void BackwardAnalysis::observe() {
  if (pendingFrames_ == kMostPending) solve();
  Autocorrelation& autocorrelation = pending_[pendingFrames_++];
  require(zppsWinHybrid_G729E_16s32s(synthesis_.data(), autocorrelation.data(), window_.data()));
  require(zppsLagWindow_G729E_32s_I(autocorrelation.data()));
}

// Goes back in time to the first filter that is stable and not clipped.
void BackwardAnalysis::solve() {
  while (pendingFrames_ > 0) {
    BackwardFilter a;
    std::array<Zpp16s, kBackwardOrder> reflection;
    Zpp16s energy;
    const Zpp32s* const autocorrelation = pending_[--pendingFrames_].data();
    if (warns(zppsLevinsonDurbin_G729_32s16s(autocorrelation, kBackwardOrder, a.data(), reflection.data(), &energy))) continue;
    if (std::ranges::find(a, Zpp16s{32767}) != a.end()) continue;
    filter_ = a;
    pendingFrames_ = 0;
  }
}

BackwardFilter BackwardAnalysis::filter() {
  solve();
  return weight(AnyFilter(filter_), 32113).a;  // 0.98
}

BackwardFilter mix(const BackwardFilter& newest, const BackwardFilter& old, Zpp16s share) {
  BackwardFilter mixed;
  for (int i = 0; i <= kBackwardOrder; ++i)
    mixed[i] = addSat16(low16((newest[i] * (4096 - share)) >> 12), low16((old[i] * share) >> 12));
  return mixed;
}

AnySubframeFilters BackwardInterpolation::towards(const BackwardFilter& backward) {
  share_ = std::max<Zpp16s>(static_cast<Zpp16s>(share_ - 410), 0);
  const BackwardFilter second = mix(backward, previous_, share_);
  BackwardFilter first;
  require(zppsInterpolate_G729_16s(second.data(), previous_.data(), first.data(), kBackwardOrder + 1));
  return {first, second};
}

void Dominance::count(bool backward) {
  ++(backward ? backward_ : forward_);
  int frames = backward_ + forward_;
  if (frames == 100) {
    frames >>= 1;
    backward_ >>= 1;
    forward_ >>= 1;
  }
  dominant_ = frames >= 10 && backward_ > 4 * forward_;
}

Zpp16s levelOf(const Zpp16s* signal, int length) {
  // 2048 * log10(m) of the mantissa, m = 16..32
  static constexpr std::array<Zpp16s, 17> logarithms = {2466, 2520, 2571, 2619, 2665, 2708, 2749, 2789, 2827,
                                                        2863, 2898, 2931, 2964, 2995, 3025, 3054, 3083};
  Zpp32s energy = 0;  // doubled
  require(zppsDotProd_16s32s_Sfs(signal, signal, length, &energy, -1));
  energy = addSat32(energy, 1) >> 1;
  int exponent = 0;
  for (; energy > 32; energy >>= 1) ++exponent;
  if (energy < 16) return 1;
  return static_cast<Zpp16s>(617 * std::max(exponent, 1) + logarithms[energy - 16]);  // log10(2)
}

}  // namespace codecs::g729
