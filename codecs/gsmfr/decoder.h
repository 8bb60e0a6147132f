// GSM full rate decoder (3GPP TS 46.010 clause 5.3).
#pragma once

#include "codecs/codec.h"
#include "codecs/gsmfr/reception.h"
#include "codecs/gsmfr/short_term.h"

namespace codecs::gsmfr {

class Decoder {
 public:
  explicit Decoder(const Options& options) : dtx_(options.dtx), reception_(options.dtx) {}

  bool isPayloadSize(int octets) const { return octets == kPayload; }
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm);
  void conceal(Zpp16s* pcm);

 private:
  void goHome();
  void synthesise(const Frame& frame, Zpp16s* pcm);
  void decodeResidual(const Frame& frame, Zpp16s* residual);

  bool dtx_;
  bool home_ = true;  // at the start, and behind a homing frame
  Reception reception_;
  Zpp16s lag_ = 40;  // the last valid one
  Zpp16s lar_[kOrder] = {};
  Zpp16s lattice_[kOrder] = {};
  Zpp16s emphasis_ = 0;
  Zpp16s history_[kHistory] = {};  // of the short-term residual
};

}  // namespace codecs::gsmfr
