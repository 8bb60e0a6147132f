// Searches of the pulse positions: SSE2 kernels. They compare candidates in pairs, earlier against later, so that the first of
// equals wins as in the standard's loops. That needs positive energies: criteria with others are no ordered set, and what
// the loops then arrive at is found step by step.
#include <bit>

#include "amr/fixed_codebook/kernels.h"
#include "amr/fixed_codebook/pulse_search.h"
#include "amr/fixed_codebook/simd_w7.h"

using namespace zpp;

namespace {

// Criteria as square (low) and energy (high) of 32-bit lanes
V pairsLow(V square, V energy) { return _mm_unpacklo_epi16(square, energy); }
V pairsHigh(V square, V energy) { return _mm_unpackhi_epi16(square, energy); }
// Energy (low) and negated square (high)
V swapNegated(V pairs) {
  const V swapped = _mm_shufflehi_epi16(_mm_shufflelo_epi16(pairs, _MM_SHUFFLE(2, 3, 0, 1)), _MM_SHUFFLE(2, 3, 0, 1));
  const V highHalves = _mm_set1_epi32(static_cast<int>(0xffff0000));
  return _mm_sub_epi16(_mm_xor_si128(swapped, highHalves), highHalves);
}
template <int Lanes>
V pick(V a, V b) {
  return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), Lanes));
}
// Plays lanes 0 and 1, 2 and 3 of a, then of b, against each other; the later one must be better to win.
V winners(V a, V b) {
  const V earlier = pick<_MM_SHUFFLE(2, 0, 2, 0)>(a, b), later = pick<_MM_SHUFFLE(3, 1, 3, 1)>(a, b);
  const V beaten = _mm_cmpgt_epi32(_mm_madd_epi16(swapNegated(earlier), later), _mm_setzero_si128());
  return _mm_xor_si128(earlier, _mm_and_si128(_mm_xor_si128(earlier, later), beaten));
}
V weights(int low, int high) {
  return _mm_set1_epi32(static_cast<int>(static_cast<Zpp32u>(high) << 16 | static_cast<Zpp32u>(low)));
}

// Four outermost pulses whose searches run side by side
struct Candidates {
  Zpp16s chosen[4][4];  // by pulse and candidate
  Zpp16s sum[4];
  alignas(16) Criterion reached[4];
};

// Adds pulse k on the track of eight slots from `first` on.
template <int k>
void addPulse(Candidates& c, int first, const Zpp16s* corr, const Zpp16s* diagonal, const Zpp16s* matrix) {
  constexpr PulseStep step = kPulseSteps[k - 1];
  const V own = load(diagonal + first), ofTrack = load(corr + first), zero = _mm_setzero_si128();
  const V outerWeights = weights(step.own, step.cross), innerWeights = weights(step.cross, k == 3 ? step.cross : 0);
  V low[4], high[4], round1[4], smallest = _mm_set1_epi16(kMax16);
  unrolled<4>([&](int i) {
    const auto row = [&](int pulse) { return load(matrix + c.chosen[pulse][i] * kSubframe + first); };
    const V before = _mm_set1_epi32(c.reached[i].energy * step.before + 0x4000), row0 = row(0);
    V energyLow = _mm_add_epi32(before, _mm_madd_epi16(_mm_unpacklo_epi16(own, row0), outerWeights));
    V energyHigh = _mm_add_epi32(before, _mm_madd_epi16(_mm_unpackhi_epi16(own, row0), outerWeights));
    if constexpr (k > 1) {
      const V row1 = row(1), row2 = row(k - 1);
      energyLow = _mm_add_epi32(energyLow, _mm_madd_epi16(_mm_unpacklo_epi16(row1, row2), innerWeights));
      energyHigh = _mm_add_epi32(energyHigh, _mm_madd_epi16(_mm_unpackhi_epi16(row1, row2), innerWeights));
    }
    const V energy = _mm_packs_epi32(_mm_srai_epi32(energyLow, 15), _mm_srai_epi32(energyHigh, 15));
    const V sum = _mm_adds_epi16(_mm_set1_epi16(c.sum[i]), ofTrack), square = mulWrapQ15(sum, sum);
    smallest = _mm_min_epi16(smallest, energy);
    low[i] = pairsLow(square, energy);
    high[i] = pairsHigh(square, energy);
    round1[i] = winners(low[i], high[i]);
  });
  if (_mm_movemask_epi8(_mm_cmpgt_epi16(smallest, zero)) == 0xffff) {
    const V best = winners(winners(round1[0], round1[1]), winners(round1[2], round1[3]));
    _mm_store_si128(reinterpret_cast<V*>(c.reached), best);
    // A winner is the first with its square and energy.
    const V bestOf[4] = {_mm_shuffle_epi32(best, 0x00), _mm_shuffle_epi32(best, 0x55), _mm_shuffle_epi32(best, 0xaa),
                         _mm_shuffle_epi32(best, 0xff)};
    unrolled<4>([&](int i) {
      const V equal = _mm_packs_epi32(_mm_cmpeq_epi32(bestOf[i], low[i]), _mm_cmpeq_epi32(bestOf[i], high[i]));
      const int slot = first + std::countr_zero(static_cast<unsigned>(_mm_movemask_epi8(equal))) / 2;
      c.chosen[k][i] = static_cast<Zpp16s>(slot);
      c.sum[i] = addSat16(c.sum[i], corr[slot]);
    });
    return;
  }
  for (int i = 0; i < 4; ++i) {
    alignas(16) Criterion tried[8];
    store(tried, low[i]);
    store(tried + 4, high[i]);
    const Zpp16s sumBefore = c.sum[i];
    c.reached[i] = {};
    c.sum[i] = 0;
    c.chosen[k][i] = static_cast<Zpp16s>(first);
    for (int lane = 0; lane < 8; ++lane) {
      if (!tried[lane].beats(c.reached[i])) continue;
      c.reached[i] = tried[lane];
      c.sum[i] = addSat16(sumBefore, corr[first + lane]);
      c.chosen[k][i] = static_cast<Zpp16s>(first + lane);
    }
  }
}

}  // namespace

void ownSearchOptimalPulsePos_GSMAMR_16s_W7(const Zpp16s* corr, const Zpp16s* candidate, const Zpp16s* matrix,
                                            const Zpp8u* sequences, int count, int pulses, Zpp16s* slots) {
  const Grid& grid = kFiveTracks;
  alignas(16) Zpp16s diagonal[kSubframe];
  for (int slot = 0; slot < kSubframe; ++slot) diagonal[slot] = matrix[slot * (kSubframe + 1)];
  Zpp8u outer[5][8], outers[5];  // the candidates of each track
  for (int track = 0, slot = 0; track < 5; ++track) {
    int found = 0;
    for (int i = 0; i < 8; ++i, ++slot) {
      outer[track][found] = static_cast<Zpp8u>(slot);
      found += candidate[slot] >= 0;
    }
    outers[track] = static_cast<Zpp8u>(found);
  }
  Criterion best;
  for (int k = 0; k < pulses; ++k) slots[k] = grid.slotOf[k];

  for (const Zpp8u* tracks = sequences; tracks != sequences + 4 * count; tracks += 4) {
    const Zpp8u* const slotsOf = outer[tracks[0]];
    for (int from = 0; from < outers[tracks[0]]; from += 4) {
      const int used = outers[tracks[0]] - from < 4 ? outers[tracks[0]] - from : 4;
      Candidates c;
      for (int i = 0; i < 4; ++i) {
        const int slot = slotsOf[i < used ? from + i : from];
        c.chosen[0][i] = static_cast<Zpp16s>(slot);
        c.sum[i] = corr[slot];
        c.reached[i] = {0, diagonal[slot]};
      }
      const auto firstOf = [&](int k) { return tracks[k] * grid.perTrack; };
      addPulse<1>(c, firstOf(1), corr, diagonal, matrix);
      if (pulses > 2) addPulse<2>(c, firstOf(2), corr, diagonal, matrix);
      if (pulses > 3) addPulse<3>(c, firstOf(3), corr, diagonal, matrix);
      for (int i = 0; i < used; ++i) {
        if (!c.reached[i].beats(best)) continue;
        best = c.reached[i];
        for (int k = 0; k < pulses; ++k) slots[k] = c.chosen[k][i];
      }
    }
  }
}

namespace {

// Energies of a pulse on eight slots from `slot` on with those placed before, in 32 bits before the rounding
struct Energies {
  V low, high;
};
Energies energiesWith(const PairSearch& search, const Zpp16s* diagonal, const Placed& placed, int slot, Zpp32s energy,
                      PairStep::Weights weight) {
  const V own = load(diagonal + slot), ownWeight = weights(weight.own, 0), eachWeight = weights(weight.each, weight.each);
  V low = _mm_add_epi32(_mm_set1_epi32(energy), _mm_madd_epi16(_mm_unpacklo_epi16(own, own), ownWeight));
  V high = _mm_add_epi32(_mm_set1_epi32(energy), _mm_madd_epi16(_mm_unpackhi_epi16(own, own), ownWeight));
  for (int j = 0; j < placed.count; j += 2) {
    const V row0 = load(search.matrix + placed.slots[j] * kSubframe + slot);
    const V row1 = load(search.matrix + placed.slots[j + 1] * kSubframe + slot);
    low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(row0, row1), eachWeight));
    high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(row0, row1), eachWeight));
  }
  return {low, high};
}

// Whether a sum of the magnitudes of these terms, without an earlier energy, may reach full scale
bool reachesFullScale(const PairSearch& search, const Zpp16s* diagonal, const Placed& placed, int slot,
                      PairStep::Weights weight) {
  const auto weighted = [](const Zpp16s* p, Zpp16s w) {
    const V x = load(p), magnitude = _mm_max_epi16(x, _mm_subs_epi16(_mm_setzero_si128(), x));
    return _mm_mulhi_epi16(magnitude, _mm_set1_epi16(static_cast<Zpp16s>(2 * w)));
  };
  V sum = weighted(diagonal + slot, weight.own);
  for (int j = 0; j < placed.count; ++j)
    sum = _mm_adds_epi16(sum, weighted(search.matrix + placed.slots[j] * kSubframe + slot, weight.each));
  return _mm_movemask_epi8(_mm_cmpgt_epi16(sum, _mm_set1_epi16(kMax16 - 16))) != 0;  // each term was truncated
}

// Of eight lanes with energy and negated square, each the best of its inner slot for the given outer one: the first of the best
// in the order of the loops, as outer number * 8 + lane.
int firstOfBest(V low, V high, V outer) {
  const V zero = _mm_setzero_si128(), lane = _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7);
  V best = winners(swapNegated(_mm_sub_epi16(zero, low)), swapNegated(_mm_sub_epi16(zero, high)));
  best = winners(best, best);
  best = winners(best, best);
  const V equal =
      _mm_packs_epi32(_mm_cmpeq_epi32(_mm_madd_epi16(low, best), zero), _mm_cmpeq_epi32(_mm_madd_epi16(high, best), zero));
  V order = select(equal, _mm_or_si128(_mm_slli_epi16(outer, 3), lane), _mm_set1_epi16(kMax16));
  order = _mm_min_epi16(order, _mm_srli_si128(order, 8));
  order = _mm_min_epi16(order, _mm_srli_si128(order, 4));
  order = _mm_min_epi16(order, _mm_srli_si128(order, 2));
  return _mm_extract_epi16(order, 0);
}

// PairSearch::best with the inner track's slots side by side; each lane keeps the best of its slot.
BestPair bestPair(const PairSearch& search, const Zpp16s* diagonal, const Placed& placed, int outerTrack, int innerTrack,
                  const PairStep& step) {
  constexpr int kHalf = 0x4000;
  const int perTrack = search.grid.perTrack, lastVector = perTrack - 8;  // vectors from slots 0 and, of ten, 2
  const auto rounded = [](const Energies& e) { return _mm_packs_epi32(_mm_srai_epi32(e.low, 15), _mm_srai_epi32(e.high, 15)); };
  const auto anyBeyond = [](V x, Zpp16s limit) {
    const V magnitude = _mm_max_epi16(x, _mm_subs_epi16(_mm_setzero_si128(), x));
    return _mm_movemask_epi8(_mm_cmpgt_epi16(magnitude, _mm_set1_epi16(limit))) != 0;
  };

  alignas(16) Zpp32s energy1[10];
  V inner[2];
  for (int from = 0; from <= lastVector; from += 2) {
    const Energies outer = energiesWith(search, diagonal, placed, outerTrack + from, placed.energy / 2 + kHalf, step.outer);
    store(energy1 + from, outer.low);
    store(energy1 + from + 4, outer.high);
    if (step.innerMayExceed && reachesFullScale(search, diagonal, placed, innerTrack + from, step.inner))
      return search.best(placed, outerTrack, innerTrack, step);
    inner[from / 2] = rounded(energiesWith(search, diagonal, placed, innerTrack + from, kHalf, step.inner));
    // Energies of 0.7, a quarter of an inner sum of 0.9 and a sixteenth of an entry stay below 1.
    if (step.energyMayExceed && (anyBeyond(rounded(outer), 22937) || anyBeyond(inner[from / 2], 29491)))
      return search.best(placed, outerTrack, innerTrack, step);
  }

  alignas(16) Zpp16s sum1[10];
  for (int from = 0; from <= lastVector; from += 2)
    store(sum1 + from, _mm_adds_epi16(_mm_set1_epi16(placed.sum), load(search.corr + outerTrack + from)));
  const V pairWeights = weights(step.ofInner, step.cross), zero = _mm_setzero_si128();
  V smallest = _mm_set1_epi16(kMax16);
  BestPair best{{}, 0, static_cast<Zpp16s>(outerTrack), static_cast<Zpp16s>(innerTrack)};
  for (int from = 0; from <= lastVector; from += 2) {
    const V ofTrack = load(search.corr + innerTrack + from);
    const V ofInner = inner[from / 2];
    const Zpp16s* row = search.matrix + outerTrack * kSubframe + innerTrack + from;
    V low = weights(1, 1), high = low, outer = zero;  // energy and negated square; number of the outer slot
    for (int i = 0; i < perTrack; ++i, row += kSubframe) {
      const V cross = load(row), before = _mm_set1_epi32(energy1[i]);
      const V energyLow = _mm_add_epi32(before, _mm_madd_epi16(_mm_unpacklo_epi16(ofInner, cross), pairWeights));
      const V energyHigh = _mm_add_epi32(before, _mm_madd_epi16(_mm_unpackhi_epi16(ofInner, cross), pairWeights));
      const V energy = _mm_packs_epi32(_mm_srai_epi32(energyLow, 15), _mm_srai_epi32(energyHigh, 15));
      smallest = _mm_min_epi16(smallest, energy);
      const V sum = _mm_adds_epi16(_mm_set1_epi16(sum1[i]), ofTrack);
      const V wrapped = mulWrapQ15(sum, sum), square = _mm_add_epi16(wrapped, _mm_srai_epi16(wrapped, 15));
      const V negated = _mm_sub_epi16(zero, square);
      const V betterLow = _mm_cmpgt_epi32(_mm_madd_epi16(low, pairsLow(square, energy)), zero);
      const V betterHigh = _mm_cmpgt_epi32(_mm_madd_epi16(high, pairsHigh(square, energy)), zero);
      low = select(betterLow, pairsLow(energy, negated), low);
      high = select(betterHigh, pairsHigh(energy, negated), high);
      outer = select(_mm_packs_epi32(betterLow, betterHigh), _mm_set1_epi16(static_cast<Zpp16s>(i)), outer);
    }
    const int first = firstOfBest(low, high, outer), slot1 = outerTrack + first / 8, slot2 = innerTrack + from + first % 8;
    alignas(16) Zpp16s lanes[16];
    store(lanes, low);
    store(lanes + 8, high);
    const Criterion tried{static_cast<Zpp16s>(-lanes[2 * (first % 8) + 1]), lanes[2 * (first % 8)]};
    const bool earlier = slot1 < best.outer || (slot1 == best.outer && slot2 < best.inner);
    if (tried.beats(best.reached) || (earlier && !best.reached.beats(tried)))
      best = {tried, 0, static_cast<Zpp16s>(slot1), static_cast<Zpp16s>(slot2)};
  }
  if (_mm_movemask_epi8(_mm_cmpgt_epi16(smallest, zero)) != 0xffff) return search.best(placed, outerTrack, innerTrack, step);
  best.sum = addSat16(addSat16(placed.sum, search.corr[best.outer]), search.corr[best.inner]);
  return best;
}

}  // namespace

void ownSearchOptimalPulsePos_M102M122_GSMAMR_16s_W7(const Zpp16s* corr, const Zpp16s* matrix, const Zpp16s* trackBest,
                                                     const Zpp16s* trackOrder, Zpp16s* slots, int pulses, int tracks) {
  const PairSearch search = {corr, matrix, gridOf(tracks)};
  alignas(16) Zpp16s diagonal[kSubframe];
  for (int slot = 0; slot < kSubframe; ++slot) diagonal[slot] = matrix[slot * (kSubframe + 1)];
  searchPairs(search, trackBest, trackOrder, slots, pulses,
              [&](const Placed& placed, int outerTrack, int innerTrack, const PairStep& step) {
                return bestPair(search, diagonal, placed, outerTrack, innerTrack, step);
              });
}
