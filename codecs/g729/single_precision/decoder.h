// The frame decoder of ITU-T G.729 Annex C in single precision, for main body and Annex A, with the concealment of lost frames.
#pragma once

#include "codecs/g729/frame.h"
#include "codecs/g729/single_precision/postfilter.h"

namespace codecs::g729f {

using g729::SpeechParameters;

// Postfilter: MainBodyPostfilter or AnnexAPostfilter, which tells the two decoders apart
template <class Postfilter>
class FrameDecoder {
 public:
  void decode(const SpeechParameters& parameters, Zpp16s* samples) { play(parameters, false, samples); }
  // For a frame that has not arrived
  void conceal(Zpp16s* samples) { play({}, true, samples); }

 private:
  void play(const SpeechParameters& parameters, bool lost, Zpp16s* samples);
  Lsp decodeLsp(const std::array<Zpp16s, 2>& code, bool lost);
  PitchDelay takeDelay(const SpeechParameters& parameters, int subframe, bool lost);
  void decodeSubframe(const SpeechParameters::Subframe& parameters, const PitchDelay& delay, int subframe, bool lost);
  void decodeGains(const Subframe& code, const Zpp16s* index);

  Zpp32f* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }
  Zpp32f* synthesis(int subframe) { return synthesis_.data() + kOrder + kSubframeSize * subframe; }

  std::array<Zpp32f, kPastExcitation + kFrameSize> excitation_{};
  std::array<Zpp32f, kOrder + kFrameSize> synthesis_{};
  std::array<Zpp16s, kSubframes> delays_{};  // of the frame

  // What is predicted from, or repeated in a lost frame
  LspInterpolation interpolation_;
  MaMemory maMemory_;
  Zpp16s maMode_ = 0;
  Lsf lsf_ = kFlatLsf;
  Zpp16s lastDelay_ = 60;
  GainMemory gainMemory_ = kInitialGainMemory;
  Zpp32f pitchGain_ = 0, codeGain_ = 0;
  Zpp32f sharpening_ = kLeastSharpening;
  bool voiced_ = true;  // by the postfilter in the last frame
  g729::RandomNumbers random_{21845};

  Postfilter postfilter_;
  HighPassFilter highPass_{HighPassFilter::kOutput};
};

}  // namespace codecs::g729f
