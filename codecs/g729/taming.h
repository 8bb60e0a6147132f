// Taming of ITU-T G.729's encoder (clause 3.7.3): a decoder that has lost frames carries an error in its excitation, which
// pitch gains above 1 would make grow. The encoder estimates how far the worst case has come, by zones of 40 samples of the
// past, and keeps the gain down where it must.
#pragma once

#include "codecs/g729/filters.h"

namespace codecs::g729 {

class Taming {
 public:
  // Whether the pitch gain for this delay must stay below 1
  bool isNeeded(const PitchDelay& delay) const;
  // gain: the quantised pitch gain, Q14
  void update(Zpp16s gain, int delay);

 private:
  std::array<Zpp32s, 4> errors_ = {16384, 16384, 16384, 16384};  // Q14, the newest zone first
};

}  // namespace codecs::g729
