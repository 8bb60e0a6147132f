// The frame decoder of ITU-T G.729 and Annex A, with the comfort noise of Annex B and the concealment of lost frames.
#pragma once

#include "codecs/g729/comfort_noise.h"
#include "codecs/g729/frame.h"
#include "codecs/g729/postfilter.h"

namespace codecs::g729 {

// Postfilter: MainBodyPostfilter or AnnexAPostfilter, which tells the two decoders apart
template <class Postfilter>
class FrameDecoder {
 public:
  FrameDecoder();

  void decode(const Frame& frame, std::span<Zpp16s, kFrameSize> samples);
  // For a frame that has not arrived
  void conceal(std::span<Zpp16s, kFrameSize> samples);

 private:
  void play(const Frame& frame, bool lost, std::span<Zpp16s, kFrameSize> samples);
  void decodeSpeech(const SpeechParameters& parameters, bool lost);
  void decodeNoise(const SidParameters* sid);

  Lsp decodeLsp(const std::array<Zpp16s, 2>& code, bool lost);
  PitchDelay decodeDelay(const SpeechParameters& parameters, int subframe, bool lost);
  void decodeSubframe(const SpeechParameters::Subframe& parameters, const PitchDelay& delay, int subframe, bool lost);
  void synthesiseSubframe(int subframe);

  Zpp16s* excitation(int subframe) { return excitation_.data() + kPastExcitation + kSubframeSize * subframe; }
  Zpp16s* synthesis(int subframe) { return synthesis_.data() + kOrder + kSubframeSize * subframe; }

  static constexpr bool kMainBody = std::is_same_v<Postfilter, MainBodyPostfilter>;

  alignas(16) std::array<Zpp16s, kPastExcitation + kFrameSize> excitation_{};
  alignas(16) std::array<Zpp16s, kOrder + kFrameSize> synthesis_{};
  SubframeFilters filters_{};
  std::array<Zpp16s, kSubframes> delays_{};  // of the frame, for the postfilter

  // What is predicted from, or repeated in a lost frame
  LspInterpolation interpolation_;
  MaMemory maMemory_;
  Zpp16s maMode_ = 0;
  Lsf lsf_;
  Zpp16s lastDelay_ = 60;
  GainMemory gainMemory_ = kInitialGainMemory;
  std::array<Zpp16s, 2> gains_{};
  Zpp16s sharpening_ = kLeastSharpening;
  bool voiced_ = true;  // by the postfilter in the last frame
  RandomNumbers random_{21845};

  // Silence
  FrameType lastType_ = FrameType::speech;
  ComfortNoise noise_;
  Zpp16s sidGain_;
  Lsp sidLsp_ = {31441, 27566, 21458, 13612, 4663, -4663, -13612, -21458, -27566, -31441};
  Zpp16s excitationEnergy_ = 0;  // of the last frame that arrived, energy * 2^exponent
  int excitationExponent_ = 1;

  Postfilter postfilter_;
  HighPassFilter highPass_{HighPassFilter::Kind::output};
};

}  // namespace codecs::g729
