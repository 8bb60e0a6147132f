#include "codecs/g729/single_precision/postfilter.h"

#include <cmath>

#include "codecs/codec.h"
#include "codecs/g729/single_precision/tables.h"

namespace codecs::g729f {
namespace {

constexpr Zpp32f kNumeratorWeight = 0.55f, kDenominatorWeight = 0.7f;

// A signal against the residual
struct Match {
  Zpp32f correlation, energy;
  // Whether correlation^2 / energy is larger
  bool exceeds(const Match& other) const {
    return correlation * correlation * other.energy > other.correlation * other.correlation * energy;
  }
};

Match matchOf(const Zpp32f* residue, const Zpp32f* delayed) {
  return {std::max(product(residue, delayed), 0.f), energyOf(delayed)};
}

// signal: where the filter's first tap reads for the first output
template <std::size_t taps>
Subframe interpolate(const Zpp32f* signal, const std::array<Zpp32f, taps>& filter) {
  Subframe output;
  for (int n = 0; n < kSubframeSize; ++n) {
    Zpp32f sum = 0;
    for (int i = 0; i < static_cast<int>(taps); ++i) sum += filter[i] * signal[n - i];
    output[n] = sum;
  }
  return output;
}

// The residual delayed by delay - phase/8 samples
Subframe delayedShort(const Zpp32f* residue, int delay, int phase) {
  return interpolate(residue - delay + 2, shortDelayFilters[phase - 1]);
}
Subframe delayedLong(const Zpp32f* residue, int delay, int phase) {
  return interpolate(residue - delay + 8, longDelayFilters[phase - 1]);
}

}  // namespace

void Postfilter::synthesiseShortTerm(const Filter& denominator, const Subframe& input, Zpp32f* output) {
  synthesise(denominator, input.data(), output, shortTerm_.end());
  std::copy_n(output + kSubframeSize - kOrder, kOrder, shortTerm_.begin());
}

void Postfilter::shift() { std::copy(residual_.begin() + kSubframeSize, residual_.end(), residual_.begin()); }

bool MainBodyPostfilter::filter(const Filter& a, int delay, const Zpp32f* synthesis, Zpp32f* output) {
  const Filter numerator = weight(a, kNumeratorWeight), denominator = weight(a, kDenominatorWeight);
  residual(numerator, synthesis, residue());
  Subframe signal;
  const bool voiced = filterLongTerm(delay, signal);

  std::array<Zpp32f, 20> response;
  respond(numerator, denominator, response);
  Zpp32f magnitudes = 0;
  for (const Zpp32f x : response) magnitudes += std::fabs(x);
  if (magnitudes > 1)
    for (Zpp32f& x : signal) x /= magnitudes;
  Zpp32f last = shortTerm_.back();
  synthesiseShortTerm(denominator, signal, output);

  const Zpp32f r0 = energyOf(response.data(), 20), r1 = product(response.data(), response.data() + 1, 19);
  const Zpp32f tilt = r0 == 0 || std::fabs(r1) > r0 ? 0 : -r1 / r0;
  const Zpp32f mu = tilt * (tilt > 0 ? 0.2f : 0.9f), gain = 1 / (1 - std::fabs(mu));
  for (int n = 0; n < kSubframeSize; ++n) {
    const Zpp32f x = output[n];
    output[n] = gain * (x + mu * last);
    last = x;
  }
  require(zppsGainControl_G729_32f_I(synthesis, output, &gain_));
  shift();
  return voiced;
}

// At a resolution of 1/8 sample (clause 4.2.1)
bool MainBodyPostfilter::filterLongTerm(int delay, Subframe& output) {
  constexpr Zpp32f leastEnergy = 0.1f;
  const Zpp32f* const r = residue();
  std::copy_n(r, kSubframeSize, output.begin());
  const Zpp32f energy = energyOf(r);
  if (energy < leastEnergy) return false;

  int whole = delay - 1;
  Zpp32f most = product(r, r - whole);
  for (int t = delay; t <= delay + 1; ++t) {
    const Zpp32f correlation = product(r, r - t);
    if (correlation <= most) continue;
    most = correlation;
    whole = t;
  }
  if (most <= 0) return false;
  Match best = {most, energyOf(r - whole)};
  if (best.energy < leastEnergy) return false;

  int bestDelay = whole, bestPhase = 0;
  for (int phase = 1; phase <= 7; ++phase)
    for (int t = whole + 1; t >= whole; --t) {
      const Match match = matchOf(r, delayedShort(r, t, phase).data());
      if (!match.exceeds(best)) continue;
      best = match;
      bestDelay = t;
      bestPhase = phase;
    }
  // On for a prediction gain of 3 dB
  if (best.energy < leastEnergy || best.correlation * best.correlation < 0.5f * best.energy * energy) return false;

  Subframe delayed;
  std::copy_n(r - bestDelay, kSubframeSize, delayed.begin());
  if (bestPhase != 0) {
    delayed = delayedLong(r, bestDelay, bestPhase);
    const Match match = matchOf(r, delayed.data());
    if (match.exceeds(best))
      best = match;
    else
      delayed = delayedShort(r, bestDelay, bestPhase);
  }
  const Zpp32f gain = best.correlation > best.energy ? 2.f / 3 : best.energy / (best.energy + 0.5f * best.correlation);
  for (int n = 0; n < kSubframeSize; ++n) output[n] = gain * r[n] + (1 - gain) * delayed[n];
  return true;
}

bool AnnexAPostfilter::filter(const Filter& a, int delay, const Zpp32f* synthesis, Zpp32f* output) {
  const Filter numerator = weight(a, kNumeratorWeight), denominator = weight(a, kDenominatorWeight);
  residual(numerator, synthesis, residue());
  Subframe signal;
  const bool voiced = filterLongTerm(delay, signal);

  constexpr int length = 22;
  std::array<Zpp32f, length> response;
  respond(numerator, denominator, response);
  const Zpp32f r0 = energyOf(response.data(), length), r1 = product(response.data(), response.data() + 1, length - 1);
  const Zpp32f tilt = r1 > 0 ? 0.8f * r1 / r0 : 0;
  for (Zpp32f& sample : signal) {
    const Zpp32f x = sample;
    sample = x - tilt * tiltMemory_;
    tiltMemory_ = x;
  }
  synthesiseShortTerm(denominator, signal, output);

  // Gain control (clause A.4.2.4)
  const Zpp32f energyBefore = energyOf(synthesis), energyAfter = energyOf(output);
  if (energyAfter == 0) {
    gain_ = 0;
  } else {
    const Zpp32f share = 0.1f * std::sqrt(energyBefore / energyAfter);
    for (int n = 0; n < kSubframeSize; ++n) {
      gain_ = 0.9f * gain_ + share;
      output[n] *= gain_;
    }
  }
  shift();
  return voiced;
}

// At integer delays (clause A.4.2.1)
bool AnnexAPostfilter::filterLongTerm(int delay, Subframe& output) {
  const Zpp32f* const r = residue();
  std::copy_n(r, kSubframeSize, output.begin());
  const int least = std::min(delay - 3, kLongestDelay - 6);
  int best = least;
  Zpp32f correlation = product(r, r - least);
  for (int t = least + 1; t <= least + 6; ++t) {
    const Zpp32f value = product(r, r - t);
    if (value <= correlation) continue;
    correlation = value;
    best = t;
  }
  const Zpp32f energy = 0.5f + energyOf(r - best), own = 0.5f + energyOf(r);
  if (correlation <= 0 || correlation * correlation < energy * own / 2) return false;
  const Zpp32f gain = correlation > energy ? 1.f / 3 : 0.5f * correlation / (0.5f * correlation + energy);
  for (int n = 0; n < kSubframeSize; ++n) output[n] = (1 - gain) * r[n] + gain * r[n - best];
  return true;
}

}  // namespace codecs::g729f
