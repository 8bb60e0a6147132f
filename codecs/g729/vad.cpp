#include "codecs/g729/vad.h"

#include <algorithm>

#include "codecs/fixed_point.h"
#include "codecs/g729/logarithm.h"
#include "codecs/g729/tables.h"

namespace codecs::g729 {
namespace {

constexpr int kStartFrames = 32;     // from which the first background is taken
constexpr int kMinimumFrames = 128;  // before the lowest energy counts

// Energies are in Q11 with 10 dB as the unit.
constexpr Zpp16s dB(double value) { return static_cast<Zpp16s>(value * 204.8 + 0.5); }
constexpr Zpp16s kQuiet = dB(15);  // below it there is no voice
constexpr Zpp16s kMargin = dB(3);  // within it a frame is like another

struct Difference {
  Zpp16s energy, lowBandEnergy, zeroCrossings;  // background less frame
  Zpp16s spectrum;
};

// The planes of clause B.3.5, in the order of the standard's table: voice where any of them says so. A plane's constant is a
// product as well, of 1 in the scale of the variable beside it and a factor in Q15.
bool isOutside(const Difference& d) {
  const auto line = [](Zpp16s variable, Zpp16s slope, Zpp16s one, Zpp16s constant) {
    return addSat32(mulDbl(variable, slope), mulDbl(one, constant));
  };
  const auto plus = [](Zpp32s a, Zpp16s b) { return addSat32(a, fromHigh16(b)); };
  // clang-format off
  return plus(line(d.zeroCrossings, -14680, 8192, -28521) >> 8, d.spectrum) > 0 ||
         plus(line(d.zeroCrossings, 19065, 8192, -19446) >> 7, d.spectrum) > 0 ||
         plus(line(d.zeroCrossings, 20480, 8192, 16384) >> 2, d.energy) < 0 ||
         plus(line(d.zeroCrossings, -16384, 8192, 19660) >> 2, d.energy) < 0 ||
         line(d.energy, 32767, 1024, 30802) < 0 ||
         macDbl(line(d.spectrum, -28160, 64, 19988), d.energy, 512) < 0 ||
         line(d.spectrum, 32767, 32, -30199) > 0 ||
         plus(line(d.zeroCrossings, -20480, 8192, 22938) >> 2, d.energy) < 0 ||
         plus(line(d.zeroCrossings, 23831, 4096, 31576) >> 2, d.energy) < 0 ||
         line(d.energy, 32767, 2048, 17367) < 0 ||
         macDbl(line(d.spectrum, -22400, 32, 25395), d.lowBandEnergy, 256) < 0 ||
         plus(line(d.energy, -30427, 256, -29959), d.lowBandEnergy) > 0 ||
         plus(line(d.energy, -23406, 512, 28087), d.lowBandEnergy) < 0 ||
         macDbl(line(d.energy, 24576, 1024, 29491), d.lowBandEnergy, 16384) < 0;
  // clang-format on
}

// How slowly the background moves, by the updates since it was last set (clause B.3.7): Q15 weights of old and new
struct Weights {
  Zpp16s kept, added;
};
struct Inertia {
  int updates;  // below this number
  Weights energy, zeroCrossings, lsf;
};
constexpr int kMostUpdates = 60;  // that are counted
constexpr std::array<Inertia, 6> inertias = {{{20, {24576, 8192}, {26214, 6554}, {19661, 13017}},
                                              {30, {31130, 1638}, {30147, 2621}, {21299, 11469}},
                                              {40, {31785, 983}, {30802, 1966}, {22938, 9830}},
                                              {50, {32440, 328}, {31457, 1311}, {24576, 8192}},
                                              {kMostUpdates, {32604, 164}, {32440, 328}, {24576, 8192}},
                                              {kMostUpdates + 1, {32604, 164}, {32702, 66}, {24576, 8192}}}};

void move(Zpp16s& mean, Weights weights, Zpp16s value) {
  mean = high16(macDbl(mulDbl(weights.kept, mean), weights.added, value));
}

}  // namespace

VoiceActivityDetector::Features VoiceActivityDetector::measure(const Correlations& correlations, const Lsf& lsf,
                                                               std::span<const Zpp16s, kWindowSize> speech) const {
  const auto& r = correlations.windowed;
  Zpp32s lowBand = 0;
  for (int lag = 1; lag < kLags; ++lag) lowBand = macDbl(lowBand, high16(r[lag]), lowBandCorrelation[lag]);
  lowBand = macDbl(shlSat32(lowBand, 1), high16(r[0]), lowBandCorrelation[0]);

  Zpp32s distance = 0;
  for (int i = 0; i < kOrder; ++i) {
    const Zpp16s difference = subSat16(lsf[i], meanLsf_[i]);
    distance = macDbl(distance, difference, difference);
  }
  int crossings = 0;
  for (int n = 121; n <= 200; ++n) crossings += speech[n - 1] * speech[n] < 0;
  return {.energy = logEnergy(r[0], correlations.exponent),
          .lowBandEnergy = logEnergy(lowBand, correlations.exponent),
          .zeroCrossings = sat16(410 * crossings),
          .spectralDistance = high16(distance)};
}

void VoiceActivityDetector::trackMinimum(Zpp16s energy) {
  if (frame_ % 8 == 1) {
    minimum_ = *std::ranges::min_element(minima_);
    groupMinimum_ = 32767;
  }
  minimum_ = std::min(minimum_, energy);
  groupMinimum_ = std::min(groupMinimum_, energy);
  if (frame_ % 8 == 0) {
    std::shift_left(minima_.begin(), minima_.end(), 1);
    minima_.back() = groupMinimum_;
  }
}

// The means over the loud ones of the first frames
void VoiceActivityDetector::startBackground(const Features& features, const Lsf& lsf) {
  const auto add = [](Zpp16s& mean, Zpp16s value) { mean = high16(macDbl(fromHigh16(mean), 1024, value)); };
  const auto each = [&](auto change) {
    change(meanEnergy_, features.energy);
    change(meanZeroCrossings_, features.zeroCrossings);
    for (int i = 0; i < kOrder; ++i) change(meanLsf_[i], lsf[i]);
  };
  if (features.energy < kQuiet) {
    ++quietFrames_;
  } else {
    each(add);
  }
  if (frame_ < kStartFrames) return;
  each([this](Zpp16s& mean, Zpp16s) {
    mean = high16(shlSat32(mulDbl(mean, vadMeanFactors[quietFrames_]), vadMeanShifts[quietFrames_]));
  });
  meanLowBandEnergy_ = subSat16(meanEnergy_, dB(12));
  meanEnergy_ = subSat16(meanEnergy_, dB(10));
}

bool VoiceActivityDetector::isLikeBackground(Zpp16s energy) const { return subSat16(energy, kMargin) < meanEnergy_; }

// Clause B.3.6: four steps from the decision on the frame alone to one that its neighbours bear out
bool VoiceActivityDetector::smooth(bool voice, const Features& features, Zpp16s reflection) {
  // Voice goes on while it is louder than the background.
  bool prolonged = false;
  if (voice_ && !voice && subSat16(features.energy, meanEnergy_) > dB(2) && features.energy > kQuiet) voice = prolonged = true;

  // It goes on for a few frames while its level holds.
  if (!mayExtend_) {
    mayExtend_ = true;
  } else if (voiceBefore_ && voice_ && !voice && absSat16(subSat16(lastEnergy_, features.energy)) <= kMargin) {
    voice = prolonged = true;
    mayExtend_ = ++extension_ <= 4;
    if (!mayExtend_) extension_ = 0;
  }

  // After a long silence it does not begin without a rise of the level.
  constexpr int longSilence = 10;
  if (!voice) silentFrames_ = std::min(silentFrames_ + 1, longSilence + 1);
  if (voice && silentFrames_ > longSilence && subSat16(features.energy, lastEnergy_) <= kMargin) {
    voice = false;
    silentFrames_ = 0;
  }
  if (voice) silentFrames_ = 0;

  // What is as quiet as the background is no voice, unless it was prolonged.
  constexpr Zpp16s tonal = 19661;  // 0.6
  if (isLikeBackground(features.energy) && frame_ > kMinimumFrames && !prolonged && reflection < tonal) voice = false;
  return voice;
}

// Clause B.3.7
void VoiceActivityDetector::trackBackground(const Features& features, const Lsf& lsf, Zpp16s reflection) {
  constexpr Zpp16s near = 83, tonal = 24576;  // 0.75
  if (isLikeBackground(features.energy) && reflection < tonal && features.spectralDistance < near) {
    updates_ = std::min(updates_ + 1, kMostUpdates);
    const Inertia& inertia = *std::ranges::find_if(inertias, [this](const Inertia& i) { return updates_ < i.updates; });
    move(meanEnergy_, inertia.energy, features.energy);
    move(meanLowBandEnergy_, inertia.energy, features.lowBandEnergy);
    move(meanZeroCrossings_, inertia.zeroCrossings, features.zeroCrossings);
    for (int i = 0; i < kOrder; ++i) move(meanLsf_[i], inertia.lsf, lsf[i]);
  }
  if (frame_ <= kMinimumFrames) return;
  if ((meanEnergy_ < minimum_ && features.spectralDistance < near) || subSat16(meanEnergy_, minimum_) > dB(10)) {
    meanEnergy_ = minimum_;
    updates_ = 0;
  }
}

bool VoiceActivityDetector::take(const Correlations& correlations, const Lsf& lsf, Zpp16s reflection,
                                 std::span<const Zpp16s, kWindowSize> speech) {
  frame_ = frame_ == 32767 ? 256 : frame_ + 1;
  const Features features = measure(correlations, lsf, speech);
  trackMinimum(features.energy);
  bool voice = features.energy >= kQuiet;
  if (frame_ <= kStartFrames) startBackground(features, lsf);
  if (frame_ >= kStartFrames) {
    voice = voice && isOutside({.energy = subSat16(meanEnergy_, features.energy),
                                .lowBandEnergy = subSat16(meanLowBandEnergy_, features.lowBandEnergy),
                                .zeroCrossings = subSat16(meanZeroCrossings_, features.zeroCrossings),
                                .spectrum = features.spectralDistance});
    voice = smooth(voice, features, reflection);
    trackBackground(features, lsf, reflection);
  }
  lastEnergy_ = features.energy;
  return voice;
}

}  // namespace codecs::g729
