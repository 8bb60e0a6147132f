#include "codecs/g729/music.h"

#include <algorithm>
#include <cstdlib>

#include "codecs/fixed_point.h"
#include "codecs/g729/logarithm.h"

namespace codecs::g729 {
namespace {

// A running mean, weights Q15
Zpp16s moved(Zpp16s mean, Zpp16s kept, Zpp16s value, Zpp16s added) {
  return high16(addSat32(mulDbl(mean, kept), mulDbl(value, added)));
}

constexpr int kBlock = 64;  // frames
constexpr int kMostFlatFrames = 150;

}  // namespace

bool MusicDetector::take(const Input& in) {
  // Level of the residual of an LP filter of order 4, and the distance of the spectrum from that of noise
  Zpp16s left = 32767, distance;
  for (int i = 0; i < 4; ++i) left = mulQ15(left, subSat16(32767, mulQ15(in.reflection[i], in.reflection[i])));
  const Zpp16s level = logEnergy(mulDbl32(in.energy, left), in.exponent);
  Zpp32s sum = 0;
  for (int i = 0; i < kOrder; ++i) {
    const Zpp16s difference = subSat16(meanReflection_[i], in.reflection[i]);
    sum = macDbl(sum, difference, difference);
  }
  distance = high16(sum);
  if (!in.voice) {
    for (int i = 0; i < kOrder; ++i) meanReflection_[i] = moved(meanReflection_[i], 29491, in.reflection[i], 3277);  // 0.9, 0.1
    meanLevel_ = moved(meanLevel_, 29491, level, 3277);
  }

  const bool periodic = isPeriodic(in.voiceBefore, in.rate);
  const bool flat = in.reflection[1] >= 0 && in.reflection[1] <= 14746 && meanPitchGain_ < 8192;  // 0.45, 0.5
  flatFrames_ = flat ? std::min(flatFrames_ + 1, kMostFlatFrames + 1) : 0;
  track(backward_, in.afterBackward && in.voice, in.frame, 500, false);
  track(periodic_, periodic, in.frame, 100, true);

  if (in.rate != Rate::kbit12) return in.voice;
  const bool loud = in.level > 10240, audible = in.level > 1433;  // 50 dB, 7 dB
  const bool unlikeNoise = distance > 12452 || subSat16(level, meanLevel_) > 819;
  const bool musical = periodic_.mean > 2560 || backward_.mean > 280 || in.frame < kBlock;
  return in.voice || (loud && unlikeNoise) || (audible && musical);
}

bool MusicDetector::isPeriodic(bool voiceBefore, Rate rate) {
  Zpp32s gains = 0;
  for (const Zpp16s gain : pitchGains_) gains = macDbl(gains, gain, 6554);  // 0.2
  meanPitchGain_ = moved(meanPitchGain_, 26214, high16(gains), 6554);

  int sum = 0;
  for (const Zpp16s delay : delays_) sum += delay;
  Zpp32s variance = 0;
  for (const Zpp16s delay : delays_) {
    const auto deviation = static_cast<Zpp16s>(5 * delay - sum);
    variance = macDbl(variance, deviation, deviation);
  }
  const bool steady = high16(shlSat32(variance, 22)) < 21632 && meanPitchGain_ > 7373;       // 0.45
  return meanPitchGain_ > (rate == Rate::kbit6 ? 11960 : 10322) || (voiceBefore && steady);  // 0.73, 0.63
}

void MusicDetector::track(Occurrences& o, bool occurred, int frame, int absentLimit, bool steadied) {
  const bool blockEnds = frame % kBlock == 0;
  if (occurred) o.count = addSat16(o.count, 256);
  if (blockEnds) {
    if (frame == kBlock)
      o.mean = o.count;
    else if (steadied && o.count > 6400)
      o.mean = moved(o.mean, 32113, o.count, 655);  // 0.98
    else if (steadied && o.count > 5120)
      o.mean = moved(o.mean, 31130, o.count, 1638);  // 0.95
    else
      o.mean = moved(o.mean, 29491, o.count, 3277);  // 0.9
  }
  o.absent = o.count == 0 ? addSat16(o.absent, 1) : Zpp16s{0};
  if (o.absent > absentLimit || flatFrames_ > kMostFlatFrames) o.mean = 0;
  if (blockEnds) o.count = 0;
}

// Multiples of the delays before count as the same.
void MusicDetector::takeDelay(Zpp16s delay) {
  std::shift_left(delays_.begin(), delays_.end(), 1);
  int sum = 0;
  for (int i = 0; i < 4; ++i) sum += delays_[i];
  const Zpp16s mean = mulRoundQ15(static_cast<Zpp16s>(sum), 8192);
  if (std::abs(delay - 2 * mean) < 4)
    delay = static_cast<Zpp16s>(delay >> 1);
  else if (std::abs(delay - 3 * mean) < 6)
    delay = mulQ15(delay, 10923);
  delays_.back() = delay;
}

void MusicDetector::takePitchGain(Zpp16s gain) {
  std::shift_left(pitchGains_.begin(), pitchGains_.end(), 1);
  pitchGains_.back() = gain;
}

}  // namespace codecs::g729
