#include "codecs/amr/encoder.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "codecs/fixed_point.h"

namespace codecs::amr {
namespace {

// 80 Hz, and half the level
constexpr Zpp16s kHighPass[6] = {1899, -3798, 1899, 4096, 7807, -3733};

// A frame of these samples puts the encoder into its start state (TS 26.073 clause 8).
bool isHomingFrame(const Zpp16s* pcm) {
  return std::all_of(pcm, pcm + kFrame, [](Zpp16s sample) { return sample == 8; });
}

}  // namespace

Encoder::Encoder(const Options& options)
    : mode_(modeOf(options.bitRate)), dtx_(options.dtx, options.variant + 1) {
  require(zppsHighPassFilterInit_G729(kHighPass, highPass_));
  std::memcpy(lsp_, lspInit, sizeof lsp_);
  std::memcpy(quantLsp_, lspInit, sizeof quantLsp_);
}

void Encoder::reset() {
  const Options options = {kBitRates[mode_], dtx_.on(), dtx_.vadOption() - 1};
  std::construct_at(this, options);
}

int Encoder::encode(const Zpp16s* pcm, Zpp8u* payload) {
  Zpp16s parameters[kMaxParameters], a[kSubframes * kSet], quantA[kSubframes * kSet], lsp[2 * kOrder], lags[2];
  const Zpp16s* const frame = speech_ + kFirst;
  const Zpp16s* const lspOfEnd = mode_ == k1220 ? lsp + kOrder : lsp;
  ParameterWriter writer(parameters);

  takeSamples(pcm);
  const bool silence = dtx_.isSilence(speech_ + kFrame);
  analyseSpectrum(a, lsp);
  if (!silence) quantiseSpectrum(lsp, quantA, writer.take(mode_ == k1220 ? 5 : 3));
  std::memcpy(lsp_, lspOfEnd, sizeof lsp_);
  dtx_.remember(speech_ + kFrame, lsp_);
  if (silence) {
    dtx_.describe(subframes_.gainMem());
    subframes_.rest();
    std::memset(residualMem_, 0, sizeof residualMem_);
    std::memcpy(quantLsp_, lsp_, sizeof quantLsp_);
  } else {
    guard_.examine(lsp_);
  }

  Zpp16s* const weighted = weighted_ + kPastWeighted;
  const Weighting filters[kSubframes] = {Weighting(a, mode_), Weighting(a + kSet, mode_), Weighting(a + 2 * kSet, mode_),
                                         Weighting(a + 3 * kSet, mode_)};
  weighting_.weigh(frame, filters, weighted);
  dtx_.searchOpenLoopPitch(weighted, lagMem_, gainFlag_, lags, rateOf(mode_));
  if (!silence) subframes_.encode({mode_, frame, filters, quantA, lags, gainFlag_}, guard_, lagMem_, writer);

  std::memmove(speech_, speech_ + kFrame, kFrame * sizeof speech_[0]);
  std::memmove(weighted_, weighted_ + kFrame, kPastWeighted * sizeof weighted_[0]);

  int octets = 0;
  const TxType type = dtx_.schedule(silence);
  if (type == kTxSpeech) {
    FrameBits bits;
    bits.put(parameters, frameLayouts[mode_]);
    octets = packSpeech(bits, mode_, payload);
  } else if (type != kTxNoData) {
    octets = packSid(dtx_.descriptor(), type == kTxSidUpdate, mode_, payload);
  }
  if (isHomingFrame(pcm)) reset();
  return octets;
}

int Encoder::unsent(Zpp8u* payload) const { return packSid(dtx_.descriptor(), true, mode_, payload); }

void Encoder::takeSamples(const Zpp16s* pcm) {
  Zpp16s* const fresh = speech_ + kFrame;
  for (int n = 0; n < kFrame; ++n) fresh[n] = static_cast<Zpp16s>(pcm[n] & ~7);  // 13 bits
  require(zppsHighPassFilter_G729_16s_ISfs(fresh, kFrame, 12, highPass_));
}

// a: the filters of the four subframes; lsp: of the frame's end, at 12.2 kbit/s of its middle and its end
void Encoder::analyseSpectrum(Zpp16s* a, Zpp16s* lsp) {
  Zpp16s middle[kSet], end[kSet];
  if (mode_ == k1220) {
    lpAnalysis_.analyse(speech_ + kLookAhead, window160_80, middle);
    lpAnalysis_.analyse(speech_ + kLookAhead, window232_8, end);
    require(zppsLPCToLSP_GSMAMR_16s(middle, lsp_, lsp));
    require(zppsLPCToLSP_GSMAMR_16s(end, lsp, lsp + kOrder));
  } else {
    lpAnalysis_.analyse(speech_ + 2 * kLookAhead, window200_40, end);
    require(zppsLPCToLSP_GSMAMR_16s(end, lsp_, lsp));
  }
  require(zppsInterpolateLSP_GSMAMR_16s(lsp_, lsp, a, rateOf(mode_)));
  // Where the analysis gave a filter, it stands.
  if (mode_ == k1220) std::memcpy(a + kSet, middle, sizeof middle);
  std::memcpy(a + 3 * kSet, end, sizeof end);
}

void Encoder::quantiseSpectrum(const Zpp16s* lsp, Zpp16s* quantA, Zpp16s* parameters) {
  Zpp16s quantLsp[2 * kOrder];
  require(zppsLSPQuant_GSMAMR_16s(lsp, residualMem_, quantLsp, parameters, rateOf(mode_)));
  require(zppsInterpolateLSP_GSMAMR_16s(quantLsp_, quantLsp, quantA, rateOf(mode_)));
  std::memcpy(quantLsp_, mode_ == k1220 ? quantLsp + kOrder : quantLsp, sizeof quantLsp_);
}

}  // namespace codecs::amr
