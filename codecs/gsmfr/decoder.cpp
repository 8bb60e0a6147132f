#include "codecs/gsmfr/decoder.h"

#include <algorithm>
#include <memory>

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

void Decoder::goHome() { std::construct_at(this, Options{0, dtx_, 0}); }

void Decoder::synthesise(const Frame& frame, Zpp16s* pcm) {
  Zpp16s residual[kHistory + kFrame];
  std::copy_n(history_, kHistory, residual);
  decodeResidual(frame, residual);
  std::copy_n(residual + kFrame, kHistory, history_);
  const auto refl = coefficients(frame.larCode, lar_);
  require(zppsSpeechSynthesis_GSMFR_16s(refl.data(), residual + kHistory, pcm, lattice_, &emphasis_));
}

// residual: the history, behind which the frame's samples are written. The pulses of all subframes come first: vectors that are
// read as soon as single pulses have been written to them wait for the memory.
void Decoder::decodeResidual(const Frame& frame, Zpp16s* residual) {
  Zpp16s pulses[kFrame], estimate[kSubframe];
  for (int s = 0; s < kSubframes; ++s) {
    const Subframe& subframe = frame.subframe[s];
    require(zppsRPEQuantDecode_GSMFR_16s(subframe.pulses, pulses + kSubframe * s, subframe.amplitude, subframe.grid));
  }
  for (int s = 0; s < kSubframes; ++s) {
    const Subframe& subframe = frame.subframe[s];
    if (subframe.lag >= kSubframe && subframe.lag <= kHistory) lag_ = subframe.lag;
    require(zppsLTPPredict_GSMFR_16s(residual, estimate, lag_, subframe.gain));
    require(zppsAdd_16s(pulses + kSubframe * s, estimate, residual + kHistory, kSubframe));
    residual += kSubframe;
  }
}

}  // namespace codecs::gsmfr
