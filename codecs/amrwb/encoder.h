// The encoder of AMR-WB (3GPP TS 26.190), with discontinuous transmission on request (TS 26.192 to 26.194).
#pragma once

#include "codecs/amrwb/common.h"
#include "codecs/amrwb/dtx.h"
#include "codecs/amrwb/high_band_encoder.h"
#include "codecs/amrwb/open_loop.h"
#include "codecs/amrwb/payload.h"
#include "codecs/amrwb/preprocessing.h"

namespace codecs::amrwb {

// The encoder proper: a frame to its bits. What a homing frame sets anew is all of it.
class FrameEncoder {
 public:
  FrameEncoder();
  // pcm: a frame with its two lowest bits clear. Returns false for a frame of comfort noise.
  bool encode(const Zpp16s* pcm, int mode, bool dtx, FrameBits& bits);

 private:
  struct Spectrum {
    Zpp16s isf[kOrder];
    Zpp16s lpc[kSubframes * kFilter];
  };
  // What a subframe's searches have found
  struct Excitation {
    Zpp16s lag, fraction, pitchGain;
    Zpp32s codeGain;
  };

  void detectVoice();
  void analyse(Spectrum& spectrum);
  void updateClipping(const Zpp16s* isf, bool low);
  void resetAfterNoise();
  void encodeSpeech(const Zpp16s* pcm, const Spectrum& spectrum, const Zpp16s (&openLoopLags)[2], FrameBits& bits);
  void encodeNoise(const Zpp16s* pcm, const Spectrum& spectrum, FrameBits& bits);
  void encodeSubframe(int subframe, const Zpp16s* pcm, const Zpp16s* lpc, const Zpp16s* quantLpc, Zpp16s openLoopLag,
                      Zpp16s stability, FrameBits& bits);
  bool clipsPitchGain() const;

  // Of the frame being coded
  int mode_ = 0;
  bool active_ = false;

  Preprocessing input_;
  Zpp8u vad_[148];
  Zpp16s toneFlag_ = 0;
  Zpp16s vadHist_ = 0;  // frames since the last with voice activity
  Zpp16s stableLpc_[kOrder] = {};
  Zpp16s isp_[kOrder], quantIsp_[kOrder], lastIsf_[kOrder];
  OpenLoop openLoop_;
  Zpp16s pastEnergies_[4] = {-14336, -14336, -14336, -14336};
  HighBandEncoder highBand_;
  NoiseDescription noise_;

  // Set anew after comfort noise
  Zpp16s
      excitation_[kPastExcitation + kFrame + 1];  // the past, the frame, and a sample that the last subframe's vector has more
  Zpp16s synthesis_[kOrder];
  Zpp16s pastResidual_[kOrder];
  Zpp16s weightedTarget_;
  Zpp16s tilt_;
  Zpp32s smoothedCodeGain_;
  bool first_;            // no quantised ISPs yet
  Zpp16s isfGap_;         // smallest distance of ISFs, smoothed: resonances make it small
  Zpp16s pitchGain_;      // smoothed, Q14
  Zpp16s lowestLag_ = 0;  // of the range of subframes coded relative to the one before
};

class Encoder {
 public:
  explicit Encoder(const Options& options) : dtx_(options.dtx) { setBitRate(options.bitRate); }

  void setBitRate(int bitRate);
  int encode(const Zpp16s* pcm, Zpp8u* payload);
  // After a frame of comfort noise that is not sent, or of which only that it is noise: a payload with its bits
  int unsent(Zpp8u* payload) const;

 private:
  int mode_ = 0;
  bool dtx_;
  FrameEncoder coder_;
  NoiseSchedule schedule_;
  Zpp8u noiseBits_[kNoiseBits] = {};  // of the last frame of comfort noise
};

}  // namespace codecs::amrwb
