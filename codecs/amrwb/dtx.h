// Discontinuous transmission, encoder side: when a frame is comfort noise, what its descriptor says, and which descriptors are
// sent (3GPP TS 26.192 and 26.193).
#pragma once

#include "codecs/amrwb/common.h"
#include "codecs/amrwb/payload.h"

namespace codecs::amrwb {

class NoiseDescription {
 public:
  // After the decision of the voice activity detection: whether the frame is comfort noise
  bool decide(bool active);
  int hangover() const { return hangover_; }

  // A frame without voice activity: its LP residual of 256 samples, scaled by 2^scale, and its ISFs
  void remember(const Zpp16s* residual, int scale, const Zpp16s* isf, int mode);
  // Writes the fields of a descriptor; isf becomes the quantised ISFs.
  void describe(FrameBits& bits, Zpp16s* isf);
  // An excitation of 256 samples at the level of the last descriptor
  void excite(Zpp16s* dst);

 private:
  static constexpr int kHistory = 8, kHangover = 7;

  Zpp16s isfHistory_[kHistory * kOrder];
  Zpp16s logEnergies_[kHistory] = {};
  int newest_ = 0;
  Zpp32s distance_[28] = {}, sumDistance_[kHistory] = {};
  Zpp16s seed_ = 21845;
  int hangover_ = kHangover;
  Zpp16s elapsed_ = 32767;  // frames since the last hangover that was long enough
  Zpp16s level_ = 0;

 public:
  NoiseDescription() {
    for (int j = 0; j < kHistory; ++j) std::copy_n(initialIsf, kOrder, isfHistory_ + kOrder * j);
  }
};

// Which comfort-noise frames are sent: the first after speech, then an update after three frames and after every eight.
class NoiseSchedule {
 public:
  enum class Sent { first, update, nothing };

  void speech() { due_ = 8, afterSpeech_ = true; }
  Sent noise();

 private:
  int due_ = 3;
  bool afterSpeech_ = true;
};

}  // namespace codecs::amrwb
