// Voice activity detection of ITU-T G.729 (Annex B clause B.3): four differences between a frame and the background noise, a
// decision by 14 planes in their space, smoothing over time, and the tracking of the background.
#pragma once

#include <utility>

#include "codecs/g729/analysis.h"

namespace codecs::g729 {

class VoiceActivityDetector {
 public:
  // Takes the next frame and returns whether it is voice. lsf: normalised; reflection: the second coefficient; speech: what the
  // LP window saw
  bool take(const Correlations& correlations, const Lsf& lsf, Zpp16s reflection, std::span<const Zpp16s, kWindowSize> speech);
  // What the frame is coded as, from which the next decisions follow: to be called after take
  void accept(bool voice) { voiceBefore_ = std::exchange(voice_, voice); }

  int frame() const { return frame_; }           // number of the last frame
  bool accepted() const { return voice_; }       // the last decision that was accepted
  Zpp16s energy() const { return lastEnergy_; }  // of the last frame, Q11, a unit being 10 dB

 private:
  struct Features {
    Zpp16s energy, lowBandEnergy;  // Q11, a unit being 10 dB
    Zpp16s zeroCrossings;          // Q15 of 80
    Zpp16s spectralDistance;
  };

  Features measure(const Correlations& correlations, const Lsf& lsf, std::span<const Zpp16s, kWindowSize> speech) const;
  void trackMinimum(Zpp16s energy);
  void startBackground(const Features& features, const Lsf& lsf);
  bool smooth(bool voice, const Features& features, Zpp16s reflection);
  void trackBackground(const Features& features, const Lsf& lsf, Zpp16s reflection);
  bool isLikeBackground(Zpp16s energy) const;

  int frame_ = 0;                           // counts from 1, after 32767 from 256
  bool voice_ = true, voiceBefore_ = true;  // the decisions on the last two frames
  Zpp16s lastEnergy_ = 0;

  // Background noise
  Zpp16s meanEnergy_ = 0, meanLowBandEnergy_ = 0, meanZeroCrossings_ = 0;
  Lsf meanLsf_{};
  int quietFrames_ = 0;  // of the first 32
  int updates_ = 0;

  // The lowest energies of the last 16 groups of eight frames, of the group that runs, and of all
  std::array<Zpp16s, 16> minima_{};
  Zpp16s groupMinimum_ = 32767, minimum_ = 32767;

  int extension_ = 0;  // frames of voice added behind voice
  bool mayExtend_ = true;
  int silentFrames_ = 0;
};

}  // namespace codecs::g729
