// Adaptive postfilter of ITU-T G.728 with its adapter (clauses 4.6 and 4.7). The adapter finds the pitch period as well, by
// which erased frames are extrapolated.
#pragma once

#include "codecs/codec.h"
#include "codecs/g728/adaptation.h"
#include "codecs/g728/frame.h"

namespace codecs::g728 {

class Postfilter {
 public:
  Postfilter();

  // speech: vector of decoded speech, Q2. The adapter runs on it always; with `filters` the result is in speech.
  void process(int vector, bool filters, Zpp16s* speech);
  // Short-term postfilter from the decoder's analysis, for the vectors to come
  void adapt(const ShortPredictor& predictor);

  int pitch() const { return pitch_; }
  Zpp16s tap() const { return tap_; }

 private:
  void findPitch(int vector);

  static constexpr int kHistory = 240;

  alignas(4) Zpp8u adapter_[176];
  alignas(4) Zpp8u filter_[64];
  Zpp16s inverse_[kShortOrder] = {};  // LPC inverse filter, Q13
  Zpp16s zeros_[kShortOrder] = {}, poles_[kShortOrder] = {};
  Zpp16s tilt_ = 0;
  Zpp16s longTerm_[2] = {16384, 0};
  Zpp16s tap_ = 0;
  Zpp32s pitch_ = 50;
  Zpp16s residual_[kHistory + kCycle] = {};  // Q1
  Zpp16s speech_[kHistory + kCycle] = {};    // decoded, Q0
};

}  // namespace codecs::g728
