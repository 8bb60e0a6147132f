// Discontinuous transmission: which frames are silent, and which of them are described (ITU-T G.723.1 Annex A, clauses A.2 to
// A.4).
#pragma once

#include "codecs/g723/comfort_noise.h"
#include "codecs/g723/frame.h"

namespace codecs::g723 {

// Values with a common scale, value * 2^-exponent
struct Autocorrelation {
  std::array<Zpp16s, kOrder + 1> lags{};
  Zpp16s exponent = 40;  // of silence
};

class Dtx {
 public:
  // Every frame in this order: its autocorrelations; whether it holds speech; its open-loop lags.
  void take(const std::array<Autocorrelation, kSubframes>& subframes);
  bool isSpeech(const Zpp16s* input, Zpp16s sineDetector);
  void setLags(const std::array<Zpp16s, 2>& lags) { lags_ = {lags_[2], lags_[3], lags[0], lags[1]}; }

  // Then, of a frame of silence, what is sent of it; and the noise that encoder and decoder go on with.
  Frame describe(const Lsf& previousLsf);
  ComfortNoise noise;

 private:
  static constexpr int kFrames = 4, kEnergies = 3;

  // Correlations of the coefficients of a filter
  struct Reference {
    std::array<Zpp16s, kOrder + 1> lags{};
    Zpp16s shift = 0;
  };
  static Autocorrelation sum(const Autocorrelation* terms, int count);
  static Filter solve(const Autocorrelation& autocorrelation, Zpp16s& energy);
  static Reference referenceOf(const Filter& filter);
  bool fits(const Reference& reference) const;
  Zpp16s averageGain() const;
  void describeSpectrum(const Filter& latest, const Lsf& previousLsf, Frame& frame);

  std::array<Autocorrelation, kFrames> frames_;      // newest first
  std::array<Zpp16s, 2 * 2> lags_ = {1, 1, 60, 60};  // open-loop, of two frames, oldest first
  // The detector's memories
  Filter noiseFilter_{};
  std::array<Zpp32s, 2> levels_ = {1024, 1024};
  std::array<Zpp16s, 3> counters_ = {3, 0, 0};
  // The pause
  std::array<Zpp16s, kEnergies> energies_{};  // residual, of silent frames, newest first
  int silentFrames_ = 0;                      // up to kEnergies
  Reference reference_;                       // of the last descriptor
  Zpp16s describedGain_ = 0;
};

}  // namespace codecs::g723
