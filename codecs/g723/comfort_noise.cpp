#include "codecs/g723/comfort_noise.h"

namespace codecs::g723 {

void ComfortNoise::stop() {
  playing_ = false;
  seed_ = kFirstSeed;
}

void ComfortNoise::setGain(Zpp16s index) { require(zppsSIDGainDecode_G723_16s(index, &wantedGain_)); }

ComfortNoise::Noise ComfortNoise::play(History& history) {
  gain_ = playing_ ? static_cast<Zpp16s>((7 * gain_ + wantedGain_) >> 3) : wantedGain_;
  playing_ = true;
  Noise noise;
  require(zppsComfortNoise_G723_16s(history.data(), &seed_, noise.excitation.data(), noise.lag.data(), noise.gainIndex.data(),
                                    gain_));
  return noise;
}

}  // namespace codecs::g723
