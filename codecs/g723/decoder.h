// The decoder of ITU-T G.723.1 (clause 3) and Annex A.
#pragma once

#include "codecs/g723/comfort_noise.h"
#include "codecs/g723/frame.h"
#include "codecs/g723/speech_output.h"

namespace codecs::g723 {

class Decoder {
 public:
  // variant 1: without postfilters
  explicit Decoder(const Options& options);
  bool isPayloadSize(int octets) const;
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm);
  void conceal(Zpp16s* pcm);

 private:
  using Past = std::array<Zpp16s, kHistory + kFrame>;  // a frame's excitation behind that before it

  void decodeSpeech(const Frame& frame, Zpp16s* pcm);
  void concealSpeech(Zpp16s* pcm);
  void classify(const Past& scaled, int shift, const Frame& frame);
  void postfilterPitch(const Past& excitation, const Past& scaled, const Frame& frame, Zpp16s* pcm) const;
  void describe(const Frame& descriptor);
  void describeLastSpeech();
  void playNoise(Zpp16s* pcm);
  void synthesise(const Lsf& lsf, Zpp16s* pcm);

  bool postfilter_;
  Lsf lsf_ = kMeanLsf;
  History excitation_{};
  SpeechOutput output_;
  // What the concealment of a lost frame goes on with
  int lossCount_ = 0;  // up to 3
  Zpp16s period_ = 0;  // 0: unvoiced
  Zpp16s noiseGain_ = 0, seed_ = 0;
  // And the comfort noise, where the pause begins without a descriptor
  Zpp16s energy_ = 0, energyShift_ = 0;
  ComfortNoise noise_;
};

}  // namespace codecs::g723
