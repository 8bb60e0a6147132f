#include "codecs/gsmfr/decoder.h"

#include <algorithm>

namespace codecs::gsmfr {

bool Decoder::decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
  if (octets == 0) {
    conceal(pcm);
    return true;
  }
  Frame frame;
  if (!unpack(payload, frame)) return false;

  // A decoder at home knows a homing frame by its first subframe already, and answers in kind.
  constexpr Zpp16s kHomingSample = 8;
  if (home_ && std::ranges::equal(frame.larCode, kHomingFrame.larCode) && frame.subframe[0] == kHomingFrame.subframe[0]) {
    std::fill_n(pcm, kFrame, kHomingSample);
    goHome();
    return true;
  }
  home_ = false;
  synthesise(reception_.received(frame), pcm);
  if (frame == kHomingFrame) goHome();
  return true;
}

void Decoder::conceal(Zpp16s* pcm) {
  home_ = false;
  synthesise(reception_.missing(), pcm);
}

void Decoder::goHome() { *this = Decoder({0, dtx_, 0}); }

void Decoder::synthesise(const Frame& frame, Zpp16s* pcm) {
  Zpp16s residual[kHistory + kFrame];
  std::copy_n(history_, kHistory, residual);
  decodeResidual(frame, residual);
  std::copy_n(residual + kFrame, kHistory, history_);
  forEachPart(frame.larCode, lar_, [&](const Zpp16s* refl, int first, int len) {
    require(zppsSpeechSynthesis_GSMFR_16s(refl, residual + kHistory + first, pcm + first, len, lattice_, &emphasis_));
  });
}

// residual: the history, behind which the frame's samples are written
void Decoder::decodeResidual(const Frame& frame, Zpp16s* residual) {
  for (const Subframe& s : frame.subframe) {
    Zpp16s estimate[kSubframe], pulses[kSubframe];
    if (s.lag >= kSubframe && s.lag <= kHistory) lag_ = s.lag;
    require(zppsRPEQuantDecode_GSMFR_16s(s.pulses, pulses, s.amplitude, s.grid));
    require(zppsLTPPredict_GSMFR_16s(residual, estimate, lag_, s.gain));
    require(zppsAdd_16s(pulses, estimate, residual + kHistory, kSubframe));
    residual += kSubframe;
  }
}

}  // namespace codecs::gsmfr
