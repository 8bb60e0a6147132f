// ITU-T G.728 encoder, 16 kbit/s (LD-CELP, clause 3, fixed point of Annex G).
#pragma once

#include "codecs/codec.h"
#include "codecs/g728/adaptation.h"
#include "codecs/g728/frame.h"

namespace codecs::g728 {

// Adaptive perceptual weighting filter: predictor of order 10 from past input speech, as a ratio of two expanded forms
class WeightingAdapter {
 public:
  WeightingAdapter();
  const Zpp16s* zeros() const { return zeros_; }
  const Zpp16s* poles() const { return poles_; }
  // The 20 newest samples of speech
  void adapt(const Zpp16s* speech);

 private:
  alignas(4) Zpp8u window_[304];
  Zpp16s zeros_[kShortOrder] = {}, poles_[kShortOrder] = {};
};

class Encoder {
 public:
  explicit Encoder(const Options& options);

  int encode(const Zpp16s* pcm, Zpp8u* payload);

 private:
  Zpp32s encodeVector(const Zpp16s* speech, Zpp16s* quantised);
  void adapt(int vector, const Zpp16s* quantised);
  void prepareSearch();

  SynthesisAdapter synthesis_;
  GainAdapter gain_;
  WeightingAdapter weighting_;
  alignas(4) Zpp8u weightingFilter_[64];
  alignas(4) Zpp8u combinedFilter_[208];
  Zpp16s speech_[2 * kCycle] = {};  // input of the last cycle and of this one, Q2
  Zpp16s response_[kVector];        // of both filters to an impulse, Q13
  Zpp16s energy_[128];              // of the shape vectors behind them, Q5
};

}  // namespace codecs::g728
