// What the portable and the vector kernels of the pulse searches share (3GPP TS 26.090 clause 5.7).
#pragma once

#include "amr/fixed_codebook/grid.h"
#include "core/fixed_point.h"

// The criterion correlation^2 / energy of a set of pulses, kept as a fraction
struct Criterion {
  Zpp16s square = -1, energy = 1;

  // The difference of two products of 16 bits, of which `square` is never -32768, fits 32 bits.
  constexpr bool beats(const Criterion& best) const { return Zpp32s{best.energy} * square - Zpp32s{best.square} * energy > 0; }
};

// Step k - 1 adds pulse k to the earlier ones. The energy is a weighted mean of earlier energy and matrix entries, weights Q15:
// it never exceeds full scale. Energies have the scale 1/4 for two pulses, 1/16 for three and four.
struct PulseStep {
  Zpp32s before;  // the energy so far; at first the outer pulse's diagonal entry
  Zpp32s own;     // the new pulse's diagonal entry
  Zpp32s cross;   // its entry with each earlier pulse
};
inline constexpr PulseStep kPulseSteps[3] = {{8192, 8192, 16384}, {8192, 2048, 4096}, {32768, 2048, 4096}};

// The search of 8 and 10 pulses adds pairs: weights Q15 of the steps from pulses 2 and 3 to pulses 8 and 9. The inner pulse's
// terms are summed and rounded before the loops. Where the weights add up to more than 1 a sum may saturate.
struct PairStep {
  struct Weights {
    Zpp16s own, each;  // the diagonal entry, the entry with each pulse placed before
  };
  Weights inner, outer;
  Zpp16s ofInner;                        // the inner pulse's sum
  Zpp16s cross;                          // the entry of the two
  bool innerMayExceed, energyMayExceed;  // weights above 1: of the inner sum, of the energy with half of the earlier one
};
inline constexpr PairStep kPairSteps[4] = {{{4096, 8192}, {2048, 4096}, 16384, 4096, false, false},
                                           {{4096, 8192}, {1024, 2048}, 8192, 2048, true, true},
                                           {{2048, 4096}, {512, 1024}, 8192, 1024, false, false},
                                           {{2048, 4096}, {256, 512}, 4096, 512, true, false}};

// One pass of the search of 8 and 10 pulses: the pulses placed so far
struct Placed {
  Zpp16s slots[10];
  int count;
  Zpp16s sum;
  Zpp32s energy;
};
// The best pair of pulses on two tracks, after a pass's earlier ones
struct PairTask {
  const Placed* placed;
  int outerTrack, innerTrack;  // their first slots
};
struct BestPair {
  Criterion reached;
  Zpp16s sum = 0;
  Zpp16s outer, inner;  // slots
};
struct PairSearch {
  const Zpp16s *corr, *matrix;
  const Grid& grid;

  Zpp16s entry(int slot1, int slot2) const { return matrix[slot1 * kSubframe + slot2]; }
  // Energy with one more pulse, saturated after every term as in the standard
  Zpp32s with(Zpp32s energy, const Placed& placed, int slot, PairStep::Weights weights) const {
    energy = zpp::macDbl(energy, entry(slot, slot), weights.own);
    for (int j = 0; j < placed.count; ++j) energy = zpp::macDbl(energy, entry(placed.slots[j], slot), weights.each);
    return energy;
  }
  // The standard's loops over two tracks
  BestPair best(const PairTask& task, const PairStep& step) const;
};

// The passes of the search. The first track keeps its pulse of largest correlation, the other tracks move up by one from pass
// to pass. findPairs(tasks, passes, step, found) finds two more pulses of every pass.
inline constexpr int kMostPasses = 4;
template <class FindPairs>
void searchPairs(const PairSearch& search, const Zpp16s* trackBest, const Zpp16s* trackOrder, Zpp16s* slots, int pulses,
                 FindPairs findPairs) {
  const Grid& grid = search.grid;
  const int passes = grid.tracks - 1;
  const auto trackOf = [&](int pass, int k) {
    const int moved = k == 0 ? 0 : k + pass;
    return trackOrder[moved < pulses ? moved : moved - (pulses - 1)];
  };
  Placed placed[kMostPasses];
  PairTask tasks[kMostPasses];
  BestPair found[kMostPasses];
  for (int pass = 0; pass < passes; ++pass) {
    const Zpp16s first = trackBest[trackOf(pass, 0)], second = trackBest[trackOf(pass, 1)];
    // A sixteenth of the energy of two pulses: weights of 1/4 in all
    const Zpp32s own = search.entry(first, first) + search.entry(second, second), cross = search.entry(first, second);
    placed[pass] = {{first, second}, 2, zpp::addSat16(search.corr[first], search.corr[second]), own * 4096 + cross * 8192};
  }
  for (int k = 2; k < pulses; k += 2) {
    for (int pass = 0; pass < passes; ++pass)
      tasks[pass] = {&placed[pass], trackOf(pass, k) * grid.perTrack, trackOf(pass, k + 1) * grid.perTrack};
    findPairs(tasks, passes, kPairSteps[k / 2 - 1], found);
    for (int pass = 0; pass < passes; ++pass) {
      Placed& p = placed[pass];
      p.slots[k] = found[pass].outer;
      p.slots[k + 1] = found[pass].inner;
      p.count = k + 2;
      p.sum = found[pass].sum;
      p.energy = found[pass].reached.energy * 32768;  // half of it: the scale halves with every pair
    }
  }
  Criterion best;
  for (int k = 0; k < pulses; ++k) slots[k] = grid.slotOf[k];
  for (int pass = 0; pass < passes; ++pass) {
    if (!found[pass].reached.beats(best)) continue;
    best = found[pass].reached;
    for (int k = 0; k < pulses; ++k) slots[k] = placed[pass].slots[k];
  }
}
