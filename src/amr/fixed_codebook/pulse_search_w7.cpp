// Searches of the pulse positions: SSE2 kernels. They compare candidates in pairs, earlier against later, so that the first of
// equals wins as in the standard's loops. That needs positive energies: criteria with others are no ordered set, and what
// the loops then arrive at is found step by step.
#include <bit>

#include "amr/fixed_codebook/kernels.h"
#include "amr/fixed_codebook/pulse_search.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

// Criteria as square (low) and energy (high) of 32-bit lanes
V pairsLow(V square, V energy) { return _mm_unpacklo_epi16(square, energy); }
V pairsHigh(V square, V energy) { return _mm_unpackhi_epi16(square, energy); }
// Energy (low) and negated square (high)
V swapNegated(V pairs) {
  const V swapped = swappedPairs(pairs);
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

// Eight slots of a track: energies of one more pulse there with those placed before, in 32 bits before the rounding
struct Energies {
  V low, high;

  V rounded() const { return _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15)); }
  // Without the fraction, modulo 2^16
  V above15() const {
    const auto kept = [](V x) { return _mm_srai_epi32(_mm_slli_epi32(x, 1), 16); };
    return _mm_packs_epi32(kept(low), kept(high));
  }
};
template <int Count>
Energies energiesWith(const PairSearch& search, const Zpp16s* diagonal, const Placed& placed, int slot, Zpp32s energy,
                      PairStep::Weights weight) {
  const V own = load(diagonal + slot), ownWeight = weights(weight.own, 0), eachWeight = weights(weight.each, weight.each);
  V low = _mm_add_epi32(_mm_set1_epi32(energy), _mm_madd_epi16(_mm_unpacklo_epi16(own, own), ownWeight));
  V high = _mm_add_epi32(_mm_set1_epi32(energy), _mm_madd_epi16(_mm_unpackhi_epi16(own, own), ownWeight));
  unrolled<Count / 2>([&](int pair) {
    const V row0 = load(search.matrix + placed.slots[2 * pair] * kSubframe + slot);
    const V row1 = load(search.matrix + placed.slots[2 * pair + 1] * kSubframe + slot);
    low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(row0, row1), eachWeight));
    high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(row0, row1), eachWeight));
  });
  return {low, high};
}

V magnitudes(V x) { return _mm_max_epi16(x, _mm_subs_epi16(_mm_setzero_si128(), x)); }
bool anyAbove(V x, Zpp16s limit) { return _mm_movemask_epi8(_mm_cmpgt_epi16(x, _mm_set1_epi16(limit))) != 0; }

// Whether a sum of the magnitudes of these terms, without an earlier energy, may reach full scale
template <int Count>
bool reachesFullScale(const PairSearch& search, const Zpp16s* diagonal, const Placed& placed, int slot,
                      PairStep::Weights weight) {
  const auto weighted = [](const Zpp16s* p, Zpp16s w) {
    return _mm_mulhi_epi16(magnitudes(load(p)), _mm_set1_epi16(static_cast<Zpp16s>(2 * w)));
  };
  V sum = weighted(diagonal + slot, weight.own);
  unrolled<Count>(
      [&](int j) { sum = _mm_adds_epi16(sum, weighted(search.matrix + placed.slots[j] * kSubframe + slot, weight.each)); });
  return anyAbove(sum, kMax16 - 16);  // each term was truncated
}

// What the candidates of one pair of tracks are made of. The energy of a pair is
//   ((cross + outerRest + innerRest) >> restBits) + outerEnergy + innerEnergy,
// its parts split where the weight of the cross term begins: 16 bits suffice for all of it.
template <int PerTrack>
struct PairTerms {
  static constexpr int kVectors = (PerTrack + 7) / 8;  // of eight slots, from slots 0 and, of ten, 2

  V outerEnergy[kVectors], outerRest[kVectors], innerEnergy[kVectors], innerRest[kVectors];
  V restBits;
};

// False when a sum may saturate
template <int PerTrack, int Level>
bool prepare(const PairSearch& search, const Zpp16s* diagonal, const Placed& placed, int outerTrack, int innerTrack,
             PairTerms<PerTrack>& terms) {
  constexpr PairStep step = kPairSteps[Level];
  constexpr int kCount = 2 * Level + 2, kHalf = 0x4000;
  constexpr int crossBits = std::countr_zero(static_cast<Zpp16u>(step.cross));
  constexpr int innerBits = std::countr_zero(static_cast<Zpp16u>(step.ofInner));
  static_assert(step.cross == 1 << crossBits && step.ofInner == 1 << innerBits);
  for (int i = 0; i < PairTerms<PerTrack>::kVectors; ++i) {
    const int from = 2 * i;
    const Energies outer =
        energiesWith<kCount>(search, diagonal, placed, outerTrack + from, placed.energy / 2 + kHalf, step.outer);
    if (step.innerMayExceed && reachesFullScale<kCount>(search, diagonal, placed, innerTrack + from, step.inner)) return false;
    const V inner = energiesWith<kCount>(search, diagonal, placed, innerTrack + from, kHalf, step.inner).rounded();
    // Energies of 0.7, a quarter of an inner sum of 0.9 and a sixteenth of an entry stay below 1.
    if (step.energyMayExceed && (anyAbove(magnitudes(outer.rounded()), 22937) || anyAbove(magnitudes(inner), 29491)))
      return false;
    const V rest = _mm_set1_epi32((1 << (15 - crossBits)) - 1);
    terms.outerEnergy[i] = outer.above15();
    terms.outerRest[i] = _mm_packs_epi32(_mm_and_si128(_mm_srli_epi32(outer.low, crossBits), rest),
                                         _mm_and_si128(_mm_srli_epi32(outer.high, crossBits), rest));
    terms.innerEnergy[i] = _mm_srai_epi16(inner, 15 - innerBits);
    terms.innerRest[i] =
        _mm_slli_epi16(_mm_and_si128(inner, _mm_set1_epi16((1 << (15 - innerBits)) - 1)), innerBits - crossBits);
  }
  terms.restBits = _mm_cvtsi32_si128(15 - crossBits);
  return true;
}

// Elements of a track spread over all lanes one by one; of ten, the second vector starts at element 2.
template <int PerTrack>
struct Spread {
  explicit Spread(const V* vectors) {
    twice[0] = _mm_unpacklo_epi16(vectors[0], vectors[0]);
    twice[1] = _mm_unpackhi_epi16(vectors[0], vectors[0]);
    if constexpr (PerTrack > 8) twice[2] = _mm_unpackhi_epi16(vectors[1], vectors[1]);
  }
  template <int i>
  V of() const {
    constexpr int kLane = i < 8 ? i % 4 : i - 6;
    return _mm_shuffle_epi32(twice[i / 4], kLane * 0x55);
  }

  V twice[(PerTrack + 3) / 4];
};

// The best of eight inner slots and all outer ones: the first in the order of the loops
struct BestOfRows {
  Criterion reached;
  int outer, lane;
};
// Of eight lanes, each the best of its inner slot, with energy and negated square
BestOfRows firstOfBest(V low, V high, V outer) {
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
  const int first = _mm_extract_epi16(order, 0), both = _mm_cvtsi128_si32(best);
  return {{low16(both), high16(both)}, first / 8, first % 8};
}

// The standard's loops with the inner track's slots side by side; each lane keeps the best of its slot. False when that gives
// no ordered set or may differ.
template <int PerTrack>
bool compareRows(const PairSearch& search, const PairTerms<PerTrack>& terms, Zpp16s sumBefore, int outerTrack, int innerTrack,
                 BestPair& best) {
  constexpr int kVectors = PairTerms<PerTrack>::kVectors;
  const V zero = _mm_setzero_si128();
  V sums[kVectors], ofTrack[kVectors], lowest = zero;
  for (int i = 0; i < kVectors; ++i) {
    sums[i] = _mm_adds_epi16(_mm_set1_epi16(sumBefore), load(search.corr + outerTrack + 2 * i));
    ofTrack[i] = load(search.corr + innerTrack + 2 * i);
    lowest = _mm_min_epi16(lowest, _mm_min_epi16(sums[i], ofTrack[i]));
  }
  const Spread<PerTrack> energy1(terms.outerEnergy), rest1(terms.outerRest), sum1(sums);
  V smallest = _mm_set1_epi16(kMax16), largest = zero;  // energy; cross term
  for (int k = 0; k < kVectors; ++k) {
    const Zpp16s* const rows = search.matrix + outerTrack * kSubframe + innerTrack + 2 * k;
    V low = zero, high = zero, outer = zero;  // energy and negated square; number of the outer slot
    unrolled<PerTrack>([&](auto row) {
      constexpr int i = decltype(row)::value;
      const V cross = load(rows + i * kSubframe);
      largest = _mm_max_epi16(largest, cross);
      const V rest = _mm_add_epi16(_mm_add_epi16(cross, terms.innerRest[k]), rest1.template of<i>());
      const V energy =
          _mm_add_epi16(_mm_add_epi16(_mm_sra_epi16(rest, terms.restBits), terms.innerEnergy[k]), energy1.template of<i>());
      smallest = _mm_min_epi16(smallest, energy);
      const V sum = _mm_adds_epi16(sum1.template of<i>(), ofTrack[k]);
      const V magnitude = _mm_max_epi16(sum, _mm_sub_epi16(zero, sum));
      const V square = _mm_mulhi_epu16(_mm_add_epi16(magnitude, magnitude), magnitude), negated = _mm_sub_epi16(zero, square);
      if constexpr (i == 0) {
        low = pairsLow(energy, negated);
        high = pairsHigh(energy, negated);
      } else {
        const V betterLow = _mm_cmpgt_epi32(_mm_madd_epi16(pairsLow(square, energy), low), zero);
        const V betterHigh = _mm_cmpgt_epi32(_mm_madd_epi16(pairsHigh(square, energy), high), zero);
        const auto chosen = [](V better, V now, V before) {
          return _mm_xor_si128(_mm_and_si128(_mm_xor_si128(now, before), better), before);
        };
        low = chosen(betterLow, pairsLow(energy, negated), low);
        high = chosen(betterHigh, pairsHigh(energy, negated), high);
        outer = _mm_max_epi16(outer, _mm_and_si128(_mm_packs_epi32(betterLow, betterHigh), _mm_set1_epi16(i)));
      }
    });
    const BestOfRows first = firstOfBest(low, high, outer);
    const int slot1 = outerTrack + first.outer, slot2 = innerTrack + 2 * k + first.lane;
    const bool earlier = slot1 < best.outer || (slot1 == best.outer && slot2 < best.inner);
    if (k == 0 || first.reached.beats(best.reached) || (earlier && !best.reached.beats(first.reached)))
      best = {first.reached, 0, static_cast<Zpp16s>(slot1), static_cast<Zpp16s>(slot2)};
  }
  best.sum = addSat16(addSat16(sumBefore, search.corr[best.outer]), search.corr[best.inner]);
  // Two sums of -16383 and more make more than -32768, the magnitude of which is no 16-bit number; two rests stay below 128.
  const V fine = _mm_and_si128(_mm_cmpgt_epi16(smallest, zero), _mm_cmpgt_epi16(lowest, _mm_set1_epi16(-16384)));
  return _mm_movemask_epi8(_mm_andnot_si128(_mm_cmpgt_epi16(largest, _mm_set1_epi16(kMax16 - 128)), fine)) == 0xffff;
}

// PairSearch::best
template <int PerTrack>
BestPair bestPair(const PairSearch& search, const Zpp16s* diagonal, const Placed& placed, int outerTrack, int innerTrack,
                  const PairStep& step) {
  PairTerms<PerTrack> terms;
  const auto prepared = [&] {
    switch (placed.count) {
      case 2:
        return prepare<PerTrack, 0>(search, diagonal, placed, outerTrack, innerTrack, terms);
      case 4:
        return prepare<PerTrack, 1>(search, diagonal, placed, outerTrack, innerTrack, terms);
      case 6:
        return prepare<PerTrack, 2>(search, diagonal, placed, outerTrack, innerTrack, terms);
      default:
        return prepare<PerTrack, 3>(search, diagonal, placed, outerTrack, innerTrack, terms);
    }
  };
  BestPair best{};
  if (prepared() && compareRows(search, terms, placed.sum, outerTrack, innerTrack, best)) return best;
  return search.best(placed, outerTrack, innerTrack, step);
}

}  // namespace

void ownSearchOptimalPulsePos_M102M122_GSMAMR_16s_W7(const Zpp16s* corr, const Zpp16s* matrix, const Zpp16s* trackBest,
                                                     const Zpp16s* trackOrder, Zpp16s* slots, int pulses, int tracks) {
  const PairSearch search = {corr, matrix, gridOf(tracks)};
  alignas(16) Zpp16s diagonal[kSubframe];
  for (int slot = 0; slot < kSubframe; ++slot) diagonal[slot] = matrix[slot * (kSubframe + 1)];
  searchPairs(search, trackBest, trackOrder, slots, pulses,
              [&](const Placed& placed, int outerTrack, int innerTrack, const PairStep& step) {
                return tracks == 5 ? bestPair<8>(search, diagonal, placed, outerTrack, innerTrack, step)
                                   : bestPair<10>(search, diagonal, placed, outerTrack, innerTrack, step);
              });
}
