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

auto WeightingFactors::next(const Reflection& reflection, const std::array<Lsf, kSubframes>& lsf)
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

MainBodyEncoder::MainBodyEncoder(bool discontinuous, bool everyRate) : FrameEncoder(discontinuous) {
  if (discontinuous && everyRate) music_.emplace();
}

Frame MainBodyEncoder::encode(const Zpp16s* samples, Rate rate) {
  rate_ = rate;
  const Analysis analysis = analyse(samples);
  const bool voice = isVoice(analysis);
  backward_ = false;

  Frame frame;
  if (voice) {
    const Quantised quantised = quantise(analysis.lsp);
    chooseFilters(analysis, quantised);
    weightSpeech(analysis);
    frame = {.type = FrameType::speech, .speech = encodeSpeech(quantised)};
  } else {
    mode_.pass();
    synthesis_.shift();
    weightSpeech(analysis);
    if (const auto sid = encodeSilence()) frame = {.type = FrameType::sid, .sid = *sid};
  }
  afterBackward_ = backward_;
  lsp_ = analysis.lsp;
  shift();
  return frame;
}

bool MainBodyEncoder::isVoice(const Analysis& analysis) {
  if (!dtx_) return true;
  bool voice = detectVoice(analysis);
  const VoiceActivityDetector& detector = dtx_->detector();
  if (music_) {
    voice = music_->take({.energy = analysis.correlations.windowed[0],
                          .exponent = analysis.correlations.exponent,
                          .reflection = levinsonDurbin_.reflection(),
                          .voice = voice,
                          .voiceBefore = detector.accepted(),
                          .level = detector.energy(),
                          .frame = detector.frame(),
                          .afterBackward = afterBackward_,
                          .rate = rate_});
  }
  dtx_->accept(analysis.correlations, voice);
  return voice;
}

// The predictor's memory moves once the frame is known to use the result.
MainBodyEncoder::Quantised MainBodyEncoder::quantise(const Lsp& lsp) {
  Quantised q;
  require(zppsLSPQuant_G729E_16s(lsp.data(), maMemory_.data(), q.codeVector.data(), q.lsp.data(), q.code.data()));
  const Filter last = toFilter(q.lsp);
  q.filters = {afterBackward_ ? last : toFilter(meanOf(q.lsp, filters_.last())), last};
  return q;
}

// The filters that the decoder will use
void MainBodyEncoder::chooseFilters(const Analysis& analysis, const Quantised& quantised) {
  if (rate_ == Rate::kbit12) {
    synthesis_.observe();
    const BackwardFilter newest = synthesis_.filter();
    const AnySubframeFilters interpolated = interpolation_.towards(newest);
    backward_ = mode_.take({.speech = speech(0),
                            .newest = newest,
                            .backward = interpolated,
                            .forward = quantised.filters,
                            .previousLsp = lsp_,
                            .lsp = analysis.lsp,
                            .afterBackward = afterBackward_});
    if (backward_) {
      synthesisFilters_ = interpolated;
      interpolation_.useBackward(interpolated);
    }
  } else {
    mode_.pass();
  }
  synthesis_.shift();
  if (backward_) return;
  synthesisFilters_ = {quantised.filters[0], quantised.filters[1]};
  interpolation_.useForward(quantised.filters);
  filters_.set(quantised.lsp);
  maMemory_.push(quantised.codeVector);
}

// The weighting filters and the weighted speech
void MainBodyEncoder::weightSpeech(const Analysis& analysis) {
  const Lsp mean = afterBackward_ ? analysis.lsp : meanOf(analysis.lsp, lsp_);
  AnySubframeFilters filters = {toFilter(mean), analysis.a};
  if (mode_.dominant()) filters = synthesisFilters_;
  std::array<WeightingFactors::Factors, kSubframes> factors;
  if (backward_) {
    factors.fill({mode_.dominant() ? Zpp16s{32112} : Zpp16s{29491}, 13107});  // 0.98 or 0.9, 0.4
  } else {
    std::array<Lsf, kSubframes> lsf;
    require(zppsLSPToLSF_Norm_G729_16s(mean.data(), lsf[0].data()));
    require(zppsLSPToLSF_Norm_G729_16s(analysis.lsp.data(), lsf[1].data()));
    factors = weightingFactors_.next(levinsonDurbin_.reflection(), lsf);
  }
  for (int s = 0; s < kSubframes; ++s) {
    numerators_[s] = weight(filters[s], factors[s].gamma1);
    denominators_[s] = weight(filters[s], factors[s].gamma2);
    Subframe rest;
    residual(numerators_[s], speech(s), rest.data());
    Zpp16s* const wsp = weightedSpeech(s);
    synthesise(denominators_[s], rest.data(), wsp, wsp);
  }
}

SpeechParameters MainBodyEncoder::encodeSpeech(const Quantised& quantised) {
  SpeechParameters parameters{.rate = rate_, .backward = backward_, .lsp = quantised.code};
  for (int s = 0; s < kSubframes; ++s) residual(synthesisFilters_[s], speech(s), excitation(s));
  Zpp16s delay;
  require(zppsOpenLoopPitchSearch_G729_16s(weightedSpeech(0), &delay));
  if (music_) music_->takeDelay(delay);
  encodeSubframes(delay, parameters);
  return parameters;
}

// What the decoder will play in silence, weighted like speech
std::optional<SidParameters> MainBodyEncoder::encodeSilence() {
  const auto [sid, filters] = describeSilence();
  synthesisFilters_ = {filters[0], filters[1]};
  interpolation_.useForward(filters);
  for (int s = 0; s < kSubframes; ++s) {
    if (music_) music_->takePitchGain(8192);  // 0.5
    synthesiseLocally(s);
    std::array<Zpp16s, kBackwardOrder + kSubframeSize> error;
    std::ranges::copy(errorMemory_, error.begin());
    require(zppsSub_16s(synthesis_.synthesis(s), speech(s), error.data() + kBackwardOrder, kSubframeSize));
    errorMemory_ = lastOf<kBackwardOrder>(error);
    weightedErrorMemory_ = lastOf<kBackwardOrder>(weightError(s, error.data() + kBackwardOrder));
  }
  return sid;
}

// W(z) of the difference between speech and synthesis
Subframe MainBodyEncoder::weightError(int subframe, const Zpp16s* error) const {
  Subframe rest, weighted;
  residual(numerators_[subframe], error, rest.data());
  synthesise(denominators_[subframe], rest.data(), weighted.data(), weightedErrorMemory_.end());
  return weighted;
}

SearchTarget MainBodyEncoder::searchTarget(int subframe) {
  const AnyFilter& numerator = numerators_[subframe];
  SearchTarget search;
  Subframe impulse{}, response;
  std::copy_n(numerator.a.begin(), numerator.order + 1, impulse.begin());
  synthesise(synthesisFilters_[subframe], impulse.data(), response.data(), nullptr);
  synthesise(denominators_[subframe], response.data(), search.impulse.data(), nullptr);

  // The LP residual, synthesised after the error of the past, is what the excitation should be compared with.
  std::array<Zpp16s, kBackwardOrder + kSubframeSize> error;
  std::ranges::copy(errorMemory_, error.begin());
  synthesise(synthesisFilters_[subframe], excitation(subframe), error.data() + kBackwardOrder, errorMemory_.end());
  search.target = weightError(subframe, error.data() + kBackwardOrder);
  return search;
}

PitchDelay MainBodyEncoder::searchAdaptiveCodebook(int subframe, Zpp16s centre, const SearchTarget& search) {
  std::copy_n(excitation(subframe), kSubframeSize, residual_.begin());
  PitchDelay delay;
  const auto find = rate_ == Rate::kbit6 ? zppsAdaptiveCodebookSearch_G729D_16s : zppsAdaptiveCodebookSearch_G729_16s;
  require(find(centre, search.target.data(), search.impulse.data(), excitation(subframe) - kPastExcitation, subframe,
               delay.data()));
  return delay;
}

Zpp16s MainBodyEncoder::filterAdaptiveVector(int subframe, const SearchTarget& search, Subframe& filtered) {
  Zpp16s gain;
  require(zppsAdaptiveCodebookGain_G729_16s(search.target.data(), search.impulse.data(), excitation(subframe), filtered.data(),
                                            &gain));
  return gain;
}

FixedVector MainBodyEncoder::searchFixedCodebook(int subframe, const FixedTarget& target,
                                                 SpeechParameters::Subframe& parameters) {
  FixedVector vector;
  if (rate_ == Rate::kbit6) {
    Subframe correlation;
    require(zppsCrossCorr_NormM_16s(target.rest.data(), target.impulse.data(), kSubframeSize, correlation.data()));
    require(zppsFixedCodebookSearch_G729D_16s(correlation.data(), target.impulse.data(), vector.code.data(),
                                              vector.filtered.data(), &parameters.signs, &parameters.positions));
    return vector;
  }
  if (rate_ == Rate::kbit12) {
    // What the adaptive codebook leaves of the LP residual
    Subframe rest;
    for (int n = 0; n < kSubframeSize; ++n)
      rest[n] = subSat16(residual_[n], high16(shlSat32(mulDbl(excitation(subframe)[n], target.pitchGain), 1)));
    require(zppsFixedCodebookSearch_G729E_16s(backward_, target.rest.data(), rest.data(), target.impulse.data(),
                                              vector.code.data(), vector.filtered.data(), parameters.pulses.data()));
    return vector;
  }
  return searchFourPulses(target, parameters, [&](const Zpp16s* correlation, Zpp16s* matrix, Zpp16s* code, Zpp16s* codeword) {
    return zppsFixedCodebookSearch_G729_16s(correlation, matrix, code, codeword, &searchBudget_, static_cast<Zpp16s>(subframe));
  });
}

// What the decoder will synthesise
void MainBodyEncoder::synthesiseLocally(int subframe) {
  Zpp16s* const output = synthesis_.synthesis(subframe);
  synthesise(synthesisFilters_[subframe], excitation(subframe), output, output);
}

void MainBodyEncoder::coded(int subframe, const SearchTarget& search, const Result& result) {
  if (music_) music_->takePitchGain(result.pitchGain);
  synthesiseLocally(subframe);
  Subframe error;
  require(zppsSub_16s(synthesis_.synthesis(subframe), speech(subframe), error.data(), kSubframeSize));
  errorMemory_ = lastOf<kBackwardOrder>(error);
  weightedErrorMemory_ = remainder<kBackwardOrder>(search, result);
}

}  // namespace codecs::g729
