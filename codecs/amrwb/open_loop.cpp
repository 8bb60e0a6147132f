#include "codecs/amrwb/open_loop.h"

namespace codecs::amrwb {

void OpenLoop::weighSpeech(const Zpp16s* lpc, const Zpp16s* speech, int scaleChange) {
  amrwb::scale(decimation_, 3, scaleChange);
  amrwb::scale(&deemphasis_, 1, scaleChange);
  Zpp16s weightedSpeech[kFrame];
  for (int k = 0; k < kSubframes; ++k) {
    Zpp16s weighting[kFilter];
    weight(lpc + kFilter * k, 30147, weighting);  // 0.92
    require(zppsResidualFilter_AMRWB_16s(weighting, speech + kSubframe * k, weightedSpeech + kSubframe * k, kSubframe));
  }
  require(zppsDeemphasize_AMRWB_16s_I(weightedSpeech, kFrame, kPreemphasis, &deemphasis_));

  // Room for the sums of the search: three bits above the largest sample of two frames
  Zpp16s largest = 0;
  for (const Zpp16s x : weightedSpeech) largest = std::max(largest, absSat16(x));
  const int shift = std::min(norm16(std::max(largest, largest_)) - 3, 0);
  largest_ = largest;

  require(zppsDecimateBy2_AMRWB_16s_I(weightedSpeech, kFrame, decimation_));
  amrwb::scale(weightedSpeech, kHalfFrame, shift);
  const int change = scaleChange + shift - shift_;
  shift_ = shift;
  amrwb::scale(weighted_, kLongestLag, change);
  amrwb::scale(highPassed_, kLongestLag, change);
  highPass_.scale(change);
  std::copy_n(weightedSpeech, kHalfFrame, weighted_ + kLongestLag);
  std::copy_n(weightedSpeech, kHalfFrame, highPassed_ + kLongestLag);
}

void OpenLoop::search(bool once, Zpp16s* toneFlag, Zpp16s (&lags)[2]) {
  const int len = once ? kHalfFrame : kHalfFrame / 2;
  for (int start = 0; start < kHalfFrame; start += len) {
    Zpp16s* const block = weighted_ + kLongestLag + start;
    Zpp16s* const highPassed = highPassed_ + kLongestLag + start;
    highPass_.filter(highPassed, len, 2);
    Zpp16s lag = 0, gain = 0;
    require(zppsOpenLoopPitchSearch_AMRWB_16s(block, highPassed, len, &lag, &gain, tracking_));
    *toneFlag = static_cast<Zpp16s>(*toneFlag >> 1);
    if (gain > 21298) *toneFlag = static_cast<Zpp16s>(*toneFlag | 0x4000);  // 0.65
    lags[start == 0 ? 0 : 1] = static_cast<Zpp16s>(2 * lag);
  }
  if (once) lags[1] = lags[0];
  std::copy_n(weighted_ + kHalfFrame, kLongestLag, weighted_);
  std::copy_n(highPassed_ + kHalfFrame, kLongestLag, highPassed_);
}

}  // namespace codecs::amrwb
