#include "codecs/amr/dtx.h"

#include <cstring>

#include "codecs/amr/tables.h"
#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::amr {

DtxEncoder::DtxEncoder(bool on, int vadOption) : on_(on), secondOption_(vadOption == 2) {
  for (int k = 0; k < 8; ++k) std::memcpy(lspHist_ + kOrder * k, lspInit, sizeof lspInit);
  std::memset(vad_, 0, sizeof vad_);
  require(secondOption_ ? zppsVAD2Init_GSMAMR_16s(vad_) : zppsVAD1Init_GSMAMR_16s(vad_));
}

bool DtxEncoder::isSilence(const Zpp16s* speech) {
  if (!on_) return false;
  Zpp16s active, silence;
  require(secondOption_ ? zppsVAD2_GSMAMR_16s(speech, ltpFlag_, &active, vad_)
                        : zppsVAD1_GSMAMR_16s(speech, vadMem_, &active, vad_));
  require(zppsDTXDecision_GSMAMR_16s(active, dtxMem_, &silence, &newSid_));
  return silence != 0;
}

void DtxEncoder::remember(const Zpp16s* speech, const Zpp16s* lsp) {
  require(zppsDTXHistory_GSMAMR_16s(speech, lsp, lspHist_, logEnergyHist_));
}

const Zpp16s* DtxEncoder::describe(Zpp16s* gainMem) {
  if (newSid_) require(zppsSIDQuant_GSMAMR_16s(lspHist_, logEnergyHist_, gainMem, sid_));
  return sid_;
}

void DtxEncoder::searchOpenLoopPitch(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* gainFlag, Zpp16s* lags,
                                     ZppSpeechRate rate) {
  Zpp32s correlation[2];
  if (!on_)
    require(zppsOpenLoopPitchSearchNonDTX_GSMAMR_16s(weighted, lagMem, gainFlag, lags, rate));
  else if (secondOption_)
    require(zppsOpenLoopPitchSearchDTXVAD2_GSMAMR_16s32s(weighted, lagMem, gainFlag, lags, correlation, &ltpFlag_, rate));
  else
    require(zppsOpenLoopPitchSearchDTXVAD1_GSMAMR_16s(weighted, lagMem, vadMem_, gainFlag, lags, rate));
}

// The first frame of silence announces it; then every eighth one, the first after three, brings a descriptor.
TxType DtxEncoder::schedule(bool silence) {
  if (!silence) {
    framesToSid_ = 8;
    return last_ = kTxSpeech;
  }
  --framesToSid_;
  if (last_ == kTxSpeech) {
    framesToSid_ = 3;
    return last_ = kTxSidFirst;
  }
  if (framesToSid_ > 0) return last_ = kTxNoData;
  framesToSid_ = 8;
  return last_ = kTxSidUpdate;
}

}  // namespace codecs::amr
