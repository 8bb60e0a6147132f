#include "g729/gain/prediction.h"

#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

namespace {

constexpr Zpp16s pred[4] = {5571, 4751, 2785, 1556};  // MA coefficients, Q13, newest first
constexpr Zpp16s kDecibelsPerOctave = 24660;          // 20 log10(2), Q12
constexpr Zpp16s kLeastError = -14336;                // -14 dB, Q10

void push(Zpp16s error, Zpp16s* memory) {
  for (int k = 3; k > 0; --k) memory[k] = memory[k - 1];
  memory[0] = error;
}

}  // namespace

PredictedGain ownGainPredict(Zpp32s energy, const Zpp16s* memory) {
  Zpp16s exponent, fraction;
  ownLog2(shlSat32(energy, 1), &exponent, &fraction);
  // 30 dB of mean energy, with the scaling of the code vector, less its own energy: dB, Q13, then Q23
  const Zpp32s logEnergy = exponent * -kDecibelsPerOctave + ((fraction * -kDecibelsPerOctave) >> 15);
  Zpp64s decibels = Zpp64s{logEnergy + 1042816} * 1024;
  for (int k = 0; k < 4; ++k) decibels += Zpp32s{pred[k]} * memory[k];
  const Zpp32s octaves = sat16(decibels >> 15) * 5439;
  const auto predictedFraction = static_cast<Zpp16s>((octaves >> 8) & 0x7fff);
  return {static_cast<Zpp16s>(ownPow2(14, predictedFraction)), 14 - (octaves >> 23)};
}

void ownGainUpdate(Zpp32s correction, Zpp16s* memory) {
  Zpp16s exponent, fraction;
  ownLog2(correction, &exponent, &fraction);
  const Zpp32s octaves = (exponent - 13) * 65536 + 2 * fraction;
  push(mulQ15(high16(shlSat32(octaves, 13)), kDecibelsPerOctave), memory);
}

void ownGainUpdateErasure(Zpp16s* memory) {
  const int mean = (memory[0] + memory[1] + memory[2] + memory[3]) >> 2;
  push(static_cast<Zpp16s>(mean - 4096 < kLeastError ? kLeastError : mean - 4096), memory);
}
