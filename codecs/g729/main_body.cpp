#include "codecs/g729/main_body.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::g729 {
namespace {

// log((1 + c) / (1 - c)) of a reflection coefficient, Q11, in four straight lines
Zpp16s logAreaRatio(Zpp16s reflection) {
  const auto c = static_cast<Zpp16s>(absSat16(reflection) >> 4);  // Q11
  const auto line = [c](Zpp16s slope, Zpp32s offset) {
    return low16(subSat32(mulDbl(static_cast<Zpp16s>(c >> 1), slope), offset) >> 11);
  };
  const Zpp16s ratio = c <= 1299   ? c
                       : c <= 1815 ? line(4567, 3271557)
                       : c <= 1944 ? line(11776, 16357786)
                                   : line(27443, 46808433);
  return reflection < 0 ? static_cast<Zpp16s>(-ratio) : ratio;
}

}  // namespace

auto WeightingFactors::next(const std::array<Zpp16s, 2>& reflection, const std::array<Lsf, kSubframes>& lsf)
    -> std::array<Factors, kSubframes> {
  const std::array<Zpp16s, 2> ratios = {logAreaRatio(reflection[0]), logAreaRatio(reflection[1])};
  const auto mean = [&](int i) { return static_cast<Zpp16s>((logAreaRatios_[i] + ratios[i]) >> 1); };
  const Factors first = choose(mean(0), mean(1), lsf[0]);
  logAreaRatios_ = ratios;
  return {first, choose(ratios[0], ratios[1], lsf[1])};
}

WeightingFactors::Factors WeightingFactors::choose(Zpp16s logAreaRatio0, Zpp16s logAreaRatio1, const Lsf& lsf) {
  if (flat_) {
    flat_ = logAreaRatio0 >= -3562 || logAreaRatio1 <= 1336;  // -1.74, 0.65
  } else {
    flat_ = logAreaRatio0 > -3116 || logAreaRatio1 < 890;  // -1.52, 0.43
  }
  if (flat_) return {30802, 19661};  // 0.94, 0.6
  Zpp16s closest = 32767;            // distance of two LSFs, over pi
  for (int i = 1; i < kOrder; ++i) closest = std::min(closest, subSat16(sat16(2 * lsf[i]), sat16(2 * lsf[i - 1])));
  const Zpp16s narrow = subSat16(1024, mulQ15(19302, closest));
  return {32113, std::clamp<Zpp16s>(sat16(shlSat32(narrow, 5)), 13107, 22938)};  // 0.98, 0.4..0.7
}

Lsp MainBodyEncoder::toLsp(const Filter& a, const Lsp& previous) {
  Lsp lsp;
  require(zppsLPCToLSP_G729_16s(a.data(), previous.data(), lsp.data()));
  return lsp;
}

// The weighting filters and the weighted speech
void MainBodyEncoder::analysed(const Filter& a, const std::array<Zpp16s, 2>& reflection, const Lsp& previous, const Lsp& lsp) {
  const Lsp mean = meanOf(lsp, previous);
  std::array<Lsf, kSubframes> lsf;
  require(zppsLSPToLSF_Norm_G729_16s(mean.data(), lsf[0].data()));
  require(zppsLSPToLSF_Norm_G729_16s(lsp.data(), lsf[1].data()));
  const auto factors = weightingFactors_.next(reflection, lsf);
  const SubframeFilters filters = {toFilter(mean), a};
  for (int s = 0; s < kSubframes; ++s) {
    numerators_[s] = weight(filters[s], factors[s].gamma1);
    denominators_[s] = weight(filters[s], factors[s].gamma2);
    Subframe residual;
    require(zppsResidualFilter_G729_16s(numerators_[s].data(), speech(s), residual.data(), kSubframeSize));
    Zpp16s* const wsp = weightedSpeech(s);
    synthesise(denominators_[s], residual.data(), wsp, wsp - kOrder);
  }
}

Zpp16s MainBodyEncoder::openLoopDelay() const {
  Zpp16s delay;
  require(zppsOpenLoopPitchSearch_G729_16s(weightedSpeech(0), &delay));
  return delay;
}

// W(z) of the difference between speech and synthesis
Subframe MainBodyEncoder::weightError(int subframe, const Zpp16s* error) const {
  Subframe residual, weighted;
  require(zppsResidualFilter_G729_16s(numerators_[subframe].data(), error, residual.data(), kSubframeSize));
  synthesise(denominators_[subframe], residual.data(), weighted.data(), weightedErrorMemory_.data());
  return weighted;
}

SearchTarget MainBodyEncoder::searchTarget(int subframe) {
  SearchTarget search;
  Subframe impulse{}, response;
  std::ranges::copy(numerators_[subframe], impulse.begin());
  synthesise(synthesis_[subframe], impulse.data(), response.data(), nullptr);
  synthesise(denominators_[subframe], response.data(), search.impulse.data(), nullptr);

  // The LP residual, synthesised after the error of the past, is what the excitation should be compared with.
  std::array<Zpp16s, kOrder + kSubframeSize> error;
  std::ranges::copy(errorMemory_, error.begin());
  synthesise(synthesis_[subframe], excitation(subframe), error.data() + kOrder, errorMemory_.data());
  search.target = weightError(subframe, error.data() + kOrder);
  return search;
}

PitchDelay MainBodyEncoder::searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search) {
  PitchDelay delay;
  require(zppsAdaptiveCodebookSearch_G729_16s(centre, search.target.data(), search.impulse.data(),
                                              excitation(subframe) - kPastExcitation, subframe, delay.data()));
  return delay;
}

Zpp16s MainBodyEncoder::filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered) {
  Zpp16s gain;
  require(zppsAdaptiveCodebookGain_G729_16s(search.target.data(), search.impulse.data(), excitation(subframe), filtered.data(),
                                            &gain));
  return gain;
}

std::array<Zpp16s, 2> MainBodyEncoder::searchFixedCodebook(int subframe, const Subframe& correlation, CorrelationMatrix& matrix,
                                                           Subframe& code) {
  std::array<Zpp16s, 2> codeword;
  require(zppsFixedCodebookSearch_G729_32s16s(correlation.data(), matrix.data(), code.data(), codeword.data(), &searchBudget_,
                                              static_cast<Zpp16s>(subframe)));
  return codeword;
}

// What the decoder will synthesise
Subframe MainBodyEncoder::synthesiseLocally(int subframe) {
  Subframe synthesis;
  synthesise(synthesis_[subframe], excitation(subframe), synthesis.data(), synthesisMemory_.data());
  synthesisMemory_ = lastOf(synthesis);
  return synthesis;
}

void MainBodyEncoder::coded(int subframe, const SearchTarget& search, const Result& result) {
  Subframe error = synthesiseLocally(subframe);
  require(zppsSub_16s(error.data(), speech(subframe), error.data(), kSubframeSize));
  errorMemory_ = lastOf(error);
  weightedErrorMemory_ = remainder(search, result);
}

void MainBodyEncoder::passedSilence(const SubframeFilters& filters) {
  synthesis_ = filters;
  for (int s = 0; s < kSubframes; ++s) {
    const Subframe synthesis = synthesiseLocally(s);
    std::array<Zpp16s, kOrder + kSubframeSize> error;
    std::ranges::copy(errorMemory_, error.begin());
    require(zppsSub_16s(synthesis.data(), speech(s), error.data() + kOrder, kSubframeSize));
    errorMemory_ = lastOf(error);
    weightedErrorMemory_ = lastOf(weightError(s, error.data() + kOrder));
  }
}

}  // namespace codecs::g729
