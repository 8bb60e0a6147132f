// Quantisation of the gains at 7.95 kbit/s (3GPP TS 26.090 clause 5.8): three pitch gains with all code gains by the weighted
// error, then the code gain anew by a criterion that also keeps the energy of the excitation, where prediction gains little.
#include "amr/gain/kernels.h"
#include "amr/gain/measures.h"
#include "amr/gain/tables.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

constexpr int kFactors = 32, kCandidates = 3, kLtpGains = 5;

struct Choice {
  int pitch, code;
};

// The first of three indices around the nearest one that the limit admits
int firstCandidate(Zpp16s limit, Zpp16s gain) {
  const int nearest = ownPitchGainIndex_GSMAMR(limit, gain);
  if (nearest == 0) return 0;
  const int first = nearest == 15 || quaGainPitch[nearest + 1] > limit ? nearest - 2 : nearest - 1;
  return first < 0 ? 0 : first;  // only with limits that no encoder sets
}

// x * y in double precision, half of what macDpf adds
Zpp32s halfProduct(Dpf x, Dpf y) { return x.hi * y.hi + ((x.hi * y.lo) >> 15) + ((x.lo * y.hi) >> 15); }

Choice searchWaveform(const GainMeasures& measures, int first, const PredictedGain& predicted, Zpp16s mantissa) {
  Zpp16s exponent[kTerms];
  termExponents(measures, subSat16(predicted.log.hi, 10), exponent);
  Zpp16s largest = exponent[0];
  for (const Zpp16s e : exponent) largest = e > largest ? e : largest;
  largest = addSat16(largest, 1);
  Dpf term[kTerms];
  for (int k = 0; k < kTerms; ++k) term[k] = inScale(measures.term[k].value, exponent[k], largest);

  // Halves of the terms of the code alone. Where all sums stay within the bound, with a margin for the steps within a product,
  // no step of the standard saturates, and the order in which they are added makes no difference.
  constexpr Zpp32s kBound = (1 << 30) - (1 << 18);
  struct {
    Zpp16s gain;
    Dpf square;
    Zpp32s squareTerm, gainTerm;
  } factors[kFactors];
  for (int code = 0; code < kFactors; ++code) {
    auto& f = factors[code];
    f.gain = mulQ15(quaGainCode[code][0], mantissa);
    f.square = toDpf(mulDbl(f.gain, f.gain));
    f.squareTerm = halfProduct(term[2], f.square);
    f.gainTerm = term[3].hi * f.gain + ((term[3].lo * f.gain) >> 15);
  }
  Zpp32s least = kMax32;
  Choice best = {first, 0};
  for (int pitch = first; pitch < first + kCandidates; ++pitch) {
    const Zpp16s gp = quaGainPitch[pitch];
    const Zpp32s pitchError = macDpf16(zpp::mulDpf16(term[0], mulQ15(gp, gp)), term[1], gp);
    const Zpp32s start = pitchError >> 1;
    const bool startsSafe = start > -kBound && start < kBound;
    for (int code = 0; code < kFactors; ++code) {
      const auto& f = factors[code];
      const Dpf both = toDpf(mulDbl(f.gain, gp));
      const Zpp32s sum1 = addWrap32(start, f.squareTerm), sum2 = addWrap32(sum1, f.gainTerm);
      const Zpp32s sum3 = addWrap32(sum2, halfProduct(term[4], both));
      const auto beyond = [](Zpp32s sum) { return static_cast<Zpp32u>(sum) + kBound > 2u * kBound; };
      Zpp32s error = shlWrap32(sum3, 1);
      if (!startsSafe || beyond(sum1) || beyond(sum2) || beyond(sum3)) [[unlikely]]
        error = macDpf(macDpf16(macDpf(pitchError, term[2], f.square), term[3], f.gain), term[4], both);
      if (error < least) least = error, best = {pitch, code};
    }
  }
  return best;
}

// Energies of the residual, of the adaptive vector, of both codebooks together and of what prediction leaves
struct Energies {
  Scaled residual, vector, product, remainder;
  Zpp16s ltpGain;  // coding gain of the prediction, Q13 of log2
};

Scaled scaledSum(Zpp32s sum, int exponent) {
  const Normalised n = normalised(sum);
  return {n.value, static_cast<Zpp16s>(exponent - n.shift)};
}

Energies measureEnergies(const GainTask& task, Zpp16s pitchGain) {
  Zpp16s remainder[kSubframe];
  for (int n = 0; n < kSubframe; ++n)
    remainder[n] = subSat16(task.residual[n], roundHigh16(shlSat32(mulDbl(task.vector[n], pitchGain), 1)));
  const Zpp32s residualEnergy = energy(task.residual, kSubframe);
  Energies e = {};
  e.residual = residualEnergy < 400 ? Scaled{0, -15} : scaledSum(residualEnergy, 15);
  e.vector = scaledSum(energy(task.vector, kSubframe), 15);
  e.product = scaledSum(dotProduct(task.vector, task.code, kSubframe), 2);
  e.remainder = scaledSum(energy(remainder, kSubframe), 15);
  if (e.remainder.value > 0 && e.residual.value != 0) {
    const Zpp16s quotient = divQ15(static_cast<Zpp16s>(e.residual.value >> 1), e.remainder.value);
    Dpf log = logarithm(shrRound32(fromHigh16(quotient), e.remainder.exponent - e.residual.exponent + 3));
    log.hi = static_cast<Zpp16s>(log.hi - 27);
    e.ltpGain = roundHigh16(shlSat32(fromDpf(log), 13));
  }
  return e;
}

// The weight of the energy criterion, Q15: 0 where prediction gains much and at onsets. adaptMem: onset count, last weight,
// last code gain, five coding gains.
Zpp16s adaptWeight(Zpp16s ltpGain, Zpp16s codeGain, Zpp16s* adaptMem) {
  Zpp16s &onset = adaptMem[0], &lastWeight = adaptMem[1], &lastCodeGain = adaptMem[2], *gains = adaptMem + 3;
  int level = ltpGain <= 2721 ? 0 : ltpGain <= 5443 ? 1 : 2;
  if (shiftRightRound16(codeGain, 1) > lastCodeGain && codeGain > 200)
    onset = 8;
  else if (onset != 0)
    onset = subSat16(onset, 1);
  if (onset != 0 && level < 2) ++level;

  gains[0] = ltpGain;
  const Zpp16s middle = median(gains, kLtpGains);
  Zpp16s weight = 0;
  if (level == 0 && middle <= 5443) weight = middle < 0 ? Zpp16s{16384} : subSat16(16384, mulQ15(24660, shlSat16(middle, 2)));
  if (lastWeight == 0) weight = static_cast<Zpp16s>(weight >> 1);
  for (int i = kLtpGains - 1; i > 0; --i) gains[i] = gains[i - 1];
  lastWeight = weight;
  lastCodeGain = codeGain;
  return weight;
}

// weight times the difference of the excitation's and the residual's levels, squared, + (1 - weight) times the squared
// difference from the unquantised gain
int searchEnergy(const Energies& e, Scaled codeEnergy, Zpp16s weight, Zpp16s pitchGain, Zpp16s codeGain, Zpp16s unquantised,
                 Zpp16s exponentOfGain, Zpp16s mantissa) {
  const auto weighted = [weight](Scaled s) { return high16(shlSat32(mulDbl(weight, s.value), 1)); };
  const Zpp16s top = shlSat16(codeGain, 10 - exponentOfGain);
  const Zpp32s ofVector = mulDbl(weighted(e.vector), mulQ15(pitchGain, pitchGain));
  const Zpp16s ofProduct = mulQ15(weighted(e.product), pitchGain), ofCode = weighted(codeEnergy);
  const Zpp16s ofError = mulQ15(addSat16(subSat16(32767, weight), 1), codeEnergy.value);
  const int x1 = e.vector.exponent - 15, x2 = e.product.exponent + exponentOfGain - 10;
  const int x3 = codeEnergy.exponent + 2 * exponentOfGain - 7, x4 = x3 + 1;
  const Root residualRoot = squareRoot(mulDbl(weight, e.residual.value));
  const int x0 = e.residual.exponent - (residualRoot.shift + 47);

  const int exponents[4] = {x1, x2, x3, x4};
  int largest = x0 + 31;
  for (const int x : exponents) largest = x > largest ? x : largest;
  const Zpp32s vectorTerm = shiftRight32(ofVector, largest - x1);
  const Dpf productTerm = toDpf(shiftRight32(fromHigh16(ofProduct), largest - x2));
  const Dpf codeTerm = toDpf(shiftRight32(fromHigh16(ofCode), largest - x3));
  const Dpf errorTerm = toDpf(shiftRight32(fromHigh16(ofError), largest - x4));
  const int halvings = largest - 31 - x0;
  Zpp32s residualLevel = shiftRight32(residualRoot.value, halvings >> 1);
  if (halvings % 2 != 0) residualLevel = amr::mulDpf16(residualLevel, 23170);  // the root of a half

  Zpp32s least = kMax32;
  int best = 0;
  for (int n = 0; n < kFactors; ++n) {
    const Zpp16s gain = mulQ15(quaGainCode[n][0], mantissa);
    if (gain >= top) break;
    const Zpp32s excitation = macDpf(macDpf16(vectorTerm, productTerm, gain), codeTerm, toDpf(mulDbl(gain, gain)));
    const Root root = squareRoot(excitation);
    const Zpp16s levels = roundHigh16(subSat32(shr32(root.value, root.shift >> 1), residualLevel));
    const Zpp16s gains = subSat16(gain, unquantised);
    const Zpp32s error = macDpf(mulDbl(levels, levels), errorTerm, toDpf(mulDbl(gains, gains)));
    if (error < least) least = error, best = n;
  }
  return best;
}

}  // namespace

void ownGainQuantMR795_GSMAMR_16s(const GainTask& task, Zpp16s limit, Zpp16s* gainMem, Zpp16s* adaptMem, Zpp16s* pitchGain,
                                  Zpp16s* codeGain, Zpp16s* idx) {
  const PredictedGain predicted = predictGain(task.code, gainMem, k795);
  const GainMeasures measures = measureGains(task, k795);
  const Zpp16s mantissa = predicted.mantissa(), exponent = predicted.log.hi;
  const auto codeGainOf = [&](int code) { return scaledGain(quaGainCode[code][0], mantissa, 9, exponent); };

  Choice choice = searchWaveform(measures, firstCandidate(limit, *pitchGain), predicted, mantissa);
  const Zpp16s gp = quaGainPitch[choice.pitch];
  const Energies energies = measureEnergies(task, gp);
  const Zpp16s weight = adaptWeight(energies.ltpGain, codeGainOf(choice.code), adaptMem);
  if (energies.residual.value != 0 && weight > 0) {
    const Zpp16s unquantised = shlSat16(measures.codeGain.value, measures.codeGain.exponent - exponent + 10);
    choice.code =
        searchEnergy(energies, predicted.codeEnergy, weight, gp, codeGainOf(choice.code), unquantised, exponent, mantissa);
  }

  *pitchGain = gp;
  *codeGain = codeGainOf(choice.code);
  pushEnergy(gainMem, quaGainCode[choice.code][1], quaGainCode[choice.code][2]);
  idx[0] = static_cast<Zpp16s>(choice.pitch);
  idx[1] = static_cast<Zpp16s>(choice.code);
}
