#include "codecs/g729/mode_decision.h"

#include <algorithm>

#include "codecs/fixed_point.h"

namespace codecs::g729 {
namespace {

constexpr Zpp16s kModest = 13000, kMost = 32000;  // stationarity

// What LP filters take away from the speech, log10 of energies, Q11
Zpp16s predictionGain(const Zpp16s* speech, const AnyFilter& first, const AnyFilter& second) {
  std::array<Zpp16s, kFrameSize> rest;
  residual(first, speech, rest.data());
  residual(second, speech + kSubframeSize, rest.data() + kSubframeSize);
  return subSat16(levelOf(speech, kFrameSize), levelOf(rest.data(), kFrameSize));
}

bool isNear(const Lsp& a, const Lsp& b) {
  Zpp32s distance = 0;
  for (int i = 0; i < kOrder; ++i) {
    const Zpp16s difference = subSat16(a[i], b[i]);
    distance = macDbl(distance, difference, difference);
  }
  return distance < 64424509;  // 0.03
}

struct Step {
  int lead;  // of the backward filter's gain
  int change;
};
constexpr std::array<Step, 5> kRises = {{{819, 3200}, {614, 2400}, {410, 1600}, {205, 800}, {0, 400}}};
constexpr std::array<Step, 5> kFalls = {{{-955, -6400}, {-819, -3200}, {-614, -1600}, {-410, -800}, {-205, -400}}};

}  // namespace

bool ModeDecision::take(const Candidates& c) {
  const Zpp16s newest = predictionGain(c.speech, c.newest, c.newest);
  const Zpp16s interpolated = predictionGain(c.speech, c.backward[0], c.backward[1]);
  const Zpp16s forward = predictionGain(c.speech, c.forward[0], c.forward[1]);
  const bool gains = newest > 0 && interpolated > 0;

  const int gap = 3 * (stationarity_ >> 7) + 205;
  bool backward = gains && interpolated > forward - gap && newest > forward - gap && stationarity_ >= kModest;
  // A stationary signal does not change its mode for nothing.
  if (stationarity_ >= kMost && c.afterBackward && gains && isNear(c.previousLsp, c.lsp)) backward = true;

  if (levelOf(c.speech, kFrameSize) < kAudibleLevel) {
    stationarity_ = std::min(stationarity_, kModest);
    return false;
  }
  dominance_.count(backward);
  trackStationarity(backward, c.afterBackward, forward, newest);
  return backward;
}

void ModeDecision::trackStationarity(bool backward, bool afterBackward, Zpp16s forwardGain, Zpp16s backwardGain) {
  constexpr int longRun = 20;
  const auto raise = [this](int step) { stationarity_ = sat16(stationarity_ + step); };
  if (backward) {
    run_ = std::min(run_ + 1, longRun + 1);
    runValue_ = addSat16(runValue_, 250);
    if (run_ == longRun) raise(2500);
    if (run_ > longRun) raise(500);
  } else if (afterBackward) {
    if (run_ < longRun) raise(-subSat16(5000, runValue_));
    run_ = 0;
    runValue_ = 0;
  }
  const int lead = backwardGain - forwardGain;
  if (stationarity_ < kModest) {
    const auto rise = std::ranges::find_if(kRises, [lead](const Step& step) { return lead > step.lead; });
    if (rise != kRises.end()) raise(rise->change);
  }
  const auto fall = std::ranges::find_if(kFalls, [lead](const Step& step) { return lead < step.lead; });
  if (fall != kFalls.end()) raise(fall->change);
  stationarity_ = std::clamp<Zpp16s>(stationarity_, 0, kMost);
}

void ModeDecision::pass() {
  constexpr Zpp16s resting = 10000;
  if (stationarity_ > resting) stationarity_ = std::max<Zpp16s>(static_cast<Zpp16s>(stationarity_ - 2621), resting);
  dominance_.clear();
}

}  // namespace codecs::g729
