// Quantisation of the gains (3GPP TS 26.090 clause 5.8): entries, the joint codebooks, and 12.2 kbit/s.
#include "amr/gain/kernels.h"
#include "amr/gain/measures.h"
#include "amr/gain/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsPitchGainQuant_GSMAMR_16s(Zpp16s limit, Zpp16s* gain, Zpp16s* idx) {
  if (anyNull(gain, idx)) return zppStsNullPointer;
  *idx = static_cast<Zpp16s>(ownPitchGainIndex_GSMAMR(limit, *gain));
  *gain = static_cast<Zpp16s>(quaGainPitch[*idx] & ~3);
  return zppStsOk;
}

ZppStatus zppsGainQuant_GSMAMR_16s(const Zpp16s* target, const Zpp16s* codeTarget, const Zpp16s* filteredVector,
                                   const Zpp16s* filteredCode, const Zpp16s* code, const Zpp16s* residual, const Zpp16s* vector,
                                   const Zpp16s* coefficients, Zpp16s limit, Zpp16s* gainMem, Zpp16s* adaptMem,
                                   Zpp16s* pitchGain, Zpp16s* codeGain, Zpp16s* idx, ZppSpeechRate rate) {
  if (anyNull(target, codeTarget, filteredVector, filteredCode, code, residual, vector, coefficients, gainMem, adaptMem,
              pitchGain, codeGain, idx))
    return zppStsNullPointer;
  if (!isSpeechRate(rate) || rate == ZPP_RATE_4750) return zppStsOutOfRange;
  const GainTask task = {target, codeTarget, filteredVector, filteredCode, code, residual, vector, coefficients};
  if (rate == ZPP_RATE_12200)
    ownGainQuantMR122_GSMAMR_16s(task, gainMem, codeGain, idx);
  else if (rate == ZPP_RATE_7950)
    ownGainQuantMR795_GSMAMR_16s(task, limit, gainMem, adaptMem, pitchGain, codeGain, idx);
  else
    ownGainQuant_GSMAMR_16s(task, limit, gainMem, pitchGain, codeGain, idx, modeOf(rate));
  return zppStsOk;
}

ZppStatus zppsGainQuantFirst_GSMAMR_16s(const Zpp16s* target, const Zpp16s* codeTarget, const Zpp16s* filteredVector,
                                        const Zpp16s* filteredCode, const Zpp16s* code, const Zpp16s* coefficients,
                                        const Zpp16s* gainMem, Zpp16s* unquantMem, Zpp16s* first, Zpp16s* codeGain) {
  if (anyNull(target, codeTarget, filteredVector, filteredCode, code, coefficients, gainMem, unquantMem, first, codeGain))
    return zppStsNullPointer;
  const GainTask task = {target, codeTarget, filteredVector, filteredCode, code, nullptr, nullptr, coefficients};
  ownGainQuantFirst_GSMAMR_16s(task, gainMem, unquantMem, first, codeGain);
  return zppStsOk;
}

ZppStatus zppsGainQuantSecond_GSMAMR_16s(const Zpp16s* target, const Zpp16s* codeTarget, const Zpp16s* filteredVector,
                                         const Zpp16s* filteredCode, const Zpp16s* code, const Zpp16s* coefficients,
                                         Zpp16s limit, const Zpp16s* unquantMem, const Zpp16s* first, Zpp16s* gainMem,
                                         Zpp16s* pitchGain, Zpp16s* codeGain, Zpp16s* idx) {
  if (anyNull(target, codeTarget, filteredVector, filteredCode, code, coefficients, unquantMem, first, gainMem, pitchGain,
              codeGain, idx))
    return zppStsNullPointer;
  const GainTask task = {target, codeTarget, filteredVector, filteredCode, code, nullptr, nullptr, coefficients};
  ownGainQuantSecond_GSMAMR_16s(task, limit, unquantMem, first, gainMem, pitchGain, codeGain, idx);
  return zppStsOk;
}

// Both tables of gains ascend: where the error grows, the best entry has been passed.

int ownPitchGainIndex_GSMAMR(Zpp16s limit, Zpp16s gain) {
  Zpp16s least = absSat16(subSat16(gain, quaGainPitch[0]));
  int best = 0;
  for (int i = 1; i < 16 && quaGainPitch[i] <= limit; ++i) {
    const Zpp16s error = absSat16(subSat16(gain, quaGainPitch[i]));
    if (error > least) break;
    if (error < least) least = error, best = i;
  }
  return best;
}

void ownGainQuant_GSMAMR_16s(const GainTask& task, Zpp16s limit, Zpp16s* gainMem, Zpp16s* pitchGain, Zpp16s* codeGain,
                             Zpp16s* idx, Mode mode) {
  const PredictedGain predicted = predictGain(task.code, gainMem, mode);
  const GainMeasures measures = measureGains(task, mode);
  const Zpp16s mantissa = predicted.mantissa();

  Zpp16s exponent[kTerms];
  termExponents(measures, subSat16(predicted.log.hi, 11), exponent);
  Zpp16s largest = exponent[0];
  for (const Zpp16s e : exponent) largest = e > largest ? e : largest;
  largest = addSat16(largest, 1);
  GainCriterion criterion = {{}, mantissa};
  for (int k = 0; k < kTerms; ++k) criterion.term[k] = inScale(measures.term[k].value, exponent[k], largest);

  const bool high = mode >= k670;
  const Zpp16s(*table)[4] = high ? tableGainHighrates : tableGainLowrates;
  const int best = ownGainSearch_GSMAMR_16s(&criterion, table[0], high ? 128 : 64, 1, limit);
  const Zpp16s* entry = table[best];
  *pitchGain = entry[0];
  *codeGain = scaledGain(entry[1], mantissa, 10, predicted.log.hi);
  pushEnergy(gainMem, entry[2], entry[3]);
  *idx = static_cast<Zpp16s>(best);
}

namespace {

// The code gain that minimises the error, Q1
Zpp16s bestCodeGain(const Zpp16s* codeTarget, const Zpp16s* filteredCode) {
  Zpp16s halved[kSubframe];
  ownRShiftC_16s(filteredCode, halved, kSubframe, 1);
  const Normalised product = normalised(dotProduct(codeTarget, halved, kSubframe, 1));
  const Normalised own = normalised(energy(halved, kSubframe));
  if (product.value <= 0 || own.value == 0) return 0;
  const Zpp16s quotient = divQ15(static_cast<Zpp16s>(product.value >> 1), own.value);
  return shlSat16(shiftRight16(quotient, product.shift + 5 - own.shift), 1);
}

// The entry of 32 whose product with the predicted gain is nearest, the first of equals. Without a gain above 0 the products do
// not ascend, and none is nearer than the first.
int nearestFactor(Zpp16s gain, Zpp16s predicted) {
  if (predicted <= 0) return 0;
  const auto product = [predicted](int n) { return mulQ15(predicted, quaGainCode[n][0]); };
  int below = -1;  // the last product below the gain
  for (int step = 16; step > 0; step /= 2) below += product(below + step) < gain ? step : 0;
  below += below == 30 && product(31) < gain;
  if (below < 0) return 0;
  if (below < 31 && product(below + 1) - gain < gain - product(below)) return below + 1;
  int best = below;
  while (best > 0 && product(best - 1) == product(below)) --best;
  return best;
}

}  // namespace

void ownGainQuantMR122_GSMAMR_16s(const GainTask& task, Zpp16s* gainMem, Zpp16s* codeGain, Zpp16s* idx) {
  const PredictedGain predicted = predictGain(task.code, gainMem, k122);
  const auto halved = static_cast<Zpp16s>(bestCodeGain(task.codeTarget, task.filteredCode) >> 1);
  const Zpp16s gain = shlSat16(low16(ownPow2(predicted.log.hi, predicted.log.lo)), 4);
  const int best = nearestFactor(halved, gain);
  const Zpp16s* entry = quaGainCode[best];
  *codeGain = shlSat16(mulQ15(gain, entry[0]), 1);
  pushEnergy(gainMem, entry[1], entry[2]);
  *idx = static_cast<Zpp16s>(best);
}
