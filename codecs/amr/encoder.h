// GSM-AMR encoder (3GPP TS 26.090, fixed point as in TS 26.073).
#pragma once

#include "codecs/amr/analysis.h"
#include "codecs/amr/dtx.h"
#include "codecs/amr/frame.h"
#include "codecs/amr/subframe_encoder.h"
#include "codecs/codec.h"

namespace codecs::amr {

class Encoder {
 public:
  // variant 0 or 1: option 1 or 2 of the voice activity detection
  explicit Encoder(const Options& options);
  int encode(const Zpp16s* pcm, Zpp8u* payload);
  void setBitRate(int bitRate) { mode_ = modeOf(bitRate); }
  // After a frame for which nothing was sent: the update of the descriptor that was not sent
  int unsent(Zpp8u* payload) const;

 private:
  void takeSamples(const Zpp16s* pcm);
  void analyseSpectrum(Zpp16s* a, Zpp16s* lsp);
  void quantiseSpectrum(const Zpp16s* lsp, Zpp16s* quantA, Zpp16s* parameters);
  void reset();

  static constexpr int kLookAhead = 40, kFirst = 120, kPastWeighted = 143;

  int mode_;
  Zpp8u highPass_[24];
  Zpp16s speech_[2 * kFrame] = {};  // the coded frame starts at kFirst
  Zpp16s weighted_[kPastWeighted + kFrame] = {};
  Zpp16s lsp_[kOrder], quantLsp_[kOrder], residualMem_[kOrder] = {};
  Zpp16s lagMem_[8] = {40, 40, 40, 40, 40, 40, 0, 0}, gainFlag_[2] = {};
  LpAnalysis lpAnalysis_;
  PerceptualWeighting weighting_;
  ResonanceGuard guard_;
  SubframeEncoder subframes_;
  DtxEncoder dtx_;
};

}  // namespace codecs::amr
