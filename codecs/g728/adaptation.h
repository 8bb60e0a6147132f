// Backward adaptation, which encoder and decoder do alike: nothing of it is sent. Its parts are spread over the vectors of a
// cycle and run after the vector is complete (ITU-T G.728 clauses 3.7 and 3.8, Annex G).
#pragma once

#include "codecs/g728/frame.h"
#include "zppsc.h"

namespace codecs::g728 {

// Predictor coefficients of order 10 with what an analysis knows beside them
struct ShortPredictor {
  Zpp16s a[kShortOrder];  // Q scale
  Zpp16s rc1;             // first reflection coefficient, Q15
  Zpp16s residual;        // prediction error
  int scale;
};

// Levinson-Durbin recursion of order 10; false for a breakdown
bool predict(const Zpp16s* autoCorr, ShortPredictor& predictor);
// The predictor with its bandwidth expanded, Q14; false, with dst unchanged, when it does not fit
bool expand(const ShortPredictor& predictor, const Zpp16s* expansion, Zpp16s* dst);

// Backward synthesis-filter adapter: predictor of order 50 from past speech
class SynthesisAdapter {
 public:
  SynthesisAdapter();

  const Zpp16s* filter() const { return filter_; }  // a1..a50, Q14

  // Vector 4: windows the cycle's speech (blocks) and begins the recursion. True when it has reached order 10: shortPredictor()
  bool analyse(const Zpp16s* speech);
  const ShortPredictor& shortPredictor() const { return begun_; }
  // Vector 1: completes the recursion.
  void complete();
  // Vector 2: the new filter comes into use, if there is one.
  void update();
  // The same in an erasure: a filter is damped, in its first cycle the new one, if there is one, later the one in use.
  void damp(bool firstCycle);

 private:
  alignas(4) Zpp8u window_[580];
  Zpp16s filter_[kOrder] = {}, next_[kOrder] = {};
  bool ready_ = false;  // the analysis has succeeded so far
  Zpp16s autoCorr_[kOrder + 1];
  ShortPredictor begun_;
};

// Backward vector gain adapter: the gain of a vector, in the logarithmic domain, from those of the vectors before
class GainAdapter {
 public:
  GainAdapter();

  // The gain of the next vector, two words. growthLimited: at most 2 dB above that of the vector before
  void predict(bool growthLimited, Zpp16s* gain);
  // The vector's level is known: by its index, or as it is, with the extrapolated vector of an erasure
  void update(Zpp32s index);
  void extrapolated(Zpp16s logGain);
  // Vector 1: a new predictor, if the analysis succeeds. Without replacement only the window moves on.
  void adapt(bool replace);

 private:
  void append(Zpp16s logGain);

  alignas(4) Zpp8u window_[188];
  Zpp16s predictor_[kShortOrder] = {-16384};
  Zpp16s past_[kShortOrder] = {0, 0, 0, 0, 0, 0, 0, -16384, -16384, -16384};  // oldest first
  Zpp16s current_ = 0;                                                        // as predicted or extrapolated
};

}  // namespace codecs::g728
