// AMR-WB decoder (3GPP TS 26.190 clause 6, with TS 26.191 to 26.193).
#pragma once

#include "codecs/amrwb/comfort_noise.h"
#include "codecs/amrwb/common.h"
#include "codecs/amrwb/payload.h"
#include "codecs/amrwb/synthesis.h"

namespace codecs::amrwb {

// Everything that a homing frame resets
class SpeechDecoder {
 public:
  SpeechDecoder();

  // bits: of a frame of this mode, or of comfort noise; not read where the type says that they are unknown
  void decode(ReceiveType type, int mode, const Zpp8u* bits, Zpp16s* pcm);

 private:
  void restart();
  void decodeNoise(Sound sound, int mode, bool bad, const Zpp8u* bits, Zpp16s* pcm);
  void decodeSpeech(ReceiveType type, int mode, const Zpp8u* bits, Zpp16s* pcm);
  int rescale(Zpp32s gainCode, Zpp16s* excitation, Zpp16s& roundedGain);

  NoiseReceiver noise_;
  Synthesis synthesis_;
  Zpp16s isp_[kOrder], isf_[kOrder], isfHistory_[3 * kOrder];
  Zpp8u lagState_[24];
  Zpp16s gainMem_[22] = {-14336, -14336, -14336, -14336};
  Zpp16s codeSeed_ = 21845;
  int state_ = 0;  // of the concealment: 0 good .. 6
  bool previousBad_ = false;
  Zpp16s inactiveFrames_ = 0;  // frames of speech since the VAD flag was last set

  // Set anew after comfort noise
  bool first_;
  Zpp16s excitation_[kPastExcitation], pastResidual_[kOrder], tilt_, dispersion_[8];
  Zpp32s smoothedGain_;
  Zpp16s scale_, subframeScales_[kSubframes];
};

class Decoder {
 public:
  explicit Decoder(const Options&) {}

  bool isPayloadSize(int octets) const;
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm);
  // receiveType: a ReceiveType, alone or with the mode of the frame. Without it comfort noise has the mode of the last frame.
  bool decodeAs(int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm);
  void conceal(Zpp16s* pcm);

 private:
  void decodeFrame(ReceiveType type, Zpp16s* pcm);

  SpeechDecoder decoder_;
  bool home_ = true;  // the last frame was a homing frame, or there was none
  int mode_ = 0;
  // The bits of the last frame. Those of a shorter one replace only the beginning, and the test for a homing frame sees it all.
  Zpp8u bits_[kMaxBits] = {};
};

}  // namespace codecs::amrwb
