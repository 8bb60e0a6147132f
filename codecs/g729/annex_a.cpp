#include "codecs/g729/annex_a.h"

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::g729 {
namespace {

constexpr Zpp16s kGamma = 24576;  // 0.75
constexpr Zpp16s kTilt = 22938;   // 0.7

}  // namespace

Lsp AnnexAEncoder::toLsp(const Filter& a, const Lsp& previous) {
  Lsp lsp;
  require(zppsLPCToLSP_G729A_16s(a.data(), previous.data(), lsp.data()));
  return lsp;
}

Frame AnnexAEncoder::encode(const Zpp16s* samples) {
  const Analysis analysis = analyse(samples);
  lsp_ = analysis.lsp;
  const bool voice = detectVoice(analysis);
  if (dtx_) dtx_->accept(analysis.correlations, voice);

  Frame frame;
  if (voice) {
    frame = {.type = FrameType::speech, .speech = encodeSpeech()};
  } else {
    const auto [sid, filters] = describeSilence();
    if (sid) frame = {.type = FrameType::sid, .sid = *sid};
    passSilence(filters);
  }
  shift();
  return frame;
}

SpeechParameters AnnexAEncoder::encodeSpeech() {
  SpeechParameters parameters;
  Lsp quantisedLsp;
  require(zppsLSPQuant_G729_16s(lsp_.data(), maMemory_.data(), quantisedLsp.data(), parameters.lsp.data()));
  const SubframeFilters filters = filters_.moveTo(quantisedLsp);
  for (int s = 0; s < kSubframes; ++s) {
    require(zppsResidualFilter_G729_16s(filters[s].data(), speech(s), excitation(s), kSubframeSize));
    synthesis_[s] = weight(filters[s], kGamma);
    weightSpeech(s, excitation(s));
  }
  Zpp16s delay;
  require(zppsOpenLoopPitchSearch_G729A_16s(weightedSpeech(0), &delay));
  encodeSubframes(delay, parameters);
  return parameters;
}

// For the open-loop search, with a low-pass tilt (clause A.3.3)
void AnnexAEncoder::weightSpeech(int subframe, const Zpp16s* residual) {
  const Filter& synthesis = synthesis_[subframe];
  Filter tilted;
  Zpp16s memory = 0;
  require(zppsPreemphasize_G729A_16s(synthesis.data(), tilted.data(), kOrder + 1, kTilt, &memory));
  Zpp16s* const wsp = weightedSpeech(subframe);
  synthesise(tilted, residual, wsp, wsp - kOrder);
}

SearchTarget AnnexAEncoder::searchTarget(int subframe) {
  const Filter& synthesis = synthesis_[subframe];
  SearchTarget search;
  require(zppsSynthesisFilterZeroStateResponse_NR_16s(synthesis.data(), search.impulse.data(), kSubframeSize, 12));
  synthesise(synthesis, excitation(subframe), search.target.data(), weightedErrorMemory_.data());
  return search;
}

PitchDelay AnnexAEncoder::searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search) {
  PitchDelay delay;
  require(zppsAdaptiveCodebookSearch_G729A_16s(centre, search.target.data(), search.impulse.data(),
                                               excitation(subframe) - kPastExcitation, subframe, delay.data()));
  return delay;
}

Zpp16s AnnexAEncoder::filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered) {
  Zpp16s gain;
  require(zppsAdaptiveCodebookGain_G729A_16s(search.target.data(), synthesis_[subframe].data(), excitation(subframe),
                                             filtered.data(), &gain));
  return gain;
}

void AnnexAEncoder::passSilence(const SubframeFilters& filters) {
  for (int s = 0; s < kSubframes; ++s) {
    synthesis_[s] = weight(filters[s], kGamma);
    Subframe residual;
    require(zppsResidualFilter_G729_16s(filters[s].data(), speech(s), residual.data(), kSubframeSize));
    weightSpeech(s, residual.data());
    require(zppsSub_16s_I(excitation(s), residual.data(), kSubframeSize));
    Subframe error;
    synthesise(synthesis_[s], residual.data(), error.data(), weightedErrorMemory_.data());
    weightedErrorMemory_ = lastOf(error);
  }
}

}  // namespace codecs::g729
