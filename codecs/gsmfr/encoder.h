// GSM full rate encoder (3GPP TS 46.010 clause 5.2).
#pragma once

#include "codecs/codec.h"
#include "codecs/gsmfr/dtx.h"
#include "codecs/gsmfr/frame.h"
#include "codecs/gsmfr/short_term.h"

namespace codecs::gsmfr {

class Encoder {
 public:
  explicit Encoder(const Options& options) : dtx_(options.dtx) {}

  int encode(const Zpp16s* pcm, Zpp8u* payload);

  // Of the last frame, with discontinuous transmission
  static constexpr unsigned kVoice = 1;   // voice was detected (VAD)
  static constexpr unsigned kSpeech = 2;  // it is sent as speech, not as a descriptor (SP)
  unsigned flags() const { return flags_; }

 private:
  void analyse(const Zpp16s* pcm, FrameAnalysis& analysis, Frame& frame);
  void filterShortTerm(const Zpp16s* larCode, Zpp16s* signal);
  void codeSubframe(const Zpp16s* residual, Zpp16s* history, Subframe& subframe, Zpp16s& maximum) const;

  bool dtx_;
  unsigned flags_ = 0;
  Zpp32s offset_[2] = {};
  Zpp16s emphasis_ = 0;
  Zpp16s lar_[kOrder] = {};  // of the last frame, as decoded
  Zpp16s lattice_[kOrder] = {};
  Zpp16s history_[kHistory] = {};  // of the reconstructed short-term residual
  DtxHandler handler_;
};

}  // namespace codecs::gsmfr
