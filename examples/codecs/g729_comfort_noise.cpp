#include "g729_comfort_noise.h"

#include <algorithm>

#include "codec.h"
#include "fixed_point.h"
#include "g729_vad.h"

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

// The square root of half a value, 14 bits of it
Zpp16s rootOfHalf(Zpp32s value) {
  Zpp16s root = 0;
  for (Zpp16s bit = 1 << 14; bit > 1; bit = static_cast<Zpp16s>(bit >> 1)) {
    const Zpp16s trial = addSat16(root, bit);
    if (mulDbl(trial, trial) <= value) root = trial;
  }
  return root;
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

void ComfortNoise::excite(Zpp16s* excitation, Taming* taming) {
  for (int s = 0; s < kSubframes; ++s, excitation += kSubframeSize) {
    Zpp16s pitchGain = 0;
    int delay = kSubframeSize + 1;
    if (gain_ == 0) {
      std::fill_n(excitation, kSubframeSize, Zpp16s{0});
    } else {
      const Draw drawn = draw();
      pitchGain = exciteSubframe(drawn, excitation);
      delay = drawn.delay[0];
    }
    if (taming != nullptr) taming->update(pitchGain, delay);
  }
}

ComfortNoise::Draw ComfortNoise::draw() {
  const auto bits = [](int number, int from, int count) { return number >> from & ((1 << count) - 1); };
  const int first = random_.next(), second = random_.next();
  const int thirds = bits(first, 0, 2) - 1;
  return {.delay = {static_cast<Zpp16s>(40 + bits(first, 2, 6)), static_cast<Zpp16s>(thirds == 2 ? 0 : thirds)},
          .pitchGain = static_cast<Zpp16s>(bits(random_.next(), 0, 13)),
          .pulses = {{{5 * bits(first, 8, 3), bits(first, 11, 1) != 0},
                      {5 * bits(first, 12, 3) + 1, bits(first, 15, 1) != 0},
                      {5 * bits(second, 0, 3) + 2, bits(second, 3, 1) != 0},
                      {5 * bits(second, 5, 3) + 3 + bits(second, 4, 1), bits(second, 8, 1) != 0}}}};
}

// Noise of the current gain
Subframe ComfortNoise::drawGaussian() {
  Subframe noise;
  for (Zpp16s& sample : noise) {
    Zpp32s sum = 0;
    for (int n = 0; n < 12; ++n) sum += random_.next();
    sample = static_cast<Zpp16s>(sum >> 7);
  }
  Zpp32s inverse = energyOf(noise) >> 1;
  require(zppsInvSqrt_32s_I(&inverse, 1));
  const Zpp32s factor = mulDbl32(inverse, addSat16(gain_, mulRoundQ15(gain_, 19043)));
  const int norm = norm32(factor);
  const Zpp16s mantissa = high16(shlSat32(factor, norm));
  for (Zpp16s& sample : noise) sample = shrRound16(mulRoundQ15(sample, mantissa), norm - 14);
  return noise;
}

// Adds an adaptive vector, noise and four pulses whose amplitude brings the whole to the energy that the gain stands for;
// without the adaptive vector where that is too loud already. Returns the pitch gain used.
Zpp16s ComfortNoise::exciteSubframe(const Draw& draw, Zpp16s* excitation) {
  Zpp16s pitchGain = draw.pitchGain;
  const Subframe noise = drawGaussian();
  require(zppsDecodeAdaptiveVector_G729_16s_I(draw.delay.data(), excitation - kPastExcitation));
  require(zppsMulC_NR_16s_ISfs(excitation, static_cast<Zpp16s>(2 * pitchGain), kSubframeSize, 15));
  require(zppsAdd_16s_I(noise.data(), excitation, kSubframeSize));

  const auto sumAtPulses = [&draw](const Zpp16s* signal, int shift) {
    Zpp16s sum = 0;
    for (const auto& [position, positive] : draw.pulses) {
      const auto value = static_cast<Zpp16s>(signal[position] >> shift);
      sum = positive ? addSat16(sum, value) : subSat16(sum, value);
    }
    return sum;
  };
  // The amplitude x solves 4 x^2 + 2 B x = D', B being the sum at the pulses; D = D' + B^2 / 4, all scaled down by `shift`
  // bits.
  const Zpp32s energy = mulDbl(gain_, low16(mulDbl(gain_, kSubframeSize) >> 6));
  Zpp16s largest = 0;
  for (int n = 0; n < kSubframeSize; ++n) largest = std::max(largest, absSat16(excitation[n]));
  int shift = largest == 0 ? 0 : std::max(3 - norm16(largest), 0);
  Subframe scaled;
  require(zppsRShiftC_16s(excitation, scaled.data(), kSubframeSize, shift));
  auto sum = static_cast<Zpp16s>(sumAtPulses(scaled.data(), 0) >> 1);
  Zpp32s discriminant = macDbl(subSat32(energy >> (1 + 2 * shift), energyOf(scaled)), sum, sum);
  ++shift;
  if (discriminant < 0) {
    std::ranges::copy(noise, excitation);
    pitchGain = 0;
    int magnitudes = 0;
    for (const auto& pulse : draw.pulses) magnitudes |= absSat16(noise[pulse.position]);
    shift = magnitudes & 1 << 14 ? 2 : 1;
    sum = sumAtPulses(noise.data(), shift);
    discriminant = macDbl(mulDbl32(energy, 24576) >> (2 * shift - 1), sum, sum);
  }

  const Zpp16s root = rootOfHalf(discriminant);
  const Zpp16s upper = subSat16(root, sum), lower = sat16(-addSat16(sum, root));
  const Zpp16s nearer = absSat16(upper) <= absSat16(lower) ? upper : lower;
  const Zpp16s amplitude = std::clamp<Zpp16s>(shrRound16(nearer, 2 - shift), -5000, 5000);
  for (const auto& [position, positive] : draw.pulses) {
    Zpp16s& sample = excitation[position];
    sample = positive ? addSat16(sample, amplitude) : subSat16(sample, amplitude);
  }
  return pitchGain;
}

}  // namespace codecs::g729
