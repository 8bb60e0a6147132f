// Comfort noise of ITU-T G.729 (Annex B clause B.4.4): the excitation that encoder and decoder form alike in silent frames.
#pragma once

#include "codecs/g729/taming.h"

namespace codecs::g729 {

// The level of silence as a descriptor tells it
struct SidGain {
  Zpp16s index;
  Zpp16s level;  // what decides whether a new descriptor is due, in dB
};
// The energy of a frame's LP residual, energy * 2^-exponent
struct ResidualEnergy {
  Zpp16s energy = 0;
  Zpp16s exponent = 40;
};
// Over the last one or two frames
SidGain quantiseSidGain(std::span<const ResidualEnergy> energies);
// The decoder's guess, where a descriptor was lost, from the energy of the excitation, energy * 2^exponent
SidGain guessSidGain(Zpp16s energy, int exponent);

class ComfortNoise {
 public:
  // To be called in every frame of speech: both sides must draw the same random numbers.
  void restart() { random_ = RandomNumbers(kSeed); }
  // The gain of the next frame: that of the descriptor at once after speech, else gradually
  void approach(Zpp16s sidGain, bool afterSpeech);
  // Fills a frame; the excitation of the past stands before the pointer. taming, of an encoder, is kept up to date. Returns
  // what was drawn for each subframe.
  struct Gains {
    Zpp16s pitch;      // Q14
    Zpp16s amplitude;  // of the pulses, a magnitude
  };
  std::array<Gains, kSubframes> excite(Zpp16s* excitation, Taming* taming = nullptr);

 private:
  static constexpr Zpp16s kSeed = 11111;
  RandomNumbers random_{kSeed};
  Zpp16s gain_ = 0;
};

}  // namespace codecs::g729
