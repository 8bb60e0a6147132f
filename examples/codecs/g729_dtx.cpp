#include "g729_dtx.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "codec.h"
#include "fixed_point.h"
#include "g729_tables.h"

namespace codecs::g729 {
namespace {

// Ascending LSFs with some room between them, as the descriptor's quantiser wants them
void space(Lsp& lsf) {
  constexpr Zpp16s lowest = 40, highest = 25681, gap = 642;
  lsf[0] = std::max(lsf[0], lowest);
  for (int i = 1; i < kOrder; ++i) {
    if (lsf[i] - lsf[i - 1] < gap) lsf[i] = addSat16(lsf[i - 1], gap);
  }
  lsf[9] = std::min(lsf[9], highest);
  if (lsf[9] < lsf[8]) lsf[8] = subSat16(lsf[9], gap / 2);
}

}  // namespace

Dtx::Autocorrelation Dtx::sum(std::span<const Autocorrelation> terms) {
  const int exponent = std::ranges::min(terms, {}, &Autocorrelation::exponent).exponent + 14;
  std::array<Zpp32s, kOrder + 1> sums{};
  for (const auto& term : terms)
    for (int i = 0; i <= kOrder; ++i) sums[i] = addSat32(sums[i], shlSat32(term.lags[i], exponent - term.exponent));
  const int norm = norm32(sums[0]);
  Autocorrelation result{.exponent = exponent + norm - 16};
  std::ranges::transform(sums, result.lags.begin(), [norm](Zpp32s sum) { return high16(shlSat32(sum, norm)); });
  return result;
}

Filter Dtx::solve(LevinsonDurbin& levinsonDurbin, const Autocorrelation& autocorrelation, Zpp16s* energy) {
  std::array<Zpp32s, kOrder + 1> lags;
  std::ranges::transform(autocorrelation.lags, lags.begin(), fromHigh16);
  return levinsonDurbin.solve(lags.data(), energy);
}

void Dtx::takeSum() {
  std::shift_right(sums_.begin(), sums_.end(), 1);
  sums_[0] = sum(frames_);
}

bool Dtx::isSpeech(const Correlations& correlations, const Lsp& lsp, Zpp16s reflection,
                   std::span<const Zpp16s, kWindowSize> speech) {
  afterSpeech_ = speech_;
  Lsp lsf;
  require(zppsLSPToLSF_Norm_G729_16s(lsp.data(), lsf.data()));
  speech_ = vad_.isVoice(correlations, lsf, reflection, speech);
  if (speech_) noise_.restart();

  frames_[1] = frames_[0];
  frames_[0] = {correlations.original, -(16 + correlations.exponent)};
  oddFrame_ = !oddFrame_;
  if (!oddFrame_ && speech_) takeSum();
  return speech_;
}

std::optional<SidParameters> Dtx::describeSilence(LevinsonDurbin& levinsonDurbin,
                                                  const std::function<Lsp(const Filter&)>& toLsp, MaMemory& maMemory) {
  const Autocorrelation current = sum(frames_);
  energies_[1] = energies_[0];
  energies_[0].exponent = current.exponent;
  Filter filter{};
  if (current.lags[0] == 0) {
    energies_[0].energy = 0;
  } else {
    filter = solve(levinsonDurbin, current, &energies_[0].energy);
  }
  const Zpp16s energy = energies_[0].energy;

  const SidGain gain = quantiseSidGain(std::span(energies_).first(afterSpeech_ ? 1 : 2));
  bool due = afterSpeech_;
  if (!afterSpeech_) {
    constexpr Zpp16s margin = 4855;  // 15 %
    if (reference_.differsFrom(current, energy, margin) || std::abs(gain.level - gain_.level) > 2) changed_ = true;
    framesSinceSid_ = std::min(framesSinceSid_ + 1, 3);
    due = framesSinceSid_ == 3 && changed_;
  }

  std::optional<SidParameters> sid;
  if (due) {
    framesSinceSid_ = 0;
    changed_ = false;
    // The average over the frames before, as long as it describes this one too
    constexpr Zpp16s margin = 3161;  // 10 %
    const Autocorrelation past = sum(sums_);
    const Filter pastFilter = past.lags[0] == 0 ? Filter{4096} : solve(levinsonDurbin, past, nullptr);
    reference_ = Reference(pastFilter);
    if (reference_.differsFrom(current, energy, margin)) {
      reference_ = Reference(filter);
    } else {
      filter = pastFilter;
    }
    sid.emplace();
    const Lsp lsp = toLsp(filter);
    Lsp lsf;
    require(zppsLSPToLSF_G729_16s(lsp.data(), lsf.data()));
    space(lsf);
    Lsp quantised;
    zppsLSFQuant_G729B_16s(lsf.data(), maMemory.data(), quantised.data(), sid->lsf.data());
    require(zppsLSFToLSP_G729_16s(quantised.data(), sidLsp_.data()));
    gain_ = gain;
    sid->gain = gain.index;
    sidGain_ = sidGains[gain.index];
  }
  noise_.approach(sidGain_, afterSpeech_);
  if (!oddFrame_) takeSum();
  return sid;
}

Dtx::Reference::Reference(const Filter& a) {
  const auto correlation = [&a](int lag) {
    Zpp32s sum = 0;
    for (int j = 0; j + lag <= kOrder; ++j) sum = macDbl(sum, a[j], a[j + lag]);
    return sum;
  };
  const Zpp32s energy = correlation(0);
  exponent_ = norm32(energy);
  for (int lag = 0; lag <= kOrder; ++lag) correlations_[lag] = roundHigh16(shlSat32(correlation(lag), exponent_));
}

bool Dtx::Reference::differsFrom(const Autocorrelation& signal, Zpp16s energy, Zpp16s margin) const {
  // What the filter leaves of the signal, scaled down as far as 32 bits demand
  const auto filtered = [&](int shift, int signalShift) -> std::optional<Zpp32s> {
    Zpp64s sum = 0;
    for (int i = 0; i <= kOrder; ++i) {
      const Zpp64s product = (correlations_[i] >> shift) * (signal.lags[i] >> signalShift);
      sum += i == 0 ? product : 2 * product;
      if (sum != sat32(sum)) return std::nullopt;
    }
    return static_cast<Zpp32s>(sum);
  };
  int shift = 0, signalShift = 0;
  auto left = filtered(shift, signalShift);
  while (!left) {
    ++(shift == signalShift ? signalShift : shift);
    left = filtered(shift, signalShift);
  }
  const Zpp16s limit = addSat16(mulRoundQ15(energy, margin), energy);
  return subSat32(*left, shlSat32(limit, exponent_ + 9 - shift - signalShift)) > 0;
}

}  // namespace codecs::g729
