// Search of the algebraic codebook: portable kernels.
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/fixed_codebook/kernels.h"
#include "amrwb/fixed_codebook/search.h"

using namespace zpp;
using namespace zpp::amrwb;

void ownChooseSigns_AMRWB_16s_PX(const Zpp32s* sums, const Zpp16s* residualTarget, Zpp16s weight, PulseTarget* target,
                                 Zpp16s* rank) {
  // Scaled to three bits of headroom above the sum of the tracks' largest
  Zpp32s total = 1;
  for (int track = 0; track < 4; ++track) {
    Zpp32s largest = 0;
    for (int i = track; i < kSubframe; i += 4) largest = std::max(largest, absSat32(sums[i]));
    largest >>= 2;
    total = addSat32(addSat32(total, largest), largest >> 1);
  }
  const int shift = norm32(total) - 4;
  Zpp16s corr[kSubframe], merit[kSubframe];
  for (int n = 0; n < kSubframe; ++n) corr[n] = roundHigh16(shlSat32(sums[n], shift));

  const SignGains gains(residualTarget, corr, weight);
  for (int n = 0; n < kSubframe; ++n) {
    const Zpp16s b = high16(shlSat32(macDbl(mulDbl(gains.residual, residualTarget[n]), gains.corr, corr[n]), 8));
    const int place = placeOf(n);
    target->sign[place] = b < 0 ? kNegativeSign : kPositive;
    target->corr[place] = b < 0 ? negSat16(corr[n]) : corr[n];
    merit[place] = b < 0 ? negSat16(b) : b;
  }
  for (int first = 0; first < kSubframe; first += 16)
    for (int i = first; i < first + 16; ++i) {
      rank[i] = 0;
      for (int k = first; k < first + 16; ++k)
        rank[i] = static_cast<Zpp16s>(rank[i] + (k < i ? merit[k] >= merit[i] : merit[k] > merit[i]));
    }
}

void ownPulseCorrelations_AMRWB_16s_PX(const Zpp16s* impulse, PulseTarget* target) {
  // A response that starts at x ends after 63 - x samples: the sums over the samples that two responses share are the partial
  // sums of one autocorrelation lag.
  Zpp32s sum = 0x8000;
  for (int n = 0; n < kSubframe; ++n) {
    sum = macDbl(sum, impulse[n], impulse[n]);
    target->energy[placeOf(kSubframe - 1 - n)] = high16(sum);
  }
  for (int distance = 1; distance < kSubframe; distance += 2) {
    sum = 0x8000;
    for (int n = 0; n + distance < kSubframe; ++n) {
      sum = macDbl(sum, impulse[n], impulse[n + distance]);
      const int later = kSubframe - 1 - n, earlier = later - distance;
      // Neighbours in track order: the first is the earlier at distances 1, 5, 9 and so on.
      const int first = distance % 4 == 1 ? earlier : later, second = distance % 4 == 1 ? later : earlier;
      const bool equal = (target->sign[placeOf(first)] ^ target->sign[placeOf(second)]) >= 0;
      target->cross[first % 4][16 * (first / 4) + second / 4] = mulQ15(high16(sum), equal ? kPositive : kNegativeSign);
    }
  }
}

void ownPulseGains_AMRWB_16s_PX(const Zpp16s* impulse, const Zpp16s* filteredCode, const PulseTarget* target, int track,
                                Zpp16s* gain, bool exact) {
  for (int n = 0; n < 32; ++n) {
    const int position = 4 * (n % 16) + (track + n / 16) % 4, place = placeOf(position);
    const Zpp32s sum = exact ? 2 * static_cast<Zpp32s>(ownDotProd_16s(impulse, filteredCode + position, kSubframe - position))
                             : dotProductStepwise(impulse, filteredCode + position, kSubframe - position, 0);
    gain[n] = addSat16(mulQ15(roundHigh16(shlSat32(sum, 1)), target->sign[place]), target->energy[place]);
  }
}

PulsePair ownSearchPulsePair_AMRWB_16s_PX(const PulseTarget* target, int track, Zpp16s corr, Zpp16s energy, const Zpp16s* gain,
                                          const Zpp16s* candidate) {
  const Zpp16s *corr1 = target->corr + 16 * track, *corr2 = target->corr + 16 * ((track + 1) % 4);
  const Zpp16s* gain2 = gain + 16;
  PulsePair best = {0, 0, 1};
  Zpp16s bestSquare = -1;
  for (int i = 0; i < 16; ++i) {
    if (!candidate[i]) continue;
    const Zpp16s partCorr = addSat16(corr, corr1[i]);
    const Zpp32s partEnergy = macDbl(addSat32(fromHigh16(energy), 0x8000), gain[i], 4096);
    const Zpp16s* cross = target->cross[track] + 16 * i;
    for (int j = 0; j < 16; ++j) {
      const Zpp16s sum = addSat16(partCorr, corr2[j]);
      const Zpp16s square = mulQ15(sum, sum);
      const Zpp16s alp = high16(macDbl(macDbl(partEnergy, gain2[j], 4096), cross[j], 8192));
      if (isBetter(square, alp, bestSquare, best.energy)) {
        bestSquare = square;
        best = {static_cast<Zpp16s>(i), static_cast<Zpp16s>(j), alp};
      }
    }
  }
  return best;
}
