// Comfort noise of a pause, which encoder and decoder make alike (ITU-T G.723.1 Annex A, clause A.4).
#pragma once

#include "codecs/g723/frame.h"

namespace codecs::g723 {

class ComfortNoise {
 public:
  // A frame's excitation, and the adaptive vectors that it is made of: the encoder follows their errors.
  struct Noise {
    static constexpr std::array<Zpp16s, kSubframes> offset = {1, 0, 1, 3};
    Excitation excitation;
    std::array<Zpp16s, 2> lag;
    std::array<Zpp16s, kSubframes> gainIndex;
  };

  // Whether the last frame belonged to a pause
  bool playing() const { return playing_; }
  // A frame of speech
  void stop();
  // What a descriptor says
  void setGain(Zpp16s index);
  void setLsf(const Lsf& lsf) { lsf_ = lsf; }
  const Lsf& lsf() const { return lsf_; }
  // The next frame; enters the history.
  Noise play(History& history);

 private:
  static constexpr Zpp16s kFirstSeed = 12345;

  bool playing_ = false;
  Zpp16s wantedGain_ = 0, gain_ = 0;
  Zpp16s seed_ = kFirstSeed;
  Lsf lsf_ = kMeanLsf;
};

}  // namespace codecs::g723
