// Searches of the pulse positions: portable kernels.
#include "amr/fixed_codebook/kernels.h"
#include "amr/fixed_codebook/pulse_search.h"

using namespace zpp;

void ownSearchOptimalPulsePos_GSMAMR_16s_PX(const Zpp16s* corr, const Zpp16s* candidate, const Zpp16s* matrix,
                                            const Zpp8u* sequences, int count, int pulses, Zpp16s* slots) {
  const Grid& grid = kFiveTracks;
  const auto entry = [matrix](int slot1, int slot2) { return matrix[slot1 * kSubframe + slot2]; };
  Criterion best;
  for (int k = 0; k < pulses; ++k) slots[k] = grid.slotOf[k];

  for (const Zpp8u* tracks = sequences; tracks != sequences + 4 * count; tracks += 4) {
    for (int number = 0; number < grid.perTrack; ++number) {
      const int outer = tracks[0] * grid.perTrack + number;
      if (candidate[outer] < 0) continue;
      Zpp16s chosen[4] = {static_cast<Zpp16s>(outer)};
      Criterion reached{0, entry(outer, outer)};
      Zpp16s sum = corr[outer];
      for (int k = 1; k < pulses; ++k) {
        const PulseStep& step = kPulseSteps[k - 1];
        const Zpp32s before = reached.energy * step.before + 0x4000;
        const Zpp16s sumBefore = sum;
        const int first = tracks[k] * grid.perTrack;
        reached = {};
        sum = 0;
        chosen[k] = static_cast<Zpp16s>(first);
        for (int slot = first; slot < first + grid.perTrack; ++slot) {
          Zpp32s cross = 0;
          for (int j = 0; j < k; ++j) cross += entry(chosen[j], slot);
          const Zpp16s newSum = addSat16(sumBefore, corr[slot]);
          const Zpp32s energy = before + entry(slot, slot) * step.own + cross * step.cross;
          const Criterion tried{mulQ15(newSum, newSum), static_cast<Zpp16s>(energy >> 15)};
          if (!tried.beats(reached)) continue;
          reached = tried;
          sum = newSum;
          chosen[k] = static_cast<Zpp16s>(slot);
        }
      }
      if (!reached.beats(best)) continue;
      best = reached;
      for (int k = 0; k < pulses; ++k) slots[k] = chosen[k];
    }
  }
}

BestPair PairSearch::best(const PairTask& task, const PairStep& step) const {
  const Placed& placed = *task.placed;
  const int outerTrack = task.outerTrack, innerTrack = task.innerTrack;
  Zpp16s inner[10];
  for (int i = 0; i < grid.perTrack; ++i) inner[i] = roundHigh16(with(0, placed, innerTrack + i, step.inner));
  BestPair best{{}, 0, static_cast<Zpp16s>(outerTrack), static_cast<Zpp16s>(innerTrack)};
  for (int slot1 = outerTrack; slot1 < outerTrack + grid.perTrack; ++slot1) {
    const Zpp16s sum1 = addSat16(placed.sum, corr[slot1]);
    const Zpp32s energy1 = with(placed.energy, placed, slot1, step.outer);
    for (int i = 0; i < grid.perTrack; ++i) {
      const int slot2 = innerTrack + i;
      const Zpp16s sum2 = addSat16(sum1, corr[slot2]);
      const Zpp32s energy2 = macDbl(macDbl(energy1, inner[i], step.ofInner), entry(slot1, slot2), step.cross);
      const Criterion tried{mulQ15(sum2, sum2), roundHigh16(energy2)};
      if (tried.beats(best.reached)) best = {tried, sum2, static_cast<Zpp16s>(slot1), static_cast<Zpp16s>(slot2)};
    }
  }
  return best;
}

void ownSearchOptimalPulsePos_M102M122_GSMAMR_16s_PX(const Zpp16s* corr, const Zpp16s* matrix, const Zpp16s* trackBest,
                                                     const Zpp16s* trackOrder, Zpp16s* slots, int pulses, int tracks) {
  const PairSearch search = {corr, matrix, gridOf(tracks)};
  searchPairs(search, trackBest, trackOrder, slots, pulses,
              [&](const PairTask* tasks, int passes, const PairStep& step, BestPair* found) {
                for (int pass = 0; pass < passes; ++pass) found[pass] = search.best(tasks[pass], step);
              });
}
