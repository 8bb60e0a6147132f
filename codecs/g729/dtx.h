// Discontinuous transmission of ITU-T G.729 (Annex B clause B.4.1): decides what of the silence between speech is described,
// and describes it.
#pragma once

#include <optional>

#include "codecs/g729/comfort_noise.h"
#include "codecs/g729/frame.h"
#include "codecs/g729/vad.h"

namespace codecs::g729 {

class Dtx {
 public:
  // What silence shares with speech: the encoder's memories, and its conversion of LP filters to LSPs
  struct Coder {
    LevinsonDurbin& levinsonDurbin;
    MaMemory& maMemory;
    Taming& taming;
    Lsp (*convert)(const Filter& a, const Lsp& previous);
    const Lsp& previous;  // for it

    Lsp toLsp(const Filter& a) const { return convert(a, previous); }
  };

  // Whether the next frame is voice
  bool detect(const Correlations& correlations, const Lsp& lsp, Zpp16s reflection, std::span<const Zpp16s, kWindowSize> speech);
  // Whether it is coded as speech
  void accept(const Correlations& correlations, bool speech);
  const VoiceActivityDetector& detector() const { return vad_; }
  // For a frame that is not: fills the excitation, behind that of the past, and returns a descriptor if one is due.
  std::optional<SidParameters> playSilence(Coder coder, Zpp16s* excitation);
  // Of the last descriptor
  const Lsp& lsp() const { return sidLsp_; }

 private:
  // Values with a common scale, value * 2^-exponent
  struct Autocorrelation {
    std::array<Zpp16s, kOrder + 1> lags{};
    Zpp16s exponent = 40;
  };
  static Autocorrelation sum(std::span<const Autocorrelation> terms);
  static Filter solve(const Autocorrelation& autocorrelation, Coder& coder, Zpp16s& energy);
  void pushSum();

  struct Silence {
    Autocorrelation autocorrelation;
    Filter filter{};
    SidGain gain{};
  };
  bool isDescriptorDue(const Silence& silence);
  SidParameters describe(const Silence& silence, Coder& coder);

  // A filter by the correlations of its coefficients
  class Reference {
   public:
    Reference() = default;
    explicit Reference(const Filter& a);
    // Whether the filter leaves more of a signal than (1 + margin) times its residual energy; margin Q15
    bool differsFrom(const Autocorrelation& signal, Zpp16s energy, Zpp16s margin) const;

   private:
    std::array<Zpp16s, kOrder + 1> correlations_{};
    Zpp16s exponent_ = 0;
  };

  VoiceActivityDetector vad_;
  bool speech_ = true, afterSpeech_ = true;  // this frame, and the one before
  ComfortNoise noise_;

  std::array<Autocorrelation, 2> frames_;  // of the last two frames, the newest first
  std::array<Autocorrelation, 3> sums_;    // of pairs of frames
  bool secondOfPair_ = true;

  std::array<ResidualEnergy, 2> energies_;  // of the last two silent frames, the newest first
  int framesSinceSid_ = 0;                  // up to 3
  bool changed_ = false;
  // The last descriptor
  Reference reference_;
  SidGain sidGain_{};
  Lsp sidLsp_{};
};

}  // namespace codecs::g729
