#include "codecs/g729/comfort_noise.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"
#include "codecs/g729/logarithm.h"

namespace codecs::g729 {
namespace {

// The level steps of clause B.4.2.1, of 4 dB up to 16 dB and then of 2 dB: energy * 2^-exponent
SidGain quantise(Zpp32s energy, int exponent) {
  const auto [integer, fraction] = log2Of(energy);
  const Zpp16s level = addSat16(sat16(shlSat32(integer - exponent, 10)), mulRoundQ15(fraction, 1024));
  if (level <= -2721) return {0, -12};
  if (level > 22111) return {31, 66};
  if (level <= 4762) {
    const Zpp16s index = std::max<Zpp16s>(mulQ15(addSat16(level, 3401), 24), 1);
    return {index, static_cast<Zpp16s>(4 * index - 8)};
  }
  const Zpp16s index = std::max<Zpp16s>(static_cast<Zpp16s>((mulQ15(subSat16(level, 340), 193) >> 2) - 1), 6);
  return {index, static_cast<Zpp16s>(2 * index + 4)};
}

// Doubled
Zpp32s energyOf(const Subframe& x) {
  Zpp32s energy = 0;
  require(zppsDotProd_16s32s_Sfs(x.data(), x.data(), kSubframeSize, &energy, -1));
  return energy;
}

// What is drawn for a subframe
struct Pulse {
  int position;
  bool positive;
};
using Pulses = std::array<Pulse, 4>;
struct Drawn {
  PitchDelay delay;
  Zpp16s pitchGain;  // Q14
  Pulses pulses;
};

Drawn draw(RandomNumbers& random) {
  const auto bits = [](int number, int from, int count) { return number >> from & ((1 << count) - 1); };
  const int first = random.next(), second = random.next();
  const int thirds = bits(first, 0, 2) - 1;
  return {.delay = {static_cast<Zpp16s>(40 + bits(first, 2, 6)), static_cast<Zpp16s>(thirds == 2 ? 0 : thirds)},
          .pitchGain = static_cast<Zpp16s>(bits(random.next(), 0, 13)),
          .pulses = {{{5 * bits(first, 8, 3), bits(first, 11, 1) != 0},
                      {5 * bits(first, 12, 3) + 1, bits(first, 15, 1) != 0},
                      {5 * bits(second, 0, 3) + 2, bits(second, 3, 1) != 0},
                      {5 * bits(second, 5, 3) + 3 + bits(second, 4, 1), bits(second, 8, 1) != 0}}}};
}

// Gaussian noise of a gain
Subframe drawNoise(RandomNumbers& random, Zpp16s gain) {
  Subframe noise;
  for (Zpp16s& sample : noise) {
    Zpp32s sum = 0;
    for (int n = 0; n < 12; ++n) sum += random.next();
    sample = static_cast<Zpp16s>(sum >> 7);
  }
  Zpp32s inverse = energyOf(noise) >> 1;
  require(zppsInvSqrt_32s_I(&inverse, 1));
  const Zpp32s factor = mulDbl32(inverse, addSat16(gain, mulRoundQ15(gain, 19043)));
  const int norm = norm32(factor);
  const Zpp16s mantissa = high16(shlSat32(factor, norm));
  for (Zpp16s& sample : noise) sample = shrRound16(mulRoundQ15(sample, mantissa), norm - 14);
  return noise;
}

// The amplitude x of the pulses that bring a signal to a given energy: x^2 + B x = C. The sum of the signal at the pulses, with
// their signs, gives B; the energy that is missing gives C. All are scaled down by `shift` bits.
struct AmplitudeEquation {
  Zpp16s halfB;
  Zpp32s discriminant;  // C + B^2 / 4, doubled
  int shift;

  // The solution nearer to 0
  Zpp16s solve() const {
    Zpp16s root = 0;  // of half the discriminant, 14 bits
    for (Zpp16s bit = 1 << 14; bit > 1; bit = static_cast<Zpp16s>(bit >> 1)) {
      const Zpp16s trial = addSat16(root, bit);
      if (mulDbl(trial, trial) <= discriminant) root = trial;
    }
    const Zpp16s upper = subSat16(root, halfB), lower = sat16(-addSat16(halfB, root));
    const Zpp16s nearer = absSat16(upper) <= absSat16(lower) ? upper : lower;
    return std::clamp<Zpp16s>(shrRound16(nearer, 2 - shift), -5000, 5000);
  }
};

Zpp16s sumAtPulses(const Zpp16s* signal, const Pulses& pulses, int shift) {
  Zpp16s sum = 0;
  for (const auto& [position, positive] : pulses) {
    const auto value = static_cast<Zpp16s>(signal[position] >> shift);
    sum = positive ? addSat16(sum, value) : subSat16(sum, value);
  }
  return sum;
}

AmplitudeEquation equationFor(const Zpp16s* signal, const Pulses& pulses, Zpp32s energy) {
  Zpp16s largest = 0;
  for (int n = 0; n < kSubframeSize; ++n) largest = std::max(largest, absSat16(signal[n]));
  const int shift = largest == 0 ? 0 : std::max(3 - norm16(largest), 0);
  Subframe scaled;
  require(zppsRShiftC_16s(signal, scaled.data(), kSubframeSize, shift));
  const auto halfB = static_cast<Zpp16s>(sumAtPulses(scaled.data(), pulses, 0) >> 1);
  return {halfB, macDbl(subSat32(energy >> (1 + 2 * shift), energyOf(scaled)), halfB, halfB), shift + 1};
}

// The same for the noise, whose energy is a quarter of the whole
AmplitudeEquation equationForNoise(const Subframe& noise, const Pulses& pulses, Zpp32s energy) {
  int magnitudes = 0;
  for (const auto& pulse : pulses) magnitudes |= absSat16(noise[pulse.position]);
  const int shift = magnitudes & 1 << 14 ? 2 : 1;
  const Zpp16s halfB = sumAtPulses(noise.data(), pulses, shift);
  return {halfB, macDbl(mulDbl32(energy, 24576) >> (2 * shift - 1), halfB, halfB), shift};
}

}  // namespace

SidGain quantiseSidGain(std::span<const ResidualEnergy> energies) {
  const bool two = energies.size() == 2;
  const Zpp16s factor = two ? 13 : 26;
  const int exponent = std::ranges::min(energies, {}, &ResidualEnergy::exponent).exponent + 16 - (two ? 1 : 0);
  Zpp32s sum = 0;
  for (const auto& [energy, scale] : energies) sum = addSat32(sum, shlSat32(energy, exponent - scale));
  return quantise(mulDbl32(sum, factor), exponent);
}

SidGain guessSidGain(Zpp16s energy, int exponent) { return quantise(mulDbl32(shlSat32(energy, exponent), 410), 0); }

void ComfortNoise::approach(Zpp16s sidGain, bool afterSpeech) {
  gain_ = afterSpeech ? sidGain : addSat16(mulRoundQ15(gain_, 28672), mulRoundQ15(sidGain, 4096));
}

// An adaptive vector, noise, and pulses that bring them to the energy which the gain stands for; the noise and pulses alone
// where there is more energy already
std::array<ComfortNoise::Gains, kSubframes> ComfortNoise::excite(Zpp16s* excitation, Taming* taming) {
  std::array<Gains, kSubframes> gains;
  for (int s = 0; s < kSubframes; ++s, excitation += kSubframeSize) {
    const Drawn drawn = draw(random_);
    const Subframe noise = drawNoise(random_, gain_);
    Zpp16s pitchGain = drawn.pitchGain;
    require(zppsDecodeAdaptiveVector_G729_16s_I(drawn.delay.data(), excitation - kPastExcitation));
    require(zppsMulC_NR_16s_ISfs(excitation, static_cast<Zpp16s>(2 * pitchGain), kSubframeSize, 15));
    require(zppsAdd_16s_I(noise.data(), excitation, kSubframeSize));

    const Zpp32s energy = mulDbl(gain_, low16(mulDbl(gain_, kSubframeSize) >> 6));
    AmplitudeEquation equation = equationFor(excitation, drawn.pulses, energy);
    if (equation.discriminant < 0) {
      pitchGain = 0;
      std::ranges::copy(noise, excitation);
      equation = equationForNoise(noise, drawn.pulses, energy);
    }
    const Zpp16s amplitude = equation.solve();
    for (const auto& [position, positive] : drawn.pulses) {
      Zpp16s& sample = excitation[position];
      sample = positive ? addSat16(sample, amplitude) : subSat16(sample, amplitude);
    }
    if (taming != nullptr) taming->update(pitchGain, drawn.delay[0]);
    gains[s] = {pitchGain, absSat16(amplitude)};
  }
  return gains;
}

}  // namespace codecs::g729
