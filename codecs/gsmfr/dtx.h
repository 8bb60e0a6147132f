// Discontinuous transmission, sending side: voice activity detection and silence descriptors (3GPP TS 46.031, 46.012, 46.032).
#pragma once

#include "codecs/gsmfr/frame.h"

namespace codecs::gsmfr {

// What a silence descriptor averages
struct NoiseParameters {
  Zpp16s lar[kOrder];  // before quantisation
  Zpp16s maxima[kSubframes];
};

// What the encoder finds out about a frame beside its parameters
struct FrameAnalysis {
  Zpp16s offsetFree[kFrame];
  Zpp16s signal[kFrame];  // pre-emphasised, then the short-term residual
  Zpp32s autoCorr[kOrder + 1];
  Zpp32s scale;
  NoiseParameters noise;
};

class DtxHandler {
 public:
  DtxHandler();

  bool detectVoice(const FrameAnalysis& analysis, const Frame& frame);
  // Puts a silence descriptor in the place of a frame that need not be sent. False where it did.
  bool replaceByDescriptor(bool voice, const NoiseParameters& noise, Frame& frame);

 private:
  Frame makeDescriptor() const;

  static constexpr int kDetectorState = 320;
  static constexpr int kDescribedFrames = 4;  // frames that a descriptor averages
  static constexpr int kOldDescriptor = 24;   // frames after which a descriptor is not repeated

  alignas(8) Zpp8u detector_[kDetectorState];
  int silentFrames_ = 0;          // in a row
  int elapsed_ = kOldDescriptor;  // frames since the last new descriptor, at most kOldDescriptor
  bool hasDescriptor_ = false;
  bool repeats_ = false;  // this pause begins with the last descriptor instead of speech frames
  Frame descriptor_ = {};
  NoiseParameters recent_[kDescribedFrames] = {};  // of the last frames, a ring
  int oldest_ = 0;
};

}  // namespace codecs::gsmfr
