// Multipulse excitation of 6.3 kbit/s (ITU-T G.723.1 clause 2.15, MP-MLQ).
#include <algorithm>
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/fixed_codebook/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kTrainLags = 58;                   // lags below it may have a pulse train
constexpr int kTriedBelow = 2, kTriedAbove = 1;  // gain levels tried around the one that the first pulse suggests

// The best set of pulses so far
struct Best {
  Zpp32s fit = -(1 << 30);
  PulseSet set{};
  int level = 0, grid = 0;
  bool train = false;
};

// The gain level (2..22) whose pulse comes nearest to the largest correlation
int nearestLevel(Zpp32s largest, Zpp16s energy) {
  int level = 22;
  Zpp32s least = 1 << 30;
  for (int i = level; i >= kTriedBelow; --i) {
    const Zpp32s distance = absSat32(subSat32(mulDbl(FcbkGainTable[i], energy), largest));
    if (distance < least) least = distance, level = i;
  }
  return level;
}

void searchGrid(const Zpp16s* target, const Zpp16s* response, const Zpp32s* correlations, const Zpp16s* autocorr, bool train,
                int grid, int pulses, Best& best) {
  Zpp32s scores[kPulsePlaces];
  Zpp32s largest = -1;
  int first = 0;
  for (int i = 0; i < kPulsePlaces; ++i) {
    scores[i] = correlations[2 * i + grid];
    const Zpp32s magnitude = absSat32(scores[i]);
    if (magnitude >= largest) largest = magnitude, first = i;
  }
  const int nearest = nearestLevel(largest, autocorr[0]);
  for (int level = nearest - kTriedBelow; level <= nearest + kTriedAbove; ++level) {
    const Zpp16s amplitude = FcbkGainTable[level];
    PulseSet set{pulses, {static_cast<Zpp16s>(first)}, {scores[first] < 0 ? negSat16(amplitude) : amplitude}};
    ownMultiPulseSet_G723_16s32s(scores, autocorr, &set);
    const Zpp32s fit = ownMultiPulseFit_G723_16s32s(target, response, grid, &set);
    if (fit > best.fit) best = {fit, set, level, grid, train};
  }
}

void searchGrids(const Zpp16s* target, const Zpp16s* response, bool train, int pulses, Best& best) {
  Zpp16s halved[kSubframe];
  Zpp32s sums[kSubframe];
  for (int n = 0; n < kSubframe; ++n) halved[n] = static_cast<Zpp16s>(response[n] >> 1);
  ownCorrelationChains_G723_16s32s(halved, halved, sums);
  const int norm = norm32(sums[0]);
  Zpp16s autocorr[kPulsePlaces];
  for (int i = 0; i < kPulsePlaces; ++i) autocorr[i] = roundHigh16(shlSat32(sums[2 * i], norm));
  ownCorrelationChains_G723_16s32s(response, target, sums);
  for (Zpp32s& sum : sums) sum = shlSat32(sum, norm - 4);
  for (int grid = 0; grid < 2; ++grid) searchGrid(target, response, sums, autocorr, train, grid, pulses, best);
}

// Number of the combination of places, and signs in ascending order of the places
void encode(const PulseSet& set, Zpp32s* number, Zpp32s* signs) {
  Zpp16s pulses[kPulsePlaces] = {};
  for (int k = 0; k < set.count; ++k) pulses[set.place[k]] = set.amplitude[k];
  *number = *signs = 0;
  for (int i = 0, j = kMaxPulses - set.count; j < kMaxPulses; ++i) {
    if (pulses[i] == 0) {
      *number += CombinatorialTable[j][i];
      continue;
    }
    *signs = 2 * *signs + (pulses[i] < 0 ? 1 : 0);
    ++j;
  }
}

}  // namespace

ZppStatus zppsMultiPulseSearch_G723_16s32s(const Zpp16s* target, const Zpp16s* impulse, Zpp32s* codeword, Zpp16s lag,
                                           int subframe) {
  if (anyNull(target, impulse, codeword)) return zppStsNullPointer;
  if (outside(subframe, 0, 3)) return zppStsOutOfRange;
  if (outside<int>(lag, 18, 141)) return zppStsBadCodedParam;
  ownMultiPulseSearch_G723_16s32s(target, impulse, codeword, lag, subframe);
  return zppStsOk;
}

void ownMultiPulseSearch_G723_16s32s(const Zpp16s* target, const Zpp16s* impulse, Zpp32s* codeword, int lag, int subframe) {
  Best best;
  searchGrids(target, impulse, false, Nb_puls[subframe], best);
  if (lag < kTrainLags) {
    Zpp16s response[kSubframe];
    ownPulseTrain_G723_16s(impulse, response, lag);
    searchGrids(target, response, true, Nb_puls[subframe], best);
  }
  std::fill_n(codeword, 5, 0);
  if (best.set.count == 0) return;  // nothing came up to the least score
  codeword[0] = best.level;
  codeword[1] = best.grid;
  codeword[2] = best.train ? 1 : 0;
  encode(best.set, &codeword[3], &codeword[4]);
}
