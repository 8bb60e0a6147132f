// The encoder of the main body: the error is weighted by W(z) = A(z/gamma1) / A(z/gamma2) of the unquantised filter.
#include <cmath>

#include "codecs/codec.h"
#include "codecs/g729/single_precision/encoder.h"
#include "codecs/g729/single_precision/functions.h"
#include "codecs/g729/single_precision/tables.h"

namespace codecs::g729f {
namespace {

Zpp32f logAreaRatio(Zpp32f reflection) {
  return static_cast<Zpp32f>(log10Of((1.0 + static_cast<double>(reflection)) / (1.0 - static_cast<double>(reflection))));
}

}  // namespace

auto WeightingFactors::next(const std::array<Zpp32f, 2>& reflection, const std::array<Lsp, kSubframes>& lsp)
    -> std::array<Factors, kSubframes> {
  const std::array<Zpp32f, 2> ratios = {logAreaRatio(reflection[0]), logAreaRatio(reflection[1])};
  const auto mean = [&](int i) { return 0.5f * (logAreaRatios_[i] + ratios[i]); };
  const Factors first = choose(mean(0), mean(1), lsp[0]);
  logAreaRatios_ = ratios;
  return {first, choose(ratios[0], ratios[1], lsp[1])};
}

WeightingFactors::Factors WeightingFactors::choose(Zpp32f logAreaRatio0, Zpp32f logAreaRatio1, const Lsp& lsp) {
  if (flat_)
    flat_ = logAreaRatio0 >= -1.74f || logAreaRatio1 <= 0.65f;
  else
    flat_ = logAreaRatio0 > -1.52f || logAreaRatio1 < 0.43f;
  if (flat_) return {0.94f, 0.6f};
  Zpp32f closest = 4, last = 0;  // radians
  for (int i = 0; i < kOrder; ++i) {
    const auto frequency = static_cast<Zpp32f>(arccosine(static_cast<double>(lsp[i])));
    if (i > 0) closest = std::min(closest, frequency - last);
    last = frequency;
  }
  return {0.98f, std::clamp(1 - 6 * closest, 0.4f, 0.7f)};
}

Lsp MainBodyEncoder::toLsp(const Filter& a, const Lsp& previous) {
  Lsp lsp;
  require(zppsLPCToLSP_G729_32f(a.data(), previous.data(), lsp.data()));
  return lsp;
}

// The weighting filters and the weighted speech
void MainBodyEncoder::analysed(const Filter& a, const std::array<Zpp32f, 2>& reflection, const Lsp& previous, const Lsp& lsp) {
  const Lsp mean = meanOf(lsp, previous);
  const auto factors = weightingFactors_.next(reflection, {mean, lsp});
  const SubframeFilters filters = {toFilter(mean), a};
  for (int s = 0; s < kSubframes; ++s) {
    numerators_[s] = weight(filters[s], factors[s].gamma1);
    denominators_[s] = weight(filters[s], factors[s].gamma2);
    Subframe rest;
    residual(numerators_[s], speech(s), rest.data());
    synthesise(denominators_[s], rest.data(), weightedSpeech(s), weightedSpeech(s));
  }
}

// The largest correlation in each of three ranges, normalised; shorter delays are favoured (clause 3.4).
int MainBodyEncoder::openLoopDelay() const {
  const Zpp32f* const wsp = weightedSpeech(0);
  struct Candidate {
    int delay;
    Zpp32f correlation;
  };
  const auto search = [wsp](int longest, int shortest) {
    Candidate best = {longest, product(wsp, wsp - longest, kFrameSize)};
    for (int t = longest - 1; t >= shortest; --t) {
      const Zpp32f correlation = product(wsp, wsp - t, kFrameSize);
      if (correlation >= best.correlation) best = {t, correlation};
    }
    best.correlation /= std::sqrt(0.01f + energyOf(wsp - best.delay, kFrameSize));
    return best;
  };
  constexpr Zpp32f favour = 0.85f;
  Candidate best = search(kLongestDelay, 80);
  for (const Candidate& shorter : {search(79, 40), search(39, kShortestDelay)})
    if (best.correlation * favour < shorter.correlation) best = shorter;
  return best.delay;
}

// W(z) of the difference between speech and synthesis, memories included
SearchTarget MainBodyEncoder::searchTarget(int subframe) {
  SearchTarget search;
  respond(numerators_[subframe], synthesis_[subframe], search.impulse);
  synthesise(denominators_[subframe], search.impulse.data(), search.impulse.data(), nullptr);

  std::array<Zpp32f, kOrder + kSubframeSize> error;
  std::ranges::copy(errorMemory_, error.begin());
  synthesise(synthesis_[subframe], excitation(subframe), error.data() + kOrder, errorMemory_.end());
  Subframe rest;
  residual(numerators_[subframe], error.data() + kOrder, rest.data());
  synthesise(denominators_[subframe], rest.data(), search.target.data(), weightedErrorMemory_.end());
  return search;
}

// The delay where the normalised correlation of the target with the filtered excitation is largest, then interpolated in thirds
PitchDelay MainBodyEncoder::searchAdaptiveCodebook(int subframe, int centre, const SearchTarget& search) {
  constexpr int reach = 4, mostDelays = 10;
  Zpp32f* const vector = excitation(subframe);
  const auto [least, most] = delaysAround(centre, subframe);
  std::array<Zpp32f, mostDelays + 2 * reach> correlations;
  Subframe delayed;
  std::copy_n(vector - (least - reach), kSubframeSize, delayed.begin());
  Subframe filtered = convolve(delayed, search.impulse);
  for (int t = least - reach;; ++t) {
    correlations[t - least + reach] =
        product(search.target.data(), filtered.data()) / std::sqrt(0.01f + energyOf(filtered.data()));
    if (t == most + reach) break;
    const Zpp32f next = vector[-(t + 1)];
    for (int n = kSubframeSize - 1; n > 0; --n) filtered[n] = filtered[n - 1] + next * search.impulse[n];
    filtered[0] = next * search.impulse[0];
  }

  int best = least;
  for (int t = least + 1; t <= most; ++t)
    if (correlations[t - least + reach] >= correlations[best - least + reach]) best = t;
  PitchDelay delay = {static_cast<Zpp16s>(best), 0};
  if (subframe == 1 || best <= kLongestFractional) {
    const Zpp32f* const peak = correlations.data() + best - least + reach;
    const auto interpolated = [peak](int thirds) {
      const Zpp32f* const c = thirds < 0 ? peak - 1 : peak;
      const int f = thirds < 0 ? thirds + 3 : thirds;
      Zpp32f sum = 0;
      for (int i = 0; i < reach; ++i) sum += c[-i] * correlationFilter[f + 3 * i] + c[1 + i] * correlationFilter[3 - f + 3 * i];
      return sum;
    };
    int thirds = -2;
    Zpp32f largest = interpolated(thirds);
    for (int f = -1; f <= 2; ++f) {
      const Zpp32f value = interpolated(f);
      if (value <= largest) continue;
      largest = value;
      thirds = f;
    }
    const int whole = thirds == -2 ? -1 : thirds == 2 ? 1 : 0;
    delay = {static_cast<Zpp16s>(best + whole), static_cast<Zpp16s>(thirds - 3 * whole)};
  }
  require(zppsDecodeAdaptiveVector_G729_32f_I(delay.data(), vector - kPastExcitation));
  return delay;
}

Subframe MainBodyEncoder::filterAdaptiveVector(int subframe, const SearchTarget& search) {
  Subframe adaptive;
  std::copy_n(excitation(subframe), kSubframeSize, adaptive.begin());
  return convolve(adaptive, search.impulse);
}

std::array<Zpp16s, 2> MainBodyEncoder::searchFixedCodebook(int subframe, const Subframe& correlation, Zpp32f* matrix,
                                                           Subframe& code) {
  std::array<Zpp16s, 2> codeword;
  require(zppsFixedCodebookSearch_G729_32f(correlation.data(), matrix, code.data(), codeword.data(), &searchBudget_,
                                           static_cast<Zpp16s>(subframe)));
  return codeword;
}

void MainBodyEncoder::coded(int subframe, const Subframe& rest) {
  Subframe error;
  synthesise(synthesis_[subframe], excitation(subframe), error.data(), synthesisMemory_.end());
  synthesisMemory_ = lastOf(error);
  for (int n = 0; n < kSubframeSize; ++n) error[n] = speech(subframe)[n] - error[n];
  errorMemory_ = lastOf(error);
  weightedErrorMemory_ = lastOf(rest);
}

}  // namespace codecs::g729f
