#include "codecs/amrwb/preprocessing.h"

namespace codecs::amrwb {

void Preprocessing::process(const Zpp16s* pcm) {
  std::copy(speech_ + kFrame, speech_ + kFrame + kOld, speech_);
  Zpp16s* const fresh = speech_ + kOld;
  require(zppsDownSampling_AMRWB_16s(pcm, fresh, kInputFrame, downSampling_));
  highPass_.filter(fresh, kFrame, 2);
  // The window's last samples are what the filters give when silence follows.
  Zpp16s downSampling[30];
  std::copy_n(downSampling_, 30, downSampling);
  HighPass highPass = highPass_;
  constexpr Zpp16s silence[kAhead * 5 / 4] = {};
  require(zppsDownSampling_AMRWB_16s(silence, fresh + kFrame, kAhead * 5 / 4, downSampling));
  highPass.filter(fresh + kFrame, kAhead, 2);

  int shift = 0;
  require(zppsPreemphasisScale_AMRWB_16s(fresh, kFrame + kAhead, kPreemphasis, last_, &shift));
  const int scale = std::min({shift, possible_[0], possible_[1]});
  scaleChange_ = scale - scale_;
  scale_ = scale;
  possible_[1] = possible_[0];
  possible_[0] = shift;

  const Zpp16s last = fresh[kFrame - 1];
  require(zppsPreemphasize_AMRWB_16s_I(fresh, kFrame + kAhead, kPreemphasis, scale_, &last_));
  last_ = last;
  amrwb::scale(speech_, kOld, scaleChange_);
}

void Preprocessing::newSpeech(Zpp16s* dst) const { amrwb::scale(speech_ + kOld, dst, kFrame, 1 - scale_); }

}  // namespace codecs::amrwb
