// Searches of the pulse positions: SSE2 kernels. They compare candidates in pairs, earlier against later, so that the first of
// equals wins as in the standard's loops. That needs positive energies: criteria with others are no ordered set, and what
// the loops then arrive at is found step by step.
#include <bit>

#include "amr/fixed_codebook/kernels.h"
#include "amr/fixed_codebook/pulse_search_w7.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

// Criteria as square (low) and energy (high) of 32-bit lanes
V pairsLow(V square, V energy) { return _mm_unpacklo_epi16(square, energy); }
V pairsHigh(V square, V energy) { return _mm_unpackhi_epi16(square, energy); }
// Plays lanes 0 and 1, 2 and 3 of a, then of b, against each other; the later one must be better to win.
V winners(V a, V b) {
  const V earlier = pick<_MM_SHUFFLE(2, 0, 2, 0)>(a, b), later = pick<_MM_SHUFFLE(3, 1, 3, 1)>(a, b);
  const V beaten = _mm_cmpgt_epi32(_mm_madd_epi16(swapNegated(earlier), later), _mm_setzero_si128());
  return _mm_xor_si128(earlier, _mm_and_si128(_mm_xor_si128(earlier, later), beaten));
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
bool prepare(const PairSearch& search, const Zpp16s* diagonal, const PairTask& task, PairTerms<PerTrack>& terms) {
  constexpr PairStep step = kPairSteps[Level];
  constexpr int kCount = 2 * Level + 2, kHalf = 0x4000;
  constexpr int crossBits = std::countr_zero(static_cast<Zpp16u>(step.cross));
  constexpr int innerBits = std::countr_zero(static_cast<Zpp16u>(step.ofInner));
  static_assert(step.cross == 1 << crossBits && step.ofInner == 1 << innerBits);
  const Placed& placed = *task.placed;
  const Zpp16s* rows[kCount];
  unrolled<kCount>([&](int j) { rows[j] = search.matrix + placed.slots[j] * kSubframe; });
  for (int i = 0; i < PairTerms<PerTrack>::kVectors; ++i) {
    // Of one more pulse with those placed before, Q15 and 15 bits, rounded
    const int outerSlot = task.outerTrack + 2 * i, innerSlot = task.innerTrack + 2 * i;
    const V ones = _mm_set1_epi16(1), ofOuter = load(diagonal + outerSlot), ofInner = load(diagonal + innerSlot);
    const V outerOwn = weights(step.outer.own, kHalf), outerEach = weights(step.outer.each, step.outer.each);
    const V innerOwn = weights(step.inner.own, kHalf), innerEach = weights(step.inner.each, step.inner.each);
    const V before = _mm_set1_epi32(placed.energy / 2);
    V outerLow = _mm_add_epi32(before, _mm_madd_epi16(_mm_unpacklo_epi16(ofOuter, ones), outerOwn));
    V outerHigh = _mm_add_epi32(before, _mm_madd_epi16(_mm_unpackhi_epi16(ofOuter, ones), outerOwn));
    V innerLow = _mm_madd_epi16(_mm_unpacklo_epi16(ofInner, ones), innerOwn);
    V innerHigh = _mm_madd_epi16(_mm_unpackhi_epi16(ofInner, ones), innerOwn);
    const auto weighted = [](V entries, Zpp16s weight) {  // in magnitude, truncated
      return _mm_mulhi_epi16(magnitudes(entries), _mm_set1_epi16(static_cast<Zpp16s>(2 * weight)));
    };
    V innerMagnitudes = weighted(ofInner, step.inner.own);
    unrolled<kCount / 2>([&](int pair) {
      const Zpp16s *const row0 = rows[2 * pair], *const row1 = rows[2 * pair + 1];
      const V outer0 = load(row0 + outerSlot), outer1 = load(row1 + outerSlot);
      const V inner0 = load(row0 + innerSlot), inner1 = load(row1 + innerSlot);
      outerLow = _mm_add_epi32(outerLow, _mm_madd_epi16(_mm_unpacklo_epi16(outer0, outer1), outerEach));
      outerHigh = _mm_add_epi32(outerHigh, _mm_madd_epi16(_mm_unpackhi_epi16(outer0, outer1), outerEach));
      innerLow = _mm_add_epi32(innerLow, _mm_madd_epi16(_mm_unpacklo_epi16(inner0, inner1), innerEach));
      innerHigh = _mm_add_epi32(innerHigh, _mm_madd_epi16(_mm_unpackhi_epi16(inner0, inner1), innerEach));
      if constexpr (step.innerMayExceed) {
        innerMagnitudes = _mm_adds_epi16(innerMagnitudes, weighted(inner0, step.inner.each));
        innerMagnitudes = _mm_adds_epi16(innerMagnitudes, weighted(inner1, step.inner.each));
      }
    });
    const V inner = _mm_packs_epi32(_mm_srai_epi32(innerLow, 15), _mm_srai_epi32(innerHigh, 15));
    if (step.innerMayExceed && any(isAbove(innerMagnitudes, kMostMagnitudes))) return false;
    if constexpr (step.energyMayExceed) {
      const V outer = _mm_packs_epi32(_mm_srai_epi32(outerLow, 15), _mm_srai_epi32(outerHigh, 15));
      if (any(_mm_or_si128(isAbove(magnitudes(outer), kMostOuterEnergy), isAbove(magnitudes(inner), kMostInnerSum))))
        return false;
    }
    const V rest = _mm_set1_epi32((1 << (15 - crossBits)) - 1);
    const auto above15 = [](V x) { return _mm_srai_epi32(_mm_slli_epi32(x, 1), 16); };  // modulo 2^16
    terms.outerEnergy[i] = _mm_packs_epi32(above15(outerLow), above15(outerHigh));
    terms.outerRest[i] = _mm_packs_epi32(_mm_and_si128(_mm_srli_epi32(outerLow, crossBits), rest),
                                         _mm_and_si128(_mm_srli_epi32(outerHigh, crossBits), rest));
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

// Where four searches have their best, the first in the order of the loops: 8 times the outer slot plus the inner one, in the
// even lanes. Of equal quotients any gives the criterion to compare with; which pair is meant, its place tells.
V firstPlaces(const BestOfSlots* searches) {
  const V zero = _mm_setzero_si128(), slot = _mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7);
  const auto better = [](V a, V b) {
    const V one = pick<_MM_SHUFFLE(2, 0, 2, 0)>(a, b), other = pick<_MM_SHUFFLE(3, 1, 3, 1)>(a, b);
    const V beaten = _mm_cmplt_epi32(_mm_madd_epi16(one, swapNegated(other)), _mm_setzero_si128());
    return _mm_xor_si128(one, _mm_and_si128(_mm_xor_si128(one, other), beaten));
  };
  V ofFour[4], order[4];
  unrolled<4>([&](int i) { ofFour[i] = better(searches[i].low, searches[i].high); });
  const V opposite = swapNegated(better(better(ofFour[0], ofFour[1]), better(ofFour[2], ofFour[3])));
  unrolled<4>([&](auto search) {
    constexpr int i = decltype(search)::value;
    const V best = _mm_shuffle_epi32(opposite, i * 0x55);
    const V equal = _mm_packs_epi32(_mm_cmpeq_epi32(_mm_madd_epi16(searches[i].low, best), zero),
                                    _mm_cmpeq_epi32(_mm_madd_epi16(searches[i].high, best), zero));
    order[i] = select(equal, _mm_or_si128(_mm_slli_epi16(searches[i].outer, 3), slot), _mm_set1_epi16(kMax16));
  });
  const V halves01 = _mm_min_epi16(_mm_unpacklo_epi64(order[0], order[1]), _mm_unpackhi_epi64(order[0], order[1]));
  const V halves23 = _mm_min_epi16(_mm_unpacklo_epi64(order[2], order[3]), _mm_unpackhi_epi64(order[2], order[3]));
  V least = _mm_min_epi16(pick<_MM_SHUFFLE(2, 0, 2, 0)>(halves01, halves23), pick<_MM_SHUFFLE(3, 1, 3, 1)>(halves01, halves23));
  return _mm_min_epi16(least, _mm_srli_epi32(least, 16));
}

// The standard's loops with the inner track's slots side by side; each lane keeps the best of its slot. False when that gives
// no ordered set or may differ.
template <int PerTrack>
bool compareRows(const PairSearch& search, const PairTerms<PerTrack>& terms, const PairTask& task,
                 BestOfSlots (*best)[kMostPasses], int pass) {
  constexpr int kVectors = PairTerms<PerTrack>::kVectors;
  const V zero = _mm_setzero_si128();
  V sums[kVectors], ofTrack[kVectors];
  for (int i = 0; i < kVectors; ++i) {
    sums[i] = _mm_adds_epi16(_mm_set1_epi16(task.placed->sum), load(search.corr + task.outerTrack + 2 * i));
    ofTrack[i] = load(search.corr + task.innerTrack + 2 * i);
  }
  const Spread<PerTrack> energy1(terms.outerEnergy), rest1(terms.outerRest), sum1(sums);
  V smallest = _mm_set1_epi16(kMax16), largest = zero;  // energy and sum; cross term
  for (int k = 0; k < kVectors; ++k) {
    const Zpp16s* const rows = search.matrix + task.outerTrack * kSubframe + task.innerTrack + 2 * k;
    V low = zero, high = zero, outer = zero;
    unrolled<PerTrack>([&](auto row) {
      constexpr int i = decltype(row)::value;
      const V cross = load(rows + i * kSubframe);
      largest = _mm_max_epi16(largest, cross);
      const V rest = _mm_add_epi16(_mm_add_epi16(cross, terms.innerRest[k]), rest1.template of<i>());
      const V energy =
          _mm_add_epi16(_mm_add_epi16(_mm_sra_epi16(rest, terms.restBits), terms.innerEnergy[k]), energy1.template of<i>());
      const V sum = _mm_adds_epi16(sum1.template of<i>(), ofTrack[k]);
      smallest = _mm_min_epi16(_mm_min_epi16(smallest, energy), sum);
      const V square = _mm_mulhi_epu16(_mm_add_epi16(sum, sum), sum), negated = _mm_sub_epi16(zero, square);
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
    best[k][pass] = {low, high, outer};
  }
  // Two rests stay below 128. Sums are hardly ever negative.
  return !any(_mm_or_si128(isAbove(largest, kMax16 - 128), _mm_cmplt_epi16(smallest, _mm_set1_epi16(1))));
}

// PairSearch::best of up to four tasks. What waits for the last candidates of one, the processor computes of the next; then the
// best of all are found side by side.
template <int PerTrack>
void bestPairs(const PairSearch& search, const Zpp16s* diagonal, const PairTask* tasks, int count, const PairStep& step,
               BestPair* found) {
  constexpr int kVectors = PairTerms<PerTrack>::kVectors;
  BestOfSlots best[kVectors][kMostPasses] = {};
  bool exact[kMostPasses];
  const auto compare = [&](auto level) {
    for (int t = 0; t < count; ++t) {
      PairTerms<PerTrack> terms;
      exact[t] = prepare<PerTrack, decltype(level)::value>(search, diagonal, tasks[t], terms) &&
                 compareRows(search, terms, tasks[t], best, t);
    }
  };
  switch (tasks[0].placed->count) {
    case 2:
      compare(std::integral_constant<int, 0>{});
      break;
    case 4:
      compare(std::integral_constant<int, 1>{});
      break;
    case 6:
      compare(std::integral_constant<int, 2>{});
      break;
    default:
      compare(std::integral_constant<int, 3>{});
      break;
  }
  alignas(16) Zpp16s places[kVectors][8];
  for (int k = 0; k < kVectors; ++k) store(places[k], firstPlaces(best[k]));
  for (int t = 0; t < count; ++t) {
    const PairTask& task = tasks[t];
    if (!exact[t]) {
      found[t] = search.best(task, step);
      continue;
    }
    const auto pairOf = [&](int k) {
      const int place = places[k][2 * t];
      return BestPair{best[k][t].criterion(place % 8), 0, static_cast<Zpp16s>(task.outerTrack + place / 8),
                      static_cast<Zpp16s>(task.innerTrack + 2 * k + place % 8)};
    };
    BestPair pair = pairOf(0);
    for (int k = 1; k < kVectors; ++k) {
      const BestPair other = pairOf(k);
      const bool earlier = other.outer < pair.outer || (other.outer == pair.outer && other.inner < pair.inner);
      if (other.reached.beats(pair.reached) || (earlier && !pair.reached.beats(other.reached))) pair = other;
    }
    pair.sum = addSat16(addSat16(task.placed->sum, search.corr[pair.outer]), search.corr[pair.inner]);
    found[t] = pair;
  }
}

}  // namespace

void ownSearchOptimalPulsePos_M102M122_GSMAMR_16s_W7(const Zpp16s* corr, const Zpp16s* matrix, const Zpp16s* trackBest,
                                                     const Zpp16s* trackOrder, Zpp16s* slots, int pulses, int tracks) {
  const PairSearch search = {corr, matrix, gridOf(tracks)};
  alignas(16) Zpp16s diagonal[kSubframe];
  for (int slot = 0; slot < kSubframe; ++slot) diagonal[slot] = matrix[slot * (kSubframe + 1)];
  searchPairs(search, trackBest, trackOrder, slots, pulses,
              [&](const PairTask* tasks, int passes, const PairStep& step, BestPair* found) {
                if (tracks == 5)
                  bestPairs<8>(search, diagonal, tasks, passes, step, found);
                else
                  bestPairs<10>(search, diagonal, tasks, passes, step, found);
              });
}
