// Quantisation of the gains at 4.75 kbit/s (3GPP TS 26.090 clause 5.8): those of two subframes together.
#include <cstring>

#include "amr/gain/kernels.h"
#include "amr/gain/measures.h"
#include "amr/gain/tables.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

// What the even subframe leaves for the odd one, in the callers' array
struct FirstSubframe {
  Dpf predicted;
  Zpp16s targetExponent, targetValue;
  Zpp16s exponent[kTerms], value[kTerms];
};
static_assert(sizeof(FirstSubframe) == 14 * sizeof(Zpp16s));

Scaled energyOfTarget(const Zpp16s* target) {
  const Normalised n = normalised(energy(target, kSubframe));
  return {n.value, static_cast<Zpp16s>(16 - n.shift)};
}

// The prediction memory as if the code gain were not quantised
void pushUnquantised(Zpp16s* mem, Scaled gain, const PredictedGain& predicted) {
  if (gain.value <= 0) return pushEnergy(mem, -32768, -5443);
  const Zpp16s mantissa = predicted.mantissa();
  if (gain.value >= mantissa) {
    gain.value = static_cast<Zpp16s>(gain.value >> 1);
    gain.exponent = addSat16(gain.exponent, 1);
  }
  Dpf log = logarithm(divQ15(gain.value, mantissa));
  log.hi = addSat16(log.hi, subSat16(subSat16(gain.exponent, predicted.log.hi), 1));
  const Zpp16s logEnergy = addSat16(shiftRightRound16(log.lo, 5), shlSat16(log.hi, 10));
  if (logEnergy > 18284) return pushEnergy(mem, 18284, 3037);
  pushEnergy(mem, logEnergy, roundHigh16(shlSat32(zpp::mulDpf16(log, 24660), 13)));
}

// Weighs the subframes' errors by the energies of their targets: returns 1, 0 or -1 for doubling, keeping or halving the first.
int balance(Scaled first, Scaled second) {
  const int difference = subSat16(first.exponent, second.exponent);
  if (difference > 0)
    second.value = shiftRight16(second.value, difference);
  else
    first.value = shlSat16(first.value, difference);
  if (shiftRightRound16(second.value, 1) > first.value) return 1;
  return (addSat16(first.value, 3) >> 2) > second.value ? -1 : 0;
}

}  // namespace

void ownGainQuantFirst_GSMAMR_16s(const GainTask& task, const Zpp16s* gainMem, Zpp16s* unquantMem, Zpp16s* first,
                                  Zpp16s* codeGain) {
  const PredictedGain predicted = predictGain(task.code, gainMem, k475);
  const GainMeasures m = measureGains(task, k475);
  const Scaled targetEnergy = energyOfTarget(task.target);
  FirstSubframe saved = {predicted.log, targetEnergy.exponent, targetEnergy.value, {}, {}};
  for (int k = 0; k < kTerms; ++k) saved.exponent[k] = m.term[k].exponent, saved.value[k] = m.term[k].value;
  std::memcpy(first, &saved, sizeof saved);

  std::memmove(unquantMem, gainMem, 8 * sizeof *gainMem);
  pushUnquantised(unquantMem, m.codeGain, predicted);
  *codeGain = shlSat16(m.codeGain.value, m.codeGain.exponent + 1);
}

void ownGainQuantSecond_GSMAMR_16s(const GainTask& task, Zpp16s limit, const Zpp16s* unquantMem, const Zpp16s* first,
                                   Zpp16s* gainMem, Zpp16s* pitchGain, Zpp16s* codeGain, Zpp16s* idx) {
  FirstSubframe saved;
  std::memcpy(&saved, first, sizeof saved);
  PredictedGain predicted[2] = {{saved.predicted, {}}, predictGain(task.code, unquantMem, k475)};
  const GainMeasures m = measureGains(task, k475);
  const Zpp16s mantissa[2] = {predicted[0].mantissa(), predicted[1].mantissa()};

  GainMeasures earlier = {};
  for (int k = 0; k < kTerms; ++k) earlier.term[k] = {saved.value[k], saved.exponent[k]};
  Zpp16s exponent[2][kTerms];
  termExponents(earlier, subSat16(predicted[0].log.hi, 11), exponent[0]);
  termExponents(m, subSat16(predicted[1].log.hi, 11), exponent[1]);
  const int weight = balance({saved.targetValue, saved.targetExponent}, energyOfTarget(task.target));
  for (Zpp16s& e : exponent[0]) e = addSat16(e, weight);

  Zpp16s largest = exponent[0][0];
  for (const auto& subframe : exponent)
    for (const Zpp16s e : subframe) largest = e > largest ? e : largest;
  largest = addSat16(largest, 1);
  GainCriterion criteria[2] = {{{}, mantissa[0]}, {{}, mantissa[1]}};
  for (int k = 0; k < kTerms; ++k) {
    criteria[0].term[k] = inScale(earlier.term[k].value, exponent[0][k], largest);
    criteria[1].term[k] = inScale(m.term[k].value, exponent[1][k], largest);
  }
  const int best = ownGainSearch_GSMAMR_16s(criteria, tableGainMR475[0][0], 256, 2, limit);

  // Both gains enter the memory; the odd subframe's are predicted from the even one's quantised gain after all.
  const auto& entry = tableGainMR475[best];
  for (int half = 0; half < 2; ++half) {
    if (half == 1) predicted[1] = predictGain(task.code, gainMem, k475);
    pitchGain[half] = entry[half][0];
    codeGain[half] = scaledGain(entry[half][1], predicted[half].mantissa(), 10, predicted[half].log.hi);
    pushFactor(gainMem, entry[half][1]);
  }
  *idx = static_cast<Zpp16s>(best);
}
