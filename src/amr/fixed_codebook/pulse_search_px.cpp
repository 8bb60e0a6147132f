// Searches of the pulse positions: portable kernels.
#include <algorithm>
#include <cstdlib>

#include "amr/fixed_codebook/kernels.h"
#include "amr/fixed_codebook/pulse_search.h"
#include "core/kernels.h"

using namespace zpp;

void ownSearchOptimalPulsePos_GSMAMR_16s_PX(const Zpp16s* corr, const Zpp16s* candidate, const Zpp16s* matrix,
                                            const Zpp8u* sequences, int count, int pulses, Zpp16s* slots) {
  constexpr int kPerTrack = kFiveTracks.perTrack;
  Criterion best;
  for (int k = 0; k < pulses; ++k) slots[k] = kFiveTracks.slotOf[k];
  Zpp16s diagonal[kSubframe];
  for (int slot = 0; slot < kSubframe; ++slot) diagonal[slot] = matrix[slot * (kSubframe + 1)];

  for (const Zpp8u* tracks = sequences; tracks != sequences + 4 * count; tracks += 4) {
    for (int number = 0; number < kPerTrack; ++number) {
      const int outer = tracks[0] * kPerTrack + number;
      if (candidate[outer] < 0) continue;
      Zpp16s chosen[4] = {static_cast<Zpp16s>(outer)};
      Criterion reached{0, diagonal[outer]};
      Zpp16s sum = corr[outer];
      for (int k = 1; k < pulses; ++k) {
        const PulseStep& step = kPulseSteps[k - 1];
        const Zpp32s before = reached.energy * step.before + 0x4000;
        const Zpp16s sumBefore = sum;
        const int first = tracks[k] * kPerTrack;
        Zpp32s energy[kPerTrack];
        for (int i = 0; i < kPerTrack; ++i) energy[i] = before + diagonal[first + i] * step.own;
        for (int j = 0; j < k; ++j) {
          const Zpp16s *const row = matrix + chosen[j] * kSubframe + first, weight = static_cast<Zpp16s>(step.cross);
          for (int i = 0; i < kPerTrack; ++i) energy[i] += row[i] * weight;
        }
        reached = {};
        sum = 0;
        chosen[k] = static_cast<Zpp16s>(first);
        Zpp16s sums[kPerTrack], squares[kPerTrack];
        for (int i = 0; i < kPerTrack; ++i) {
          const auto newSum = static_cast<Zpp16s>(sumBefore + corr[first + i]);  // neither is below 0
          sums[i] = newSum < 0 ? Zpp16s{kMax16} : newSum;
          squares[i] = static_cast<Zpp16s>((sums[i] * sums[i]) >> 15);
        }
        for (int i = 0; i < kPerTrack; ++i) {
          const Criterion tried{squares[i], static_cast<Zpp16s>(energy[i] >> 15)};
          if (!tried.beats(reached)) continue;
          reached = tried;
          sum = sums[i];
          chosen[k] = static_cast<Zpp16s>(first + i);
        }
      }
      if (!reached.beats(best)) continue;
      best = reached;
      for (int k = 0; k < pulses; ++k) slots[k] = chosen[k];
    }
  }
}

namespace {

// What the energies of a pair of tracks are made of, rounding included: before[outer] + ofInner[inner] + twice the weighted
// entry of the two
template <int PerTrack>
struct PairEnergies {
  Zpp32s before[PerTrack], ofInner[PerTrack];
};

// False when a sum may saturate. All entries may be of full scale, but where the weights say otherwise.
template <int PerTrack>
bool prepare(const PairSearch& search, const PairTask& task, const PairStep& step, PairEnergies<PerTrack>& energies) {
  const Placed& placed = *task.placed;
  Zpp32s inner[PerTrack], outer[PerTrack];  // sums of products not doubled
  for (int i = 0; i < PerTrack; ++i) {
    inner[i] = search.entry(task.innerTrack + i, task.innerTrack + i) * step.inner.own + 0x4000;
    outer[i] = search.entry(task.outerTrack + i, task.outerTrack + i) * step.outer.own + placed.energy / 2;
  }
  Zpp16s highest[PerTrack] = {}, lowest[PerTrack] = {};
  for (int j = 0; j < placed.count; ++j) {
    const Zpp16s *const innerRow = search.matrix + placed.slots[j] * kSubframe + task.innerTrack, *const outerRow =
                                                                                                      search.matrix +
                                                                                                      placed.slots[j] *
                                                                                                          kSubframe +
                                                                                                      task.outerTrack;
    for (int i = 0; i < PerTrack; ++i) {
      inner[i] += innerRow[i] * step.inner.each;
      outer[i] += outerRow[i] * step.outer.each;
      highest[i] = std::max(highest[i], innerRow[i]);
      lowest[i] = std::min(lowest[i], innerRow[i]);
    }
  }
  if (step.innerMayExceed) {
    // Entries of this magnitude, and a diagonal entry of any, add up to less than full scale; more may do so.
    const int harmless = (32767 * (32768 - step.inner.own) - 0x4000) / (placed.count * step.inner.each);
    for (int i = 0; i < PerTrack; ++i) {
      if (highest[i] <= harmless && lowest[i] >= -harmless) continue;
      const int slot = task.innerTrack + i;
      Zpp32s magnitudes = std::abs(search.entry(slot, slot)) * (step.inner.own / 1024);
      for (int j = 0; j < placed.count; ++j)
        magnitudes += std::abs(search.entry(placed.slots[j], slot)) * (step.inner.each / 1024);
      if (magnitudes >= (1 << 20) - 16) return false;
    }
  }
  for (int i = 0; i < PerTrack; ++i) {
    const Zpp32s rounded = inner[i] >> 15;
    // Energies of 0.7, a quarter of an inner sum of 0.9 and a sixteenth of an entry stay below 1.
    if (step.energyMayExceed && (std::abs(outer[i] >> 15) > 22937 || std::abs(rounded) > 29491)) return false;
    energies.before[i] = 2 * outer[i] + 0x8000;
    energies.ofInner[i] = 2 * rounded * step.ofInner;
  }
  return true;
}

// The standard's loops without saturating steps; false when the energy may need them. The sums of correlations do not.
template <int PerTrack>
bool bestOfTracks(const PairSearch& search, const PairTask& task, const PairStep& step, BestPair& best) {
  PairEnergies<PerTrack> energies;
  if (!prepare(search, task, step, energies)) return false;
  best = {{}, 0, static_cast<Zpp16s>(task.outerTrack), static_cast<Zpp16s>(task.innerTrack)};
  const auto weight = static_cast<Zpp16s>(2 * step.cross);
  for (int i = 0; i < PerTrack; ++i) {
    const int slot1 = task.outerTrack + i;
    const auto sum1 = static_cast<Zpp16s>(task.placed->sum + search.corr[slot1]);
    const Zpp16s* const row = search.matrix + slot1 * kSubframe + task.innerTrack;
    const Zpp16s* const corr2 = search.corr + task.innerTrack;
    Zpp16s sum[PerTrack], square[PerTrack], energy[PerTrack];
    for (int k = 0; k < PerTrack; ++k) {
      sum[k] = static_cast<Zpp16s>(sum1 + corr2[k]);
      square[k] = static_cast<Zpp16s>((sum[k] * sum[k]) >> 15);
      energy[k] = high16(energies.before[i] + energies.ofInner[k] + row[k] * weight);
    }
    for (int k = 0; k < PerTrack; ++k) {
      const Criterion tried{square[k], energy[k]};
      if (tried.beats(best.reached))
        best = {tried, sum[k], static_cast<Zpp16s>(slot1), static_cast<Zpp16s>(task.innerTrack + k)};
    }
  }
  return true;
}

// Whether two pulses a track of the largest correlations stay within 16 bits together
template <int PerTrack>
bool sumsFit(const Zpp16s* corr) {
  int sum = 0;
  for (int first = 0; first < kSubframe; first += PerTrack) sum += 2 * (ownMaxAbs_16s(corr + first, PerTrack) + 1);
  return sum <= kMax16;
}

// The search with the tracks of a grid, by the fast way where it can be gone
template <int PerTrack>
void searchTracks(const PairSearch& search, const Zpp16s* trackBest, const Zpp16s* trackOrder, Zpp16s* slots, int pulses) {
  const bool fit = sumsFit<PerTrack>(search.corr);
  searchPairs(search, trackBest, trackOrder, slots, pulses,
              [&](const PairTask* tasks, int passes, const PairStep& step, BestPair* found) {
                for (int pass = 0; pass < passes; ++pass)
                  if (!fit || !bestOfTracks<PerTrack>(search, tasks[pass], step, found[pass]))
                    found[pass] = search.best(tasks[pass], step);
              });
}

}  // namespace

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
  if (tracks == 5)
    searchTracks<8>(search, trackBest, trackOrder, slots, pulses);
  else
    searchTracks<10>(search, trackBest, trackOrder, slots, pulses);
}
