#include "codecs/amrwb/dtx.h"

namespace codecs::amrwb {
namespace {

// Adjustment of the level in the logarithm, by mode, Q7
constexpr Zpp16s kLevelAdjustment[kModes] = {230, 179, 141, 128, 122, 115, 115, 115, 115};

}  // namespace

bool NoiseDescription::decide(bool active) {
  elapsed_ = addSat16(elapsed_, 1);
  if (active) {
    hangover_ = kHangover;
    return false;
  }
  if (hangover_ == 0) {
    elapsed_ = 0;
    return true;
  }
  --hangover_;
  return elapsed_ + hangover_ < 30;  // the decoder still has the noise of the last pause
}

void NoiseDescription::remember(const Zpp16s* residual, int scale, const Zpp16s* isf, int mode) {
  Zpp16s unscaled[kFrame];
  for (int n = 0; n < kFrame; ++n) unscaled[n] = static_cast<Zpp16s>(residual[n] >> scale);
  Zpp16s logEnergy = 0;
  require(zppsLogEnergy_AMRWB_16s(unscaled, &logEnergy));
  newest_ = (newest_ + 1) % kHistory;
  std::copy_n(isf, kOrder, isfHistory_ + kOrder * newest_);
  logEnergies_[newest_] = subSat16(logEnergy, static_cast<Zpp16s>(1024 + kLevelAdjustment[mode]));
}

void NoiseDescription::describe(FrameBits& bits, Zpp16s* isf) {
  Zpp16s dither = 0;
  require(zppsISFAverageDTX_AMRWB_16s(isfHistory_, logEnergies_, newest_, distance_, sumDistance_, isf, &dither));
  Zpp16s sum = 0;
  for (const Zpp16s logEnergy : logEnergies_) sum = addSat16(sum, logEnergy);
  const int level = mulQ15(addSat16(static_cast<Zpp16s>(sum >> 2), 512), 21504) >> 6;
  level_ = static_cast<Zpp16s>(std::clamp(level, 0, 63));

  Zpp16s index[5];
  require(zppsSIDQuant_AMRWB_16s(isf, isf, index));
  for (int part = 0; part < 5; ++part) bits.put(index[part], kNoiseIsfWidths[part]);
  bits.put(level_, kNoiseLevelWidth);
  bits.put(dither, 1);
}

void NoiseDescription::excite(Zpp16s* dst) {
  const Zpp16s logEnergy = mulQ15(static_cast<Zpp16s>(512 * level_), kLevelScale);
  require(zppsComfortNoise_AMRWB_16s(dst, 64 * logEnergy, &seed_));
}

NoiseSchedule::Sent NoiseSchedule::noise() {
  --due_;
  if (afterSpeech_) {
    afterSpeech_ = false;
    due_ = 3;
    return Sent::first;
  }
  if (due_ > 0) return Sent::nothing;
  due_ = 8;
  return Sent::update;
}

}  // namespace codecs::amrwb
