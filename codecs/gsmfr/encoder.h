// GSM full rate encoder (3GPP TS 46.010 clause 5.2).
#ifndef ZPPSC_CODECS_GSMFR_ENCODER_H
#define ZPPSC_CODECS_GSMFR_ENCODER_H

#include "codecs/codec.h"
#include "gsmfr/dtx.h"
#include "gsmfr/frame.h"
#include "gsmfr/short_term.h"

namespace codecs::gsmfr {

class Encoder {
 public:
  explicit Encoder(const Options& options) : dtx_(options.dtx) {}

  int encode(const Zpp16s* pcm, Zpp8u* payload);

  // Of the last frame: whether it had voice and whether it is sent as speech. Both are true without discontinuous transmission.
  bool voice() const { return voice_; }
  bool speech() const { return speech_; }

 private:
  void analyse(const Zpp16s* pcm, FrameAnalysis& analysis, Frame& frame);
  void filterShortTerm(const Zpp16s* larCode, Zpp16s* signal);
  void codeSubframe(const Zpp16s* residual, Zpp16s* history, Subframe& subframe, Zpp16s& maximum) const;

  bool dtx_;
  bool voice_ = true, speech_ = true;
  Zpp32s offset_[2] = {};
  Zpp16s emphasis_ = 0;
  Zpp16s lar_[kOrder] = {};  // of the last frame, as decoded
  Zpp16s lattice_[kOrder] = {};
  Zpp16s history_[kHistory] = {};  // of the reconstructed short-term residual
  DtxHandler handler_;
};

}  // namespace codecs::gsmfr

#endif
