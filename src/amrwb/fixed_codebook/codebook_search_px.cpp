// Search of the algebraic codebook: portable kernels.
#include <algorithm>
#include <type_traits>

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

namespace {

// Cross terms in magnitude and sign of the correlations alone; the pulses' signs follow.
template <class Accumulate>
void correlate(const Zpp16s* impulse, PulseTarget* target, Accumulate accumulate) {
  // A response that starts at x ends after 63 - x samples: the sums over the samples that two responses share are the partial
  // sums of one autocorrelation lag.
  Zpp32s sum = 0x8000;
  for (int n = 0; n < kSubframe; ++n) {
    sum = accumulate(sum, impulse[n], impulse[n]);
    target->energy[placeOf(kSubframe - 1 - n)] = high16(sum);
  }
  for (int distance = 1; distance < kSubframe; distance += 2) {
    // Where the terms of pulses at 63 - n and `distance` before go, for each n % 4: four samples later, that is one row and one
    // column before. Neighbours in track order: the first pulse is the earlier one at distances 1, 5, 9 and so on.
    Zpp16s* const cells = target->cross[0];
    int to[4];
    for (int n = 0; n < 4; ++n) {
      const int later = 2 * kSubframe - 1 - n, earlier = later - distance;  // a multiple of 4 up, lest they are below 0
      const int first = distance % 4 == 1 ? earlier : later, second = distance % 4 == 1 ? later : earlier;
      to[n] = 256 * (first % 4) + 16 * (first / 4) + second / 4 - 17 * kSubframe / 4;
    }
    sum = 0x8000;
    for (int n = 0; n + distance < kSubframe; ++n) {
      sum = accumulate(sum, impulse[n], impulse[n + distance]);
      cells[to[n % 4]] = high16(sum);
      to[n % 4] -= 17;
    }
  }
}

}  // namespace

void ownPulseCorrelations_AMRWB_16s_PX(const Zpp16s* impulse, PulseTarget* target) {
  // All sums are partial sums of autocorrelation lags: none saturates if the energy does not.
  if (ownDotProd_16s(impulse, impulse, kSubframe) <= (kMax32 - 0x8000) / 2)
    correlate(impulse, target, [](Zpp32s sum, Zpp16s a, Zpp16s b) { return sum + 2 * a * b; });
  else
    correlate(impulse, target, macDbl);
  for (int track = 0; track < 4; ++track) {
    const Zpp16s *sign1 = target->sign + 16 * track, *sign2 = target->sign + 16 * ((track + 1) % 4);
    for (int i = 0; i < 16; ++i) {
      Zpp16s* const row = target->cross[track] + 16 * i;
      for (int j = 0; j < 16; ++j) {
        // The product with the sign: 32767 rounds downwards, and -32768 gives what -32767 does.
        const Zpp16s value = std::max<Zpp16s>(row[j], -kMax16);
        row[j] = static_cast<Zpp16s>((sign1[i] ^ sign2[j]) < 0 ? -value : value - (value > 0));
      }
    }
  }
}

void ownPulseGains_AMRWB_16s_PX(const Zpp16s* impulse, const Zpp16s* filteredCode, const PulseTarget* target, int track,
                                Zpp16s* gain, bool exact) {
  Zpp16s code[kSubframe + 16] = {};  // silence follows
  std::copy_n(filteredCode, kSubframe, code);
  // Of four positions; the response to the last of them ends after 64 - 16 quarter samples.
  const auto ofQuarter = [&](auto quarter) {
    constexpr int length = kSubframe - 16 * quarter;
    for (int k = 0; k < 2; ++k)
      for (int i = 4 * quarter; i < 4 * quarter + 4; ++i) {
        const int position = 4 * i + (track + k) % 4, place = placeOf(position);
        const Zpp32s sum = exact ? 2 * exactDotProduct<length>(impulse, code + position)
                                 : dotProductStepwise(impulse, code + position, length, 0);
        gain[16 * k + i] = addSat16(mulQ15(roundHigh16(shlSat32(sum, 1)), target->sign[place]), target->energy[place]);
      }
  };
  ofQuarter(std::integral_constant<int, 0>{});
  ofQuarter(std::integral_constant<int, 1>{});
  ofQuarter(std::integral_constant<int, 2>{});
  ofQuarter(std::integral_constant<int, 3>{});
}

namespace {

template <class Add>
PulsePair searchPulsePair(const PulseTarget* target, int track, Zpp16s corr, Zpp16s energy, const Zpp16s* gain,
                          const Zpp16s* candidate, Add add) {
  const Zpp16s *corr1 = target->corr + 16 * track, *corr2 = target->corr + 16 * ((track + 1) % 4);
  const Zpp16s* gain2 = gain + 16;
  PulsePair best = {0, 0, 1};
  BestRatio ratio;
  for (int i = 0; i < 16; ++i) {
    if (!candidate[i]) continue;
    const Zpp16s partCorr = addSat16(corr, corr1[i]);
    const Zpp32s partEnergy = add(add(fromHigh16(energy), 0x8000), gain[i] * 8192);
    const Zpp16s* cross = target->cross[track] + 16 * i;
    Zpp16s square[16], alp[16];
    for (int j = 0; j < 16; ++j) {
      const Zpp16s sum = addSat16(partCorr, corr2[j]);
      square[j] = mulQ15(sum, sum);
      alp[j] = high16(add(add(partEnergy, gain2[j] * 8192), cross[j] * 16384));
    }
    for (int j = 0; j < 16; ++j) {
      if (!ratio.isBelow(square[j], alp[j])) continue;
      ratio = {square[j], alp[j]};
      best = {static_cast<Zpp16s>(i), static_cast<Zpp16s>(j), alp[j]};
    }
  }
  return best;
}

}  // namespace

PulsePair ownSearchPulsePair_AMRWB_16s_PX(const PulseTarget* target, int track, Zpp16s corr, Zpp16s energy, const Zpp16s* gain,
                                          const Zpp16s* candidate) {
  // The three terms that are added to the energy stay below 2^30 together.
  if (energy < 16383 && energy > -16383)
    return searchPulsePair(target, track, corr, energy, gain, candidate, [](Zpp32s a, Zpp32s b) { return a + b; });
  return searchPulsePair(target, track, corr, energy, gain, candidate, addSat32);
}

PulsePair ownSearchTwoPulses_AMRWB_16s_PX(const PulseTarget* target, const Zpp16s* energy) {
  PulsePair best = {0, 1, 1};
  BestRatio ratio;
  // Odd positions, in their order
  constexpr int count = kSubframe / 2;
  Zpp16s corr2[count], energy2[count];
  for (int k = 0; k < count; ++k) {
    corr2[k] = target->corr[placeOf(2 * k + 1)];
    energy2[k] = energy[placeOf(2 * k + 1)];
  }
  for (int even = 0; even < kSubframe; even += 2) {
    // Tracks 0 and 2 are the first of a pair with one odd track and the second with the other.
    const int track = even % 4, i = even / 4;
    const Zpp16s *row = target->cross[track] + 16 * i, *column = target->cross[(track + 3) % 4] + i;
    const Zpp16s corr1 = target->corr[placeOf(even)], energy1 = energy[placeOf(even)];
    Zpp16s cross[count], square[count], alp[count];
    for (int j = 0; j < 16; ++j) {
      cross[2 * j + track / 2] = row[j];
      cross[2 * j + 1 - track / 2] = column[16 * j];
    }
    for (int k = 0; k < count; ++k) {
      const Zpp16s sum = addSat16(corr1, corr2[k]);
      square[k] = mulQ15(sum, sum);
      alp[k] = addSat16(energy1, addSat16(energy2[k], cross[k]));
    }
    for (int k = 0; k < count; ++k) {
      if (!ratio.isBelow(square[k], alp[k])) continue;
      ratio = {square[k], alp[k]};
      best = {static_cast<Zpp16s>(even), static_cast<Zpp16s>(2 * k + 1), alp[k]};
    }
  }
  return best;
}
