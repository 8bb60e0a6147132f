// Prediction of the code gain from the energies of past subframes (3GPP TS 26.090 clause 5.8).
#pragma once

#include "amr/arithmetic.h"
#include "amr/rate.h"

namespace zpp::amr {

// A value of 16 bits times 2^exponent
struct Scaled {
  Zpp16s value, exponent;
};

struct PredictedGain {
  Dpf log;            // base-2 logarithm: exponent and fraction of 15 bits
  Scaled codeEnergy;  // at 7.95 kbit/s only

  // The mantissa with exponent 14
  Zpp16s mantissa() const { return low16(ownPow2(14, log.lo)); }
};
PredictedGain predictGain(const Zpp16s* code, const Zpp16s* mem, Mode mode);

// A quantised energy enters the memory: Q10 of log2 for the 12.2 kbit/s predictor, Q10 of dB for the other.
void pushEnergy(Zpp16s* mem, Zpp16s logEnergy, Zpp16s decibels);
// The same from a gain factor, Q12
void pushFactor(Zpp16s* mem, Zpp16s factor);

// factor * predicted gain, where the mantissa has exponent 14 and the factor Q(26 - shift): Q1
constexpr Zpp16s scaledGain(Zpp16s factor, Zpp16s mantissa, int shift, Zpp16s exponent) {
  return high16(shiftRight32(mulDbl(factor, mantissa), shift - exponent));
}

}  // namespace zpp::amr
