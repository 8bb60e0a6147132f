// The encoder of Annex A: the weighted synthesis filter is 1/A(z/0.75) of the quantised filter.
#include "codecs/codec.h"
#include "codecs/g729/single_precision/encoder.h"

namespace codecs::g729f {

Lsp AnnexAEncoder::toLsp(const Filter& a, const Lsp& previous) {
  Lsp lsp;
  require(zppsLPCToLSP_G729A_32f(a.data(), previous.data(), lsp.data()));
  return lsp;
}

// The weighted speech has a low-pass tilt, for the open-loop search (clause A.3.3).
void AnnexAEncoder::quantised(const SubframeFilters& filters) {
  for (int s = 0; s < kSubframes; ++s) {
    synthesis_[s] = weight(filters[s], 0.75f);
    Filter tilted = synthesis_[s];
    for (int i = 1; i <= kOrder; ++i) tilted[i] -= 0.7f * synthesis_[s][i - 1];
    synthesise(tilted, excitation(s), weightedSpeech(s), weightedSpeech(s));
  }
}

int AnnexAEncoder::openLoopDelay() const {
  Zpp16s delay;
  require(zppsOpenLoopPitchSearch_G729A_32f(weightedSpeech(0), &delay));
  return delay;
}

SearchTarget AnnexAEncoder::searchTarget(int subframe) {
  SearchTarget search;
  respond({1}, synthesis_[subframe], search.impulse);
  synthesise(synthesis_[subframe], excitation(subframe), search.target.data(), weightedErrorMemory_.end());
  return search;
}

// The delay where the excitation of the past correlates most with the backward-filtered target (clause A.3.7)
PitchDelay AnnexAEncoder::searchAdaptiveCodebook(int subframe, int centre, const SearchTarget& search) {
  Zpp32f* const vector = excitation(subframe);
  const Subframe correlation = backwardFilter(search.target, search.impulse);
  const auto [least, most] = delaysAround(centre, subframe);
  PitchDelay delay = {static_cast<Zpp16s>(least), 0};
  Zpp32f largest = product(correlation.data(), vector - least);
  for (int t = least + 1; t <= most; ++t) {
    const Zpp32f value = product(correlation.data(), vector - t);
    if (value <= largest) continue;
    largest = value;
    delay[0] = static_cast<Zpp16s>(t);
  }
  require(zppsDecodeAdaptiveVector_G729_32f_I(delay.data(), vector - kPastExcitation));
  if (subframe == 0 && delay[0] > kLongestFractional) return delay;

  Subframe best;
  std::copy_n(vector, kSubframeSize, best.begin());
  largest = product(correlation.data(), vector);
  for (const Zpp16s thirds : {Zpp16s{-1}, Zpp16s{1}}) {
    const PitchDelay candidate = {delay[0], thirds};
    require(zppsDecodeAdaptiveVector_G729_32f_I(candidate.data(), vector - kPastExcitation));
    const Zpp32f value = product(correlation.data(), vector);
    if (value <= largest) continue;
    largest = value;
    delay[1] = thirds;
    std::copy_n(vector, kSubframeSize, best.begin());
  }
  std::ranges::copy(best, vector);
  return delay;
}

Subframe AnnexAEncoder::filterAdaptiveVector(int subframe, const SearchTarget&) {
  Subframe filtered;
  synthesise(synthesis_[subframe], excitation(subframe), filtered.data(), nullptr);
  return filtered;
}

std::array<Zpp16s, 2> AnnexAEncoder::searchFixedCodebook(int, const Subframe& correlation, Zpp32f* matrix, Subframe& code) {
  std::array<Zpp16s, 2> codeword;
  require(zppsFixedCodebookSearch_G729A_32f(correlation.data(), matrix, code.data(), codeword.data()));
  return codeword;
}

}  // namespace codecs::g729f
