#include "g729_vad.h"

#include <algorithm>
#include <utility>

#include "fixed_point.h"
#include "g729_tables.h"

namespace codecs::g729 {
namespace {

constexpr int kStartFrames = 32;     // from which the first background is taken
constexpr int kMinimumFrames = 128;  // before the lowest energy counts
constexpr Zpp16s kQuiet = 3072;      // 15 dB: below it there is no voice
constexpr Zpp16s kMargin = 614;      // 3 dB

// The logarithm of an energy * 2^exponent, Q11, in units of 10 dB
Zpp16s logEnergy(Zpp32s energy, int exponent) {
  constexpr Zpp16s tenthOfDb = 9864;  // log10(2)
  const auto [integer, fraction] = log2Of(energy);
  const Zpp32s level = macDbl(mulDbl32(fromHigh16(integer) + 2 * fraction, tenthOfDb), tenthOfDb, sat16(exponent - 2));
  return subSat16(high16(shlSat32(level, 11)), 4875);
}

struct Difference {
  Zpp16s energy, lowBandEnergy, zeroCrossings;  // background less frame
  Zpp16s spectrum;
};

// The planes of clause B.3.5: voice where any of them says so
bool isOutside(const Difference& d) {
  const auto product = [](Zpp16s value, Zpp16s slope) { return mulDbl(value, slope); };
  const auto line = [&](Zpp16s slope, Zpp16s unit, Zpp16s offset) {
    return addSat32(product(d.zeroCrossings, slope), product(unit, offset));
  };
  const auto plus = [](Zpp32s a, Zpp16s b) { return addSat32(a, fromHigh16(b)); };
  if (plus(line(-14680, 8192, -28521) >> 8, d.spectrum) > 0) return true;
  if (plus(line(19065, 8192, -19446) >> 7, d.spectrum) > 0) return true;
  if (plus(line(20480, 8192, 16384) >> 2, d.energy) < 0) return true;
  if (plus(line(-16384, 8192, 19660) >> 2, d.energy) < 0) return true;
  if (addSat32(product(d.energy, 32767), product(1024, 30802)) < 0) return true;
  if (addSat32(addSat32(product(d.spectrum, -28160), product(64, 19988)), product(d.energy, 512)) < 0) return true;
  if (addSat32(product(d.spectrum, 32767), product(32, -30199)) > 0) return true;
  if (plus(line(-20480, 8192, 22938) >> 2, d.energy) < 0) return true;
  if (plus(line(23831, 4096, 31576) >> 2, d.energy) < 0) return true;
  if (addSat32(product(d.energy, 32767), product(2048, 17367)) < 0) return true;
  if (addSat32(addSat32(product(d.spectrum, -22400), product(32, 25395)), product(d.lowBandEnergy, 256)) < 0) return true;
  if (plus(addSat32(product(d.energy, -30427), product(256, -29959)), d.lowBandEnergy) > 0) return true;
  if (plus(addSat32(product(d.energy, -23406), product(512, 28087)), d.lowBandEnergy) < 0) return true;
  return addSat32(addSat32(product(d.energy, 24576), product(1024, 29491)), product(d.lowBandEnergy, 16384)) < 0;
}

// How slowly the background moves, by the updates since it was last set (clause B.3.7): Q15 weights of the old value and of the
// new
struct Weights {
  Zpp16s kept, added;
};
struct Inertia {
  int updates;  // below this number
  Weights energy, zeroCrossings, lsf;
};
constexpr std::array<Inertia, 6> inertias = {{{20, {24576, 8192}, {26214, 6554}, {19661, 13017}},
                                              {30, {31130, 1638}, {30147, 2621}, {21299, 11469}},
                                              {40, {31785, 983}, {30802, 1966}, {22938, 9830}},
                                              {50, {32440, 328}, {31457, 1311}, {24576, 8192}},
                                              {60, {32604, 164}, {32440, 328}, {24576, 8192}},
                                              {INT32_MAX, {32604, 164}, {32702, 66}, {24576, 8192}}}};

void move(Zpp16s& mean, Weights weights, Zpp16s value) {
  mean = high16(macDbl(mulDbl(weights.kept, mean), weights.added, value));
}

}  // namespace

Logarithm log2Of(Zpp32s value) {
  if (value <= 0) return {0, 0};
  const int shift = norm32(value);
  const Zpp32s mantissa = value << shift;
  const int n = (mantissa >> 25) - 32, between = mantissa >> 10 & 0x7fff;
  const Zpp32s logarithm = fromHigh16(logarithms[n]) + 2 * between * (logarithms[n + 1] - logarithms[n]);
  return {static_cast<Zpp16s>(30 - shift), high16(logarithm)};
}

VoiceActivityDetector::Features VoiceActivityDetector::measure(const Correlations& correlations, const Lsp& lsf,
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
          .zeroCrossings = static_cast<Zpp16s>(410 * crossings),
          .spectralDistance = high16(distance)};
}

void VoiceActivityDetector::trackMinimum(Zpp16s energy) {
  const bool endOfGroup = frame_ % 8 == 0;
  if (frame_ <= kMinimumFrames) {
    minimum_ = std::min(minimum_, energy);
    if (endOfGroup) minima_[frame_ / 8 - 1] = std::exchange(minimum_, Zpp16s{32767});
  } else {
    if (frame_ % 8 == 1) {
      minimum_ = lowestOfGroups_;
      groupMinimum_ = 32767;
    }
    minimum_ = std::min(minimum_, energy);
    groupMinimum_ = std::min(groupMinimum_, energy);
    if (endOfGroup) {
      std::shift_left(minima_.begin(), minima_.end(), 1);
      minima_.back() = groupMinimum_;
    }
  }
  if (endOfGroup) lowestOfGroups_ = *std::ranges::min_element(minima_);
}

// The means over the loud ones of the first frames
void VoiceActivityDetector::startBackground(const Features& features, const Lsp& lsf) {
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
  meanLowBandEnergy_ = subSat16(meanEnergy_, 2458);  // 12 dB
  meanEnergy_ = subSat16(meanEnergy_, 2048);         // 10 dB
}

bool VoiceActivityDetector::isLikeBackground(Zpp16s energy) const { return subSat16(energy, kMargin) < meanEnergy_; }

// Clause B.3.6
bool VoiceActivityDetector::smooth(bool voice, const Features& features, Zpp16s reflection) {
  bool prolonged = false;
  const Zpp16s rise = subSat16(features.energy, meanEnergy_);
  if (voice_ && !voice && rise > 410 && features.energy > kQuiet) voice = prolonged = true;

  if (!mayExtend_) {
    mayExtend_ = true;
  } else if (voiceBefore_ && voice_ && !voice && absSat16(subSat16(lastEnergy_, features.energy)) <= kMargin) {
    voice = prolonged = true;
    mayExtend_ = ++extension_ <= 4;
    if (!mayExtend_) extension_ = 0;
  }

  if (!voice) ++silentFrames_;
  if (voice && silentFrames_ > 10 && subSat16(features.energy, lastEnergy_) <= kMargin) {
    voice = false;
    silentFrames_ = 0;
  }
  if (voice) silentFrames_ = 0;

  if (isLikeBackground(features.energy) && frame_ > kMinimumFrames && !prolonged && reflection < 19661) voice = false;
  return voice;
}

// Clause B.3.7
void VoiceActivityDetector::trackBackground(const Features& features, const Lsp& lsf, Zpp16s reflection) {
  constexpr Zpp16s near = 83;
  if (isLikeBackground(features.energy) && reflection < 24576 && features.spectralDistance < near) {
    ++updates_;
    const Inertia& inertia = *std::ranges::find_if(inertias, [this](const Inertia& i) { return updates_ < i.updates; });
    move(meanEnergy_, inertia.energy, features.energy);
    move(meanLowBandEnergy_, inertia.energy, features.lowBandEnergy);
    move(meanZeroCrossings_, inertia.zeroCrossings, features.zeroCrossings);
    for (int i = 0; i < kOrder; ++i) move(meanLsf_[i], inertia.lsf, lsf[i]);
  }
  if (frame_ <= kMinimumFrames) return;
  if ((meanEnergy_ < minimum_ && features.spectralDistance < near) || subSat16(meanEnergy_, minimum_) > 2048) {
    meanEnergy_ = minimum_;
    updates_ = 0;
  }
}

bool VoiceActivityDetector::isVoice(const Correlations& correlations, const Lsp& lsf, Zpp16s reflection,
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
  voiceBefore_ = std::exchange(voice_, voice);
  return voice;
}

}  // namespace codecs::g729
