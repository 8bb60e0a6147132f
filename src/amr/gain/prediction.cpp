#include "amr/gain/prediction.h"

#include "amr/frame.h"

namespace zpp::amr {

namespace {

// Mean code energy less the offset of the code's scale, in dB: a * b, doubled
struct MeanEnergy {
  Zpp16s a, b;
};
constexpr MeanEnergy meanEnergy(Mode mode) {
  switch (mode) {
    case k670:
      return {32268, 32};  // 28.75 dB
    case k740:
      return {32588, 32};  // 30 dB
    case k795:
      return {17062, 64};  // 36 dB
    default:
      return {16678, 64};  // 33 dB
  }
}

PredictedGain predictMR122(Zpp32s codeEnergy, const Zpp16s* mem) {
  constexpr Zpp16s kWeights[4] = {44, 37, 22, 12};  // 0.68, 0.58, 0.34, 0.19 in Q6
  const Dpf log = logarithm(mulDbl(roundHigh16(codeEnergy), 26214));
  const Zpp32s actual = fromDpf({static_cast<Zpp16s>(log.hi - 30), log.lo});
  Zpp32s predicted = 783741;  // 36 dB
  for (int k = 0; k < 4; ++k) predicted = macDbl(predicted, mem[k], kWeights[k]);
  return {toDpf(subSat32(predicted, actual) >> 1), {}};
}

}  // namespace

PredictedGain predictGain(const Zpp16s* code, const Zpp16s* mem, Mode mode) {
  const Zpp32s codeEnergy = energy(code, kSubframe);
  if (mode == k122) return predictMR122(codeEnergy, mem);

  constexpr Zpp16s kWeights[4] = {5571, 4751, 2785, 1556};  // 0.68, 0.58, 0.34, 0.19 in Q13
  const Normalised e = normalised(codeEnergy);
  const MeanEnergy mean = meanEnergy(mode);
  Zpp32s gain = macDbl(mulDpf16(logarithm(codeEnergy), -24660), mean.a, mean.b);
  gain = shlSat32(gain, 10);
  for (int k = 0; k < 4; ++k) gain = macDbl(gain, kWeights[k], mem[4 + k]);
  const Zpp32s log = mulDbl(high16(gain), mode == k740 ? 5439 : 5443) >> 8;  // dB to log2
  return {toDpf(log), {e.value, static_cast<Zpp16s>(-11 - e.shift)}};
}

void pushEnergy(Zpp16s* mem, Zpp16s logEnergy, Zpp16s decibels) {
  for (int k = 3; k > 0; --k) {
    mem[k] = mem[k - 1];
    mem[4 + k] = mem[4 + k - 1];
  }
  mem[0] = logEnergy;
  mem[4] = decibels;
}

void pushFactor(Zpp16s* mem, Zpp16s factor) {
  Dpf log = logarithm(factor);
  log.hi = static_cast<Zpp16s>(log.hi - 12);
  const Zpp16s logEnergy = addSat16(shiftRightRound16(log.lo, 5), shlSat16(log.hi, 10));
  pushEnergy(mem, logEnergy, roundHigh16(shlSat32(zpp::mulDpf16(log, 24660), 13)));
}

}  // namespace zpp::amr
