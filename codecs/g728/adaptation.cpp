#include "codecs/g728/adaptation.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/g728/tables.h"

namespace codecs::g728 {

bool predict(const Zpp16s* autoCorr, ShortPredictor& predictor) {
  ShortPredictor p;
  if (zppsLevinsonDurbin_G728_16s_Sfs(autoCorr, kShortOrder, p.a, &p.rc1, &p.residual, &p.scale) != zppStsOk) return false;
  predictor = p;
  return true;
}

bool expand(const ShortPredictor& predictor, const Zpp16s* expansion, Zpp16s* dst) {
  return !warns(zppsWeightLPC_G728_16s_Sfs(predictor.a, expansion, dst, kShortOrder, predictor.scale));
}

SynthesisAdapter::SynthesisAdapter() { require(zppsWinHybridInit_G728_16s(kSynthesisWindow, kOrder, kCycle, 35, 2, window_)); }

bool SynthesisAdapter::analyse(const Zpp16s* speech) {
  Zpp32s valid = 0;
  require(zppsWinHybridBlock_G728_16s(speech, autoCorr_, &valid, window_));
  ready_ = valid && predict(autoCorr_, begun_);
  return ready_;
}

void SynthesisAdapter::complete() {
  if (!ready_) return;
  // A breakdown keeps the filter of before, and so does an expanded filter that does not fit.
  Zpp16s a[kOrder], rc1, residual = begun_.residual;
  int scale = begun_.scale;
  std::copy_n(begun_.a, kShortOrder, a);
  ready_ = zppsLevinsonDurbin_G728_16s_ISfs(autoCorr_, kShortOrder, kOrder, a, &rc1, &residual, &scale) == zppStsOk &&
           !warns(zppsWeightLPC_G728_16s_Sfs(a, kSynthesisExpansion, next_, kOrder, scale));
}

void SynthesisAdapter::update() {
  if (ready_) std::copy_n(next_, kOrder, filter_);
}

void SynthesisAdapter::damp(bool firstCycle) {
  const Zpp16s* from = firstCycle && ready_ ? next_ : filter_;
  require(zppsMul_NR_16s_Sfs(kErasureAttenuation, from, filter_, kOrder, 14));
}

GainAdapter::GainAdapter() { require(zppsWinHybridInit_G728_16s(kLogGainWindow, kShortOrder, kVectors, 20, 2, window_)); }

void GainAdapter::predict(bool growthLimited, Zpp16s* gain) {
  const Zpp16s before = current_;
  require(zppsLogGainPredict_G728_16s(predictor_, past_, growthLimited ? &before : nullptr, &current_, gain));
}

void GainAdapter::update(Zpp32s index) {
  Zpp16s logGain = 0;
  require(zppsLogGainUpdate_G728_16s(current_, &logGain, index, ZPP_RATE_16000));
  append(logGain);
}

void GainAdapter::extrapolated(Zpp16s logGain) {
  current_ = logGain;
  append(logGain);
}

void GainAdapter::append(Zpp16s logGain) {
  std::copy(past_ + 1, past_ + kShortOrder, past_);
  past_[kShortOrder - 1] = logGain;
}

void GainAdapter::adapt(bool replace) {
  Zpp16s autoCorr[kShortOrder + 1];
  Zpp32s valid = 0;
  ShortPredictor p;
  require(zppsWinHybrid_G728_16s(past_ + kShortOrder - kVectors, autoCorr, &valid, window_));
  if (replace && valid && g728::predict(autoCorr, p)) expand(p, kLogGainExpansion, predictor_);
}

}  // namespace codecs::g728
