// Discontinuous transmission of ITU-T G.729 (Annex B clause B.4.1): decides what of the silence between speech is described,
// and describes it.
#ifndef ZPPSC_EXAMPLES_G729_DTX_H
#define ZPPSC_EXAMPLES_G729_DTX_H

#include <functional>
#include <optional>

#include "g729_comfort_noise.h"
#include "g729_frame.h"
#include "g729_vad.h"

namespace codecs::g729 {

class Dtx {
 public:
  // Takes note of every frame. False for a silent frame, for which the next two are to be called.
  bool isSpeech(const Correlations& correlations, const Lsp& lsp, Zpp16s reflection,
                std::span<const Zpp16s, kWindowSize> speech);
  // The descriptor, if one is due. toLsp: conversion as the coder does it
  std::optional<SidParameters> describeSilence(LevinsonDurbin& levinsonDurbin, const std::function<Lsp(const Filter&)>& toLsp,
                                               MaMemory& maMemory);
  // Fills the frame; the excitation of the past stands before the pointer.
  void fillExcitation(Zpp16s* excitation, Taming& taming) { noise_.excite(excitation, &taming); }
  // Of the descriptor sent last
  const Lsp& lsp() const { return sidLsp_; }

 private:
  // Values with a common scale, value * 2^-exponent
  struct Autocorrelation {
    std::array<Zpp16s, kOrder + 1> lags{};
    int exponent = 40;
  };
  static Autocorrelation sum(std::span<const Autocorrelation> terms);
  static Filter solve(LevinsonDurbin& levinsonDurbin, const Autocorrelation& autocorrelation, Zpp16s* energy);
  void takeSum();

  // A filter by the correlations of its coefficients
  class Reference {
   public:
    Reference() = default;
    explicit Reference(const Filter& a);
    // Whether the filter leaves more of a signal than (1 + margin) times its residual energy; margin Q15
    bool differsFrom(const Autocorrelation& signal, Zpp16s energy, Zpp16s margin) const;

   private:
    Filter correlations_{};
    int exponent_ = 0;
  };

  VoiceActivityDetector vad_;
  bool speech_ = true, afterSpeech_ = true;  // this frame and the one before
  ComfortNoise noise_;

  std::array<Autocorrelation, 2> frames_;  // of the last two frames, the newest first
  std::array<Autocorrelation, 3> sums_;    // of pairs of frames
  bool oddFrame_ = false;

  std::array<ResidualEnergy, 2> energies_;  // of the last two silent frames, the newest first
  int framesSinceSid_ = 0;                  // up to 3
  bool changed_ = false;
  Reference reference_;  // the filter of the last descriptor
  SidGain gain_{};
  Zpp16s sidGain_ = 0;
  Lsp sidLsp_{};
};

}  // namespace codecs::g729

#endif
