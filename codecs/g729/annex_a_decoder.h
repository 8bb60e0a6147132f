// The frame decoder of ITU-T G.729 Annex A.
#pragma once

#include "codecs/g729/decoder.h"
#include "codecs/g729/postfilter.h"

namespace codecs::g729 {

class AnnexADecoder {
 public:
  void decode(const Frame& frame, Zpp16s* samples) { play(frame, false, samples); }
  // For a frame that has not arrived: speech goes on as speech, silence as silence.
  void conceal(Zpp16s* samples);

 private:
  void play(const Frame& frame, bool lost, Zpp16s* samples);
  void decodeSpeech(const SpeechParameters& parameters, bool lost);
  void decodeNoise(const SidParameters* sid);
  PitchDelay takeDelay(const SpeechParameters& parameters, int subframe, bool lost);
  void decodeSubframe(const SpeechParameters::Subframe& parameters, const PitchDelay& delay, int subframe, bool lost);
  void synthesiseSubframe(int subframe);

  Zpp16s* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }
  Zpp16s* synthesis(int subframe) { return synthesis_.data() + kOrder + kSubframeSize * subframe; }

  alignas(16) std::array<Zpp16s, kPastExcitation + kFrameSize> excitation_{};
  alignas(16) std::array<Zpp16s, kOrder + kFrameSize> synthesis_{};
  SubframeFilters filters_{};
  std::array<Zpp16s, kSubframes> delays_{};  // of the frame, for the postfilter

  // What is predicted from, or repeated in a lost frame
  LspDecoder lsp_;
  LspInterpolation interpolation_;
  Zpp16s lastDelay_ = 60;
  GainMemory gainMemory_ = kInitialGainMemory;
  std::array<Zpp16s, 2> gains_{};
  Zpp16s sharpening_ = kLeastSharpening;
  RandomNumbers random_{21845};
  FrameType lastType_ = FrameType::speech;

  SilenceDecoder silence_;
  AnnexAPostfilter postfilter_;
  HighPassFilter highPass_{HighPassFilter::Kind::output};
};

}  // namespace codecs::g729
