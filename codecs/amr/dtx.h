// Discontinuous transmission, encoder (3GPP TS 26.092 to 26.094): which frames are silence, their descriptor, and what is sent.
#pragma once

#include "codecs/amr/modes.h"

namespace codecs::amr {

// What a frame is sent as, by the standard's numbers
enum TxType { kTxSpeech, kTxSidFirst, kTxSidUpdate, kTxNoData };

class DtxEncoder {
 public:
  DtxEncoder(bool on, int vadOption);

  // Before the analysis. speech: the 160 new samples, with 40 before them. True: the frame is silence.
  bool isSilence(const Zpp16s* speech);
  // speech: the 160 new samples; lsp: of the frame's end, unquantised
  void remember(const Zpp16s* speech, const Zpp16s* lsp);
  // Of a silent frame. gainMem is set where the descriptor is new.
  const Zpp16s* describe(Zpp16s* gainMem);
  // The open-loop lags, and the measurements for the next frame's detection. weighted: 160 with 143 before them
  void searchOpenLoopPitch(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* gainFlag, Zpp16s* lags, ZppSpeechRate rate);
  TxType schedule(bool silence);

  const Zpp16s* descriptor() const { return sid_; }
  bool on() const { return on_; }
  int vadOption() const { return secondOption_ ? 2 : 1; }

 private:
  bool on_;
  bool secondOption_;
  Zpp16s newSid_ = 0;
  Zpp16s dtxMem_[2] = {7, 32767};
  Zpp16s lspHist_[8 * kOrder], logEnergyHist_[8] = {};
  Zpp16s sid_[5] = {};
  Zpp16s vadMem_[5] = {0, 13106, 0, 0, 0};
  Zpp16s ltpFlag_ = 0;
  Zpp8u vad_[188];  // the state of either detector
  Zpp16s framesToSid_ = 3;
  TxType last_ = kTxSpeech;
};

}  // namespace codecs::amr
