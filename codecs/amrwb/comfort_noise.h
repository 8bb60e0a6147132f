// The receiving side of discontinuous transmission: what a frame is heard as, and comfort noise (3GPP TS 26.192 and 26.193).
#pragma once

#include "codecs/amrwb/common.h"
#include "codecs/amrwb/payload.h"

namespace codecs::amrwb {

enum class Sound : Zpp8u { speech, noise, mutedNoise };

constexpr bool isNoiseType(ReceiveType type) { return type == noiseFirst || type == noiseUpdate || type == noiseBad; }
// Damaged frames, those without bits included
constexpr bool isBad(ReceiveType type) {
  return type == speechDegraded || type == speechLost || type == speechBad || type == noData;
}
constexpr bool isUnusable(ReceiveType type) { return type == speechLost || type == noData; }

class NoiseReceiver {
 public:
  NoiseReceiver();

  // What the last frame was heard as
  Sound last() const { return last_; }
  // What a frame of this type is heard as
  Sound receive(ReceiveType type);
  // Notes the VAD flag of a frame of speech.
  void noteActivity(bool bad, bool active);
  // Adds a frame of speech to the history of spectra and levels.
  void learn(const Zpp16s* isf, Zpp16s logEnergy);
  // Spectrum and excitation of a frame of noise. bits: the frame's; read of updates only
  void generate(const Zpp8u* bits, Sound sound, Zpp16s* isf, Zpp16s* excitation);
  void finish(Sound sound) { last_ = sound; }

 private:
  static constexpr int kHistory = 8;

  void trackHangover(ReceiveType type);
  void averageHistory();
  void readUpdate(const Zpp8u* bits);
  void interpolate(Zpp16s* isf, Zpp32s& logEnergy) const;

  Sound last_ = Sound::speech;
  // Of this frame: carries comfort-noise parameters; these are valid; a hangover went before, so the history tells the noise
  bool hasParameters_ = false, isUpdate_ = false, hangoverAdded_ = false;
  bool updated_ = false;                           // an update or a hangover has given the noise its parameters
  Zpp16s sinceUpdate_ = 0, periodInverse_ = 8192;  // frames; Q15
  Zpp16s hangover_ = 7, elapsed_ = 32767;          // the encoder's counters as far as they can be told
  Zpp16s inactiveFrames_ = 0;                      // frames of speech since the VAD flag was last set
  Zpp16s level_ = 3500, oldLevel_ = 3500;          // logarithmic energy
  bool dither_ = false;
  Zpp16s noiseSeed_ = 21845, ditherSeed_ = 21845;
  Zpp16s isf_[kOrder], oldIsf_[kOrder];
  Zpp16s newest_ = 0;  // of the histories
  Zpp16s isfHistory_[kHistory][kOrder], levelHistory_[kHistory];
};

}  // namespace codecs::amrwb
