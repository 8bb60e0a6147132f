#include "codecs/g729/dtx.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"
#include "codecs/g729/tables.h"

namespace codecs::g729 {
namespace {

// Ascending LSFs with some room between them, as the descriptor's quantiser wants them
void space(Lsf& lsf) {
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
  Autocorrelation result{.exponent = static_cast<Zpp16s>(exponent + norm - 16)};
  std::ranges::transform(sums, result.lags.begin(), [norm](Zpp32s sum) { return high16(shlSat32(sum, norm)); });
  return result;
}

// The LP filter, that of silence for zeros; energy, of the residual, is kept for an unstable filter.
Filter Dtx::solve(const Autocorrelation& autocorrelation, Coder& coder, Zpp16s& energy) {
  if (autocorrelation.lags[0] == 0) {
    energy = 0;
    return {4096};
  }
  std::array<Zpp32s, kOrder + 1> lags;
  std::ranges::transform(autocorrelation.lags, lags.begin(), fromHigh16);
  return coder.levinsonDurbin.solve(lags.data(), &energy);
}

void Dtx::pushSum() {
  std::shift_right(sums_.begin(), sums_.end(), 1);
  sums_[0] = sum(frames_);
}

bool Dtx::detect(const Correlations& correlations, const Lsp& lsp, Zpp16s reflection,
                 std::span<const Zpp16s, kWindowSize> speech) {
  Lsf lsf;
  require(zppsLSPToLSF_Norm_G729_16s(lsp.data(), lsf.data()));
  return vad_.take(correlations, lsf, reflection, speech);
}

void Dtx::accept(const Correlations& correlations, bool speech) {
  vad_.accept(speech);
  afterSpeech_ = std::exchange(speech_, speech);
  if (speech_) noise_.restart();

  frames_[1] = frames_[0];
  frames_[0] = {correlations.original, static_cast<Zpp16s>(-(16 + correlations.exponent))};
  secondOfPair_ = !secondOfPair_;
  if (secondOfPair_ && speech_) pushSum();
}

std::optional<SidParameters> Dtx::playSilence(Coder coder, Zpp16s* excitation) {
  Silence silence{.autocorrelation = sum(frames_)};
  energies_[1] = energies_[0];
  energies_[0].exponent = silence.autocorrelation.exponent;
  silence.filter = solve(silence.autocorrelation, coder, energies_[0].energy);
  silence.gain = quantiseSidGain(std::span(energies_).first(afterSpeech_ ? 1 : 2));

  std::optional<SidParameters> sid;
  if (isDescriptorDue(silence)) sid = describe(silence, coder);
  noise_.approach(sidGains[sidGain_.index], afterSpeech_);
  noise_.excite(excitation, &coder.taming);
  if (secondOfPair_) pushSum();
  return sid;
}

// At once after speech, then no more often than every third frame, and only after a change of spectrum or level
bool Dtx::isDescriptorDue(const Silence& silence) {
  if (afterSpeech_) return true;
  constexpr Zpp16s margin = 4855;  // 15 %
  if (reference_.differsFrom(silence.autocorrelation, energies_[0].energy, margin) ||
      std::abs(silence.gain.level - sidGain_.level) > 2) {
    changed_ = true;
  }
  framesSinceSid_ = std::min(framesSinceSid_ + 1, 3);
  return framesSinceSid_ == 3 && changed_;
}

SidParameters Dtx::describe(const Silence& silence, Coder& coder) {
  framesSinceSid_ = 0;
  changed_ = false;
  // The filter of the last frames together, as long as it fits this one too
  constexpr Zpp16s margin = 3161;  // 10 %
  Zpp16s pastEnergy = 0;
  Filter filter = solve(sum(sums_), coder, pastEnergy);
  reference_ = Reference(filter);
  if (reference_.differsFrom(silence.autocorrelation, energies_[0].energy, margin)) {
    filter = silence.filter;
    reference_ = Reference(filter);
  }

  SidParameters sid;
  const Lsp lsp = coder.toLsp(filter);
  Lsf lsf, quantised;
  require(zppsLSPToLSF_G729_16s(lsp.data(), lsf.data()));
  space(lsf);
  warns(zppsLSFQuant_G729B_16s(lsf.data(), coder.maMemory.data(), quantised.data(), sid.lsf.data()));
  require(zppsLSFToLSP_G729_16s(quantised.data(), sidLsp_.data()));
  sidGain_ = silence.gain;
  sid.gain = sidGain_.index;
  return sid;
}

Dtx::Reference::Reference(const Filter& a) {
  const auto correlation = [&a](int lag) {
    Zpp32s sum = 0;
    for (int j = 0; j + lag <= kOrder; ++j) sum = macDbl(sum, a[j], a[j + lag]);
    return sum;
  };
  const Zpp32s energy = correlation(0);
  exponent_ = static_cast<Zpp16s>(norm32(energy));
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
  const Zpp32s limit = mulRoundQ15(energy, margin) + energy;  // up to 37620, beyond 16 bits
  return subSat32(*left, shlSat32(limit, exponent_ + 9 - shift - signalShift)) > 0;
}

}  // namespace codecs::g729
