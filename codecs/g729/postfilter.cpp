#include "codecs/g729/postfilter.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::g729 {
namespace {

constexpr Zpp16s kNumeratorWeight = 18022, kDenominatorWeight = 22938;  // 0.55 and 0.7

// The first reflection coefficient of a response, Q15, -r(1) / r(0); 0 where it would not be stable
Zpp16s tiltOf(std::span<const Zpp16s> impulse) {
  Zpp32s r0 = 0, r1 = 0;
  for (std::size_t n = 0; n < impulse.size(); ++n) {
    r0 = macDbl(r0, impulse[n], impulse[n]);
    if (n > 0) r1 = macDbl(r1, impulse[n - 1], impulse[n]);
  }
  const int norm = norm32(r0);
  const Zpp16s energy = high16(shlSat32(r0, norm)), correlation = high16(shlSat32(r1, norm)), magnitude = absSat16(correlation);
  if (energy < magnitude || energy == 0) return 0;
  const auto tilt = static_cast<Zpp16s>(std::min((magnitude << 15) / energy, 32767));
  return correlation > 0 ? static_cast<Zpp16s>(-tilt) : tilt;
}

// The response of numerator / denominator
void respond(const AnyFilter& numerator, const AnyFilter& denominator, std::span<Zpp16s> response) {
  std::array<Zpp16s, 32> input{};
  std::copy_n(numerator.a.begin(), numerator.order + 1, input.begin());
  warns(zppsSynthesisFilter_G729E_16s(denominator.a.data(), denominator.order, input.data(), response.data(),
                                      static_cast<int>(response.size()), nullptr));
}

// Scales the signal down where the response would make it louder.
void level(std::span<const Zpp16s> response, Zpp16s* signal) {
  Zpp32s sum = 0;  // of magnitudes, Q12
  for (const Zpp16s x : response) sum += absSat16(x);
  const Zpp16s gain = high16(shlSat32(sum, 14));
  if (gain <= 1024) return;
  const auto factor = static_cast<Zpp16s>((1024 << 15) / gain);
  require(zppsMulC_NR_16s_ISfs(signal, factor, kSubframeSize, 15));
}

template <std::size_t size>
void shift(std::array<Zpp16s, size>& history) {
  std::copy(history.begin() + kSubframeSize, history.end(), history.begin());
}

}  // namespace

void MainBodyPostfilter::start(const Frame& frame, Zpp16s delay) {
  frame_ = frame;
  delay_ = delay;
  if (!frame.kbit12) {
    strength_ = kSpeech;
    return;
  }
  const auto move = [&](Zpp16s Strength::*part) {
    const int step = kStep.*part;
    strength_.*part = static_cast<Zpp16s>(frame.music ? std::max(strength_.*part - step, 0)
                                                      : std::min<int>(strength_.*part + step, kMostOfKbit12.*part));
  };
  move(&Strength::longTerm);
  move(&Strength::denominator);
  move(&Strength::numerator);
}

bool MainBodyPostfilter::filter(const AnyFilter& filter, const Zpp16s* synthesis, Zpp16s* output) {
  Zpp16s* const residue = residual_.data() + kPastResidual;
  Zpp16s* const shortTerm = shortTerm_.data() + kBackwardOrder;
  const AnyFilter numerator = weight(filter, strength_.numerator);
  residual(numerator, synthesis, residue);
  Zpp16s selected = 0;
  if (frame_.noise) {
    std::copy_n(residue, kSubframeSize, shortTerm);
  } else {
    require(zppsLongTermPostFilter_G729I_16s(strength_.longTerm, delay_, residue, shortTerm, &selected));
  }

  std::array<Zpp16s, 32> impulse;
  const auto response = std::span(impulse).first(frame_.kbit12 ? 32 : 20);
  if (frame_.kbit12) {
    const AnyFilter denominator = weight(filter, strength_.denominator);
    respond(numerator, denominator, response);
    level(response, shortTerm);
    synthesise(denominator, shortTerm, shortTerm, shortTerm);
  } else {
    warns(zppsShortTermPostFilter_G729_16s(filter.a.data(), shortTerm, shortTerm, impulse.data()));
  }
  std::copy_n(shortTerm, kSubframeSize, output);
  require(zppsTiltCompensation_G729_16s(tiltOf(response), output, &tiltMemory_));
  require(zppsGainControl_G729_16s_I(synthesis, output, &gain_));
  shift(residual_);
  shift(shortTerm_);
  return selected != 0;
}

void AnnexAPostfilter::filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output) {
  Zpp16s* const shortTerm = shortTerm_.data() + kOrder;
  std::array<Zpp16s, 2 * (kOrder + 1)> weights;  // numerator and denominator, as the tilt compensation wants them
  Zpp16s* const numerator = weights.data();
  Zpp16s* const denominator = numerator + kOrder + 1;
  std::ranges::copy(weight(a, kNumeratorWeight), numerator);
  std::ranges::copy(weight(a, kDenominatorWeight), denominator);
  // The sample before the subframe is the memory of the tilt compensation.
  std::array<Zpp16s, 1 + kSubframeSize> harmonic;
  harmonic[0] = tiltMemory_;
  if (noise) {
    Zpp16s* const residual = residual_.data() + kPastResidual;
    require(zppsResidualFilter_G729_16s(numerator, synthesis, residual, kSubframeSize));
    std::copy_n(residual, kSubframeSize, harmonic.data() + 1);
  } else {
    require(zppsLongTermPostFilter_G729A_16s(delay, synthesis, numerator, residual_.data(), harmonic.data() + 1));
  }
  require(zppsTiltCompensation_G729A_16s(weights.data(), harmonic.data() + 1));
  tiltMemory_ = harmonic[0];
  warns(zppsShortTermPostFilter_G729A_16s(denominator, harmonic.data() + 1, shortTerm));
  std::copy_n(shortTerm, kSubframeSize, output);
  require(zppsGainControl_G729A_16s_I(synthesis, output, &gain_));
  shift(residual_);
  shift(shortTerm_);
}

}  // namespace codecs::g729
