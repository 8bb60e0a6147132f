#include "codecs/amrwb/comfort_noise.h"

#include <algorithm>

namespace codecs::amrwb {

namespace {

constexpr Zpp16s kLongestPeriod = 32;  // frames over which two updates are interpolated
constexpr int kMuteAfter = 50;         // frames without an update

// 1 / frames, for frames of 1.0 in Q10
Zpp16s inverseOf(Zpp16s frames) {
  const Zpp16s q10 = shlSat16(frames, 10);
  return q10 <= 1024 ? Zpp16s{32767} : static_cast<Zpp16s>((1024 << 15) / q10);
}

}  // namespace

NoiseReceiver::NoiseReceiver() {
  std::copy_n(initialIsf, kOrder, isf_);
  std::copy_n(initialIsf, kOrder, oldIsf_);
  for (auto& isf : isfHistory_) std::copy_n(initialIsf, kOrder, isf);
  std::fill_n(levelHistory_, kHistory, Zpp16s{437});
}

Sound NoiseReceiver::receive(ReceiveType type) {
  Sound sound = Sound::speech;
  const bool withoutBits = isUnusable(type);
  if (isNoiseType(type) || (last_ != Sound::speech && (withoutBits || type == speechBad))) {
    sound = Sound::noise;
    if (last_ == Sound::mutedNoise && (withoutBits || type == noiseFirst || type == noiseBad)) sound = Sound::mutedNoise;
    sinceUpdate_ = addSat16(sinceUpdate_, 1);
    if (type != noiseUpdate && sinceUpdate_ > kMuteAfter) sound = Sound::mutedNoise;
  } else {
    sinceUpdate_ = 0;
  }
  trackHangover(type);
  if (sound != Sound::speech) {
    hasParameters_ = isNoiseType(type);
    isUpdate_ = type == noiseUpdate;
    if (type == noiseBad) hangoverAdded_ = false;
  }
  return sound;
}

// Follows the encoder's decision whether a hangover of seven frames precedes its first frame of noise.
void NoiseReceiver::trackHangover(ReceiveType type) {
  if (!updated_ && type == noiseUpdate) elapsed_ = 0;
  elapsed_ = addSat16(elapsed_, 1);
  hangoverAdded_ = false;
  const bool encoderSilent = isNoiseType(type) || (type == noData && (last_ != Sound::speech || inactiveFrames_ >= 7));
  if (!encoderSilent) {
    hangover_ = 7;
  } else if (elapsed_ > 30) {
    hangoverAdded_ = true;
    elapsed_ = hangover_ = 0;
  } else if (hangover_ == 0) {
    elapsed_ = 0;
  } else {
    --hangover_;
  }
}

void NoiseReceiver::noteActivity(bool bad, bool active) {
  if (bad ? inactiveFrames_ > 0 : !active)
    inactiveFrames_ = addSat16(inactiveFrames_, 1);
  else if (!bad)
    inactiveFrames_ = 0;
}

void NoiseReceiver::learn(const Zpp16s* isf, Zpp16s logEnergy) {
  newest_ = static_cast<Zpp16s>((newest_ + 1) % kHistory);
  std::copy_n(isf, kOrder, isfHistory_[newest_]);
  levelHistory_[newest_] = subSat16(logEnergy, 1024);
}

// The noise as the frames of the hangover had it; the newest of them counts twice and the oldest not at all.
void NoiseReceiver::averageHistory() {
  const int oldest = (newest_ + 1) % kHistory;
  std::copy_n(isfHistory_[newest_], kOrder, isfHistory_[oldest]);
  levelHistory_[oldest] = levelHistory_[newest_];
  Zpp16s sum = 0;
  for (const Zpp16s level : levelHistory_) sum = addSat16(sum, level);
  level_ = std::max<Zpp16s>(0, addSat16(static_cast<Zpp16s>(sum >> 1), 1024));
  for (int i = 0; i < kOrder; ++i) {
    Zpp32s total = 0;
    for (const auto& isf : isfHistory_) total += isf[i];
    isf_[i] = low16(total >> 3);
  }
}

void NoiseReceiver::readUpdate(const Zpp8u* bits) {
  const Zpp16s frames = std::min(sinceUpdate_, kLongestPeriod);
  periodInverse_ = frames >= 2 ? inverseOf(frames) : Zpp16s{16384};
  FieldReader reader(bits);
  Zpp16s index[5];
  for (int i = 0; i < 5; ++i) index[i] = reader.take(kNoiseIsfWidths[i]);
  require(zppsSIDDecode_AMRWB_16s(index, isf_));
  level_ = mulQ15(static_cast<Zpp16s>(512 * reader.take(kNoiseLevelWidth)), kLevelScale);
  dither_ = reader.take(1) != 0;
}

// From the parameters before to the latest ones. logEnergy: Q25
void NoiseReceiver::interpolate(Zpp16s* isf, Zpp32s& logEnergy) const {
  const Zpp16s elapsed = mulQ15(shlSat16(sinceUpdate_, 10), periodInverse_);
  const auto weight = static_cast<Zpp16s>(16 * std::min<Zpp16s>(elapsed, 1024)), rest = static_cast<Zpp16s>(16384 - weight);
  logEnergy = macDbl(mulDbl(weight, level_), rest, oldLevel_);
  for (int i = 0; i < kOrder; ++i) isf[i] = shlSat16(addSat16(mulQ15(weight, isf_[i]), mulQ15(rest, oldIsf_[i])), 1);
}

void NoiseReceiver::generate(const Zpp8u* bits, Sound sound, Zpp16s* isf, Zpp16s* excitation) {
  const auto keepOld = [this] {
    std::copy_n(isf_, kOrder, oldIsf_);
    oldLevel_ = level_;
  };
  if (hangoverAdded_ && hasParameters_) averageHistory();
  if (hasParameters_) {
    keepOld();
    if (isUpdate_) {
      readUpdate(bits);
      if (!updated_ || last_ == Sound::speech) keepOld();
      sinceUpdate_ = 0;
    }
  }
  Zpp32s logEnergy = 0;
  interpolate(isf, logEnergy);
  if (dither_) require(zppsISFDither_AMRWB_16s_I(isf, &logEnergy, &ditherSeed_));
  require(zppsComfortNoise_AMRWB_16s(excitation, logEnergy >> 9, &noiseSeed_));

  if (sound == Sound::mutedNoise) {
    const Zpp16s frames = std::min(sinceUpdate_, kLongestPeriod);
    periodInverse_ = inverseOf(frames > 0 ? frames : Zpp16s{8});
    sinceUpdate_ = 0;
    oldLevel_ = level_;
    level_ = subSat16(level_, 64);
  }
  if (hasParameters_ && (isUpdate_ || hangoverAdded_)) {
    sinceUpdate_ = 0;
    updated_ = true;
  }
}

}  // namespace codecs::amrwb
