// What the gain quantisers minimise: the energy of target - pitchGain * vector - codeGain * code, by five correlations.
#pragma once

#include "amr/gain/kernels.h"
#include "amr/gain/prediction.h"

namespace zpp::amr {

// The factors of gp^2, gp, gc^2, gc and gp gc
inline constexpr int kTerms = 5;

struct GainMeasures {
  Scaled term[kTerms];
  Scaled codeGain;  // unquantised; at 4.75 and 7.95 kbit/s only
};
GainMeasures measureGains(const GainTask& task, Mode mode);

// Exponents of the terms where the code gain is a factor times the predicted gain, exponent x
inline void termExponents(const GainMeasures& m, int x, Zpp16s* exponent) {
  exponent[0] = subSat16(m.term[0].exponent, 13);
  exponent[1] = subSat16(m.term[1].exponent, 14);
  exponent[2] = addSat16(m.term[2].exponent, 15 + 2 * x);
  exponent[3] = addSat16(m.term[3].exponent, x);
  exponent[4] = addSat16(m.term[4].exponent, 1 + x);
}

// value * 2^exponent in the scale of `largest`
inline Dpf inScale(Zpp16s value, Zpp16s exponent, Zpp16s largest) {
  return toDpf(shiftRight32(fromHigh16(value), subSat16(largest, exponent)));
}

}  // namespace zpp::amr
