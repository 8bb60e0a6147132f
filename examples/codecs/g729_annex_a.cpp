#include "g729_annex_a.h"

#include "codec.h"
#include "fixed_point.h"

namespace codecs::g729 {

Lsp AnnexAEncoder::toLsp(const Filter& a, const Lsp& previous) const {
  Lsp lsp;
  require(zppsLPCToLSP_G729A_16s(a.data(), previous.data(), lsp.data()));
  return lsp;
}

void AnnexAEncoder::quantised(const SubframeFilters& filters) {
  for (int s = 0; s < kSubframes; ++s) {
    synthesis_[s] = weighted(filters[s], 24576);
    weightSpeech(s, excitation(s));
  }
}

// For the open-loop search: with a low-pass tilt of 0.7 (clause A.3.3)
void AnnexAEncoder::weightSpeech(int subframe, const Zpp16s* residual) {
  const Filter& synthesis = synthesis_[subframe];
  Filter tilted;
  Zpp16s memory = 0;
  require(zppsPreemphasize_G729A_16s(synthesis.data(), tilted.data(), kOrder + 1, 22938, &memory));
  Zpp16s* const wsp = weightedSpeech(subframe);
  synthesise(tilted, residual, wsp, wsp - kOrder);
}

Zpp16s AnnexAEncoder::openLoopDelay() const {
  Zpp16s delay;
  require(zppsOpenLoopPitchSearch_G729A_16s(weightedSpeech(0), &delay));
  return delay;
}

FrameEncoder::Goal AnnexAEncoder::goal(int subframe) {
  const Filter& synthesis = synthesis_[subframe];
  Goal goal;
  require(zppsSynthesisFilterZeroStateResponse_NR_16s(synthesis.data(), goal.impulse.data(), kSubframeSize, 12));
  synthesise(synthesis, excitation(subframe), goal.target.data(), errorMemory_.data());
  return goal;
}

PitchDelay AnnexAEncoder::searchAdaptiveCodebook(int subframe, Zpp16s around, const Goal& goal) {
  PitchDelay delay;
  require(zppsAdaptiveCodebookSearch_G729A_16s(around, goal.target.data(), goal.impulse.data(),
                                               excitation(subframe) - kPastExcitation, subframe, delay.data()));
  return delay;
}

Zpp16s AnnexAEncoder::filterAdaptiveVector(int subframe, const Goal& goal, Subframe& filtered) {
  Zpp16s gain;
  require(zppsAdaptiveCodebookGain_G729A_16s(goal.target.data(), synthesis_[subframe].data(), excitation(subframe),
                                             filtered.data(), &gain));
  return gain;
}

std::array<Zpp16s, 2> AnnexAEncoder::searchFixedCodebook(int, const Subframe& correlation, Zpp32s* matrix, Subframe& code) {
  std::array<Zpp16s, 2> codeword;
  require(zppsFixedCodebookSearch_G729A_32s16s(correlation.data(), matrix, code.data(), codeword.data()));
  return codeword;
}

void AnnexAEncoder::coded(int, const Goal& goal, const Result& result) { errorMemory_ = weightedError(goal, result); }

void AnnexAEncoder::passedSilence(const SubframeFilters& filters) {
  for (int s = 0; s < kSubframes; ++s) {
    synthesis_[s] = weighted(filters[s], 24576);
    Subframe residual;
    require(zppsResidualFilter_G729_16s(filters[s].data(), speech(s), residual.data(), kSubframeSize));
    weightSpeech(s, residual.data());
    require(zppsSub_16s_I(excitation(s), residual.data(), kSubframeSize));
    Subframe error;
    synthesise(synthesis_[s], residual.data(), error.data(), errorMemory_.data());
    std::copy(error.end() - kOrder, error.end(), errorMemory_.begin());
  }
}

}  // namespace codecs::g729
