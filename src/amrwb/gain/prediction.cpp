// Prediction of the code gain from past energies (3GPP TS 26.190 clause 5.9).
#include "amrwb/gain/prediction.h"

#include <algorithm>

#include "amrwb/gain/tables.h"

namespace zpp::amrwb {

PredictedGain predictedGain(Zpp32s level, const Zpp16s* energies) {
  for (int i = 0; i < kPastEnergies; ++i) level = macDbl(level, energyPrediction[i], energies[i]);
  const Dpf octaves = toDpf(mulDbl(high16(level), 5443) >> 8);  // dB to powers of two: log2(10) / 20
  return {low16(ownPow2(14, octaves.lo)), octaves.hi - 14};
}

void remember(Zpp16s factor, Zpp16s* energies) {
  Zpp16s exponent = 0, fraction = 0;
  ownLog2(factor, &exponent, &fraction);
  const Zpp32s level = macDbl(mulDbl(low16(exponent - 11), 24660), mulQ15(fraction, 24660), 1);  // 20 log10(2), Q12
  shiftIn(low16(level >> 3), energies, kPastEnergies);
}

void shiftIn(Zpp16s value, Zpp16s* newestFirst, int len) {
  std::copy_backward(newestFirst, newestFirst + len - 1, newestFirst + len);
  newestFirst[0] = value;
}

GainPair gainPair(Zpp16s index, Mode mode) {
  const Zpp16s* pair = hasSmallGainCodebook(mode) ? gainCodebook6[index & 63] : gainCodebook7[index & 127];
  return {pair[0], pair[1]};
}

}  // namespace zpp::amrwb
