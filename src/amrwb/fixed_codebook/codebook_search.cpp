// Search of the algebraic codebook (3GPP TS 26.190 clauses 5.8.3 and 5.8.4).
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/fixed_codebook/kernels.h"
#include "amrwb/fixed_codebook/pulse_numbering.h"
#include "amrwb/fixed_codebook/search.h"
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kMaxPulses = 24;
constexpr Zpp16s kPulse = 512;  // 1.0, Q9

// How a rate searches: pulses placed in the tracks' best positions, then pairs of pulses. The candidates of the first pulse of
// a pair are the best positions of its track.
struct Plan {
  int pulses, iterations, placed;
  Zpp8u candidates[10];  // of each pair
  Zpp16s targetWeight;   // of the backward-filtered target against the residual's in the choice of signs, Q15
};
constexpr Plan kPlans[9] = {
    {2, 1, 0, {}, 8192},
    {4, 4, 0, {4, 8}, 8192},
    {8, 4, 2, {4, 8, 8}, 4096},
    {10, 4, 2, {4, 6, 8, 8}, 4096},
    {12, 4, 4, {4, 6, 8, 8}, 4096},
    {16, 3, 4, {4, 4, 6, 6, 8, 8}, 3277},
    {18, 3, 4, {2, 3, 4, 5, 6, 7, 8}, 3072},
    {24, 2, 4, {2, 2, 3, 4, 5, 6, 7, 8, 8, 8}, 2048},
    {24, 1, 4, {2, 2, 3, 4, 5, 6, 7, 8, 8, 8}, 2048},
};

// Track of a pulse: the four tracks in turn, starting one later in each iteration and after each four pulses (tipos). Where two
// tracks hold a pulse more than the others, these are tracks 0 and 1.
constexpr int trackOf(Mode mode, int iteration, int pulse) {
  if ((mode == mode1425 && pulse >= 8) || (mode == mode1985 && pulse >= 16)) return pulse % 2;
  return (iteration + pulse / kTracks + pulse) % kTracks;
}

// Correlation of the target with the response to a pulse at every position
void backwardFilter(const Zpp16s* target, const Zpp16s* impulse, Zpp32s* sums) {
  if (productsFit(ownDotProd_16s(target, target, kSubframe), ownDotProd_16s(impulse, impulse, kSubframe))) {
    ownPartialCorr_16s32s(impulse, target, kSubframe, sums, kSubframe);
    for (int n = 0; n < kSubframe; ++n) sums[n] = 2 * sums[n] + 1;
  } else {
    for (int i = 0; i < kSubframe; ++i) sums[i] = dotProductStepwise(impulse, target + i, kSubframe - i, 1);
  }
}

// Signs, signed correlations and ranks of all positions. Out of line, like the two-pulse search: the scratch space of the steps
// must not add up.
[[gnu::noinline]] void weighPositions(const Zpp16s* target, const Zpp16s* residualTarget, const Zpp16s* impulse, Zpp16s weight,
                                      PulseTarget& t, Zpp16s* rank) {
  alignas(16) Zpp32s sums[kSubframe];
  backwardFilter(target, impulse, sums);
  ownChooseSigns_AMRWB_16s(sums, residualTarget, weight, &t, rank);
}

// The response with zeros before, and negated: added at any position it costs no test.
struct SignedResponse {
  Zpp16s positive[2 * kSubframe] = {}, negative[2 * kSubframe] = {};
  Zpp64s energy;

  SignedResponse(const Zpp16s* impulse, int shift) {
    for (int n = 0; n < kSubframe; ++n) {
      positive[kSubframe + n] = static_cast<Zpp16s>(impulse[n] >> shift);
      negative[kSubframe + n] = negSat16(positive[kSubframe + n]);
    }
    energy = ownDotProd_16s(positive + kSubframe, positive + kSubframe, kSubframe);
  }
  const Zpp16s* impulse() const { return positive + kSubframe; }
  // of a pulse at a position, from sample 0 on
  const Zpp16s* at(int position, bool isNegative) const { return (isNegative ? negative : positive) + kSubframe - position; }
};

// Two pulses, one at an even and one at an odd position (6.60 kbit/s)
[[gnu::noinline]] void searchTwoPulses(const PulseTarget& t, const SignedResponse& response, Zpp16s* code, Zpp16s* filteredCode,
                                       Zpp16s* index) {
  const Zpp16s* const h = response.impulse();
  Zpp16s energy[kSubframe];
  Zpp32s sum = 0x10000;
  for (int n = 0; n < kSubframe; ++n) {
    sum = macDbl(sum, h[n], h[n]);
    energy[placeOf(kSubframe - 1 - n)] = static_cast<Zpp16s>(high16(sum) >> 1);
  }
  const PulsePair best = ownSearchTwoPulses_AMRWB_16s(&t, energy);
  const int even = best.first, odd = best.second;
  const bool evenNegative = t.sign[placeOf(even)] < 0, oddNegative = t.sign[placeOf(odd)] < 0;
  code[even] = evenNegative ? -kPulse : kPulse;
  code[odd] = oddNegative ? -kPulse : kPulse;
  const Zpp16s *first = response.at(even, evenNegative), *second = response.at(odd, oddNegative);
  for (int n = 0; n < kSubframe; ++n) filteredCode[n] = static_cast<Zpp16s>((addSat16(first[n], second[n]) + 4) >> 3);
  index[0] = static_cast<Zpp16s>(64 * (even / 2 + (evenNegative ? 32 : 0)) + odd / 2 + (oddNegative ? 32 : 0));
}

// Pulses placed so far, and what they give
struct Placement {
  Zpp8u position[kMaxPulses];  // 0..63, in order of placing
  int count = 0;
  Zpp16s corr = 0, energy = 0;
  Zpp16s filtered[kSubframe] = {};

  void place(int at, const PulseTarget& t, const SignedResponse& response) {
    const Zpp16s* added = response.at(at, t.sign[placeOf(at)] < 0);
    position[count++] = static_cast<Zpp8u>(at);
    ownAdd_16s(filtered, added, filtered, kSubframe);
  }
};

// The first pulses, at the best positions of their tracks
void placeFirst(Placement& p, const Plan& plan, Mode mode, int iteration, const int* bestOfTrack, const PulseTarget& t,
                const SignedResponse& response) {
  for (int pulse = 0; pulse < plan.placed; ++pulse) {
    const int track = trackOf(mode, iteration, pulse);
    p.corr = addSat16(p.corr, t.corr[16 * track + bestOfTrack[track]]);
    p.place(kTracks * bestOfTrack[track] + track, t, response);
  }
  if (plan.placed == 2) {
    const int track = trackOf(mode, iteration, 0), next = (track + 1) % kTracks;
    const int i = bestOfTrack[track], j = bestOfTrack[next];
    const Zpp32s energies = macDbl(mulDbl(t.energy[16 * track + i], 4096), t.energy[16 * next + j], 4096);
    p.energy = roundHigh16(macDbl(energies, t.cross[track][16 * i + j], 8192));
  } else if (plan.placed == 4) {
    p.energy = roundHigh16(energy(p.filtered, kSubframe) >> 3);
  }
}

void placePairs(Placement& p, const Plan& plan, Mode mode, int iteration, const Zpp16s* rank, const PulseTarget& t,
                const SignedResponse& response) {
  // The filtered code has at most as many times the response's norm as it has pulses. By Cauchy and Schwarz:
  const bool fits = response.energy * plan.pulses < 1 << 30;
  for (int pair = 0; p.count < plan.pulses; ++pair) {
    const int track = trackOf(mode, iteration, p.count), next = (track + 1) % kTracks;
    Zpp16s gain[2 * kTrackPositions], candidate[kTrackPositions];
    ownPulseGains_AMRWB_16s(response.impulse(), p.filtered, &t, track, gain,
                            fits || productsFit(response.energy, ownDotProd_16s(p.filtered, p.filtered, kSubframe)));
    for (int i = 0; i < kTrackPositions; ++i) candidate[i] = rank[16 * track + i] < plan.candidates[pair] ? -1 : 0;
    const PulsePair best = ownSearchPulsePair_AMRWB_16s(&t, track, p.corr, p.energy, gain, candidate);
    p.corr = addSat16(p.corr, addSat16(t.corr[16 * track + best.first], t.corr[16 * next + best.second]));
    p.energy = best.energy;
    // Both responses together first: their sum may saturate.
    const int x = kTracks * best.first + track, y = kTracks * best.second + next;
    const Zpp16s *first = response.at(x, t.sign[16 * track + best.first] < 0),
                 *second = response.at(y, t.sign[16 * next + best.second] < 0);
    Zpp16s both[kSubframe];
    ownAdd_16s(first, second, both, kSubframe);
    ownAdd_16s(p.filtered, both, p.filtered, kSubframe);
    p.position[p.count++] = static_cast<Zpp8u>(x);
    p.position[p.count++] = static_cast<Zpp8u>(y);
  }
}

// Code vector and index words
void writeCode(const Placement& p, const PulseTarget& t, Zpp16s pulse, Zpp16s* code, Zpp16s* index, Mode mode) {
  Zpp8u pulses[kTracks][kMaxTrackPulses];
  int count[kTracks] = {};
  for (int k = 0; k < p.count; ++k) {
    const int position = p.position[k], track = position % kTracks;
    const bool negative = t.sign[placeOf(position)] < 0;
    code[position] = static_cast<Zpp16s>(code[position] + (negative ? -pulse : pulse));
    pulses[track][count[track]++] = static_cast<Zpp8u>(position / kTracks + (negative ? kNegative : 0));
  }
  for (int track = 0; track < kTracks; ++track) {
    const Zpp32s number = numberOfPulses(pulses[track], count[track]);
    const int lowBits = mode > mode1585 ? kLowWordBits[count[track]] : 0;
    index[track] = static_cast<Zpp16s>(number >> lowBits);
    if (lowBits > 0) index[track + kTracks] = static_cast<Zpp16s>(number & ((1 << lowBits) - 1));
  }
}

}  // namespace

ZppStatus zppsAlgebraicCodebookSearch_AMRWB_16s(const Zpp16s* target, const Zpp16s* residualTarget, const Zpp16s* impulse,
                                                Zpp16s* code, Zpp16s* filteredCode, Zpp16s* index, ZppSpeechRate rate) {
  if (anyNull(target, residualTarget, impulse, code, filteredCode, index)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownAlgebraicCodebookSearch_AMRWB_16s(target, residualTarget, impulse, code, filteredCode, index, modeOf(rate));
  return zppStsOk;
}

void ownAlgebraicCodebookSearch_AMRWB_16s(const Zpp16s* target, const Zpp16s* residualTarget, const Zpp16s* impulse,
                                          Zpp16s* code, Zpp16s* filteredCode, Zpp16s* index, Mode mode) {
  const Plan& plan = kPlans[mode];
  PulseTarget t;
  Zpp16s rank[kSubframe];
  weighPositions(target, residualTarget, impulse, plan.targetWeight, t, rank);
  // With many pulses a strong response is halved, so that their sum has room; the code then is in Q8.
  const int halved = plan.pulses >= 12 && high16(energy(impulse, kSubframe)) > 1024 ? 1 : 0;
  const SignedResponse response(impulse, halved);
  ownPulseCorrelations_AMRWB_16s(response.impulse(), &t);
  std::fill_n(code, kSubframe, Zpp16s{0});
  if (mode == mode660) return searchTwoPulses(t, response, code, filteredCode, index);

  int bestOfTrack[kTracks];
  for (int track = 0; track < kTracks; ++track)
    bestOfTrack[track] = static_cast<int>(std::find(rank + 16 * track, rank + 16 * (track + 1), 0) - (rank + 16 * track));
  Placement best;
  BestRatio bestRatio;
  for (int iteration = 0; iteration < plan.iterations; ++iteration) {
    Placement p;
    placeFirst(p, plan, mode, iteration, bestOfTrack, t, response);
    placePairs(p, plan, mode, iteration, rank, t, response);
    const Zpp16s square = mulQ15(p.corr, p.corr);
    const bool better = bestRatio.isBelow(square, p.energy);
    if (better) bestRatio = {square, p.energy};
    // Rounding may leave an energy below 0, which passes no test; the first iteration's pulses stand for such a case.
    if (better || iteration == 0) best = p;
  }
  for (int n = 0; n < kSubframe; ++n) filteredCode[n] = static_cast<Zpp16s>((best.filtered[n] + 4) >> 3);
  writeCode(best, t, static_cast<Zpp16s>(kPulse >> halved), code, index, mode);
}
