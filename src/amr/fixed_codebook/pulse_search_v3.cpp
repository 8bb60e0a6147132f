// Searches of the pulse positions: AVX2 kernels. Two searches at a time, one in each half of the registers; see the SSE2
// kernels.
#include <bit>

#include "amr/fixed_codebook/kernels.h"
#include "amr/fixed_codebook/pulse_search_w7.h"
#include "core/simd_v3.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

W loadTwo(const Zpp16s* first, const Zpp16s* second) { return joined(load(first), load(second)); }
W both(Zpp16s x) { return _mm256_set1_epi16(x); }
W both(Zpp16s low, Zpp16s high) { return _mm256_broadcastsi128_si256(weights(low, high)); }
W isAbove(W x, Zpp16s limit) { return _mm256_cmpgt_epi16(x, both(limit)); }
W magnitudes(W x) { return _mm256_max_epi16(x, _mm256_subs_epi16(_mm256_setzero_si256(), x)); }
template <int Lanes>
W pick(W a, W b) {
  return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), Lanes));
}
// As of the SSE2 kernels
W swapNegated(W pairs) {
  const W swapped = _mm256_shufflehi_epi16(_mm256_shufflelo_epi16(pairs, _MM_SHUFFLE(2, 3, 0, 1)), _MM_SHUFFLE(2, 3, 0, 1));
  return _mm256_sign_epi16(swapped, both(1, -1));
}

constexpr int kSlots = 8;

// Two pairs of tracks
struct TwoTasks {
  const PairTask* task;

  W slots(const Zpp16s* from, int PairTask::*track) const { return loadTwo(from + task[0].*track, from + task[1].*track); }
};

// What the candidates of two pairs of tracks are made of, as PairTerms of the SSE2 kernels
struct Terms {
  W outerEnergy, outerRest, innerEnergy, innerRest;
  V restBits;
};

// Where a sum may saturate is told by the return value.
template <int Level>
W prepare(const PairSearch& search, const Zpp16s* diagonal, const TwoTasks& two, Terms& terms) {
  constexpr PairStep step = kPairSteps[Level];
  constexpr int kCount = 2 * Level + 2, kHalf = 0x4000;
  constexpr int crossBits = std::countr_zero(static_cast<Zpp16u>(step.cross));
  constexpr int innerBits = std::countr_zero(static_cast<Zpp16u>(step.ofInner));
  const PairTask *const a = &two.task[0], *const b = &two.task[1];
  const Zpp16s *rowsA[kCount], *rowsB[kCount];
  unrolled<kCount>([&](int j) {
    rowsA[j] = search.matrix + a->placed->slots[j] * kSubframe;
    rowsB[j] = search.matrix + b->placed->slots[j] * kSubframe;
  });
  const W ones = both(1), ofOuter = two.slots(diagonal, &PairTask::outerTrack),
          ofInner = two.slots(diagonal, &PairTask::innerTrack);
  const W outerOwn = both(step.outer.own, kHalf), outerEach = both(step.outer.each, step.outer.each);
  const W innerOwn = both(step.inner.own, kHalf), innerEach = both(step.inner.each, step.inner.each);
  const W before = joined(_mm_set1_epi32(a->placed->energy / 2), _mm_set1_epi32(b->placed->energy / 2));
  W outerLow = _mm256_add_epi32(before, _mm256_madd_epi16(_mm256_unpacklo_epi16(ofOuter, ones), outerOwn));
  W outerHigh = _mm256_add_epi32(before, _mm256_madd_epi16(_mm256_unpackhi_epi16(ofOuter, ones), outerOwn));
  W innerLow = _mm256_madd_epi16(_mm256_unpacklo_epi16(ofInner, ones), innerOwn);
  W innerHigh = _mm256_madd_epi16(_mm256_unpackhi_epi16(ofInner, ones), innerOwn);
  const auto weighted = [](W entries, Zpp16s weight) {  // in magnitude, truncated
    return _mm256_mulhi_epu16(_mm256_abs_epi16(entries), both(static_cast<Zpp16s>(2 * weight)));
  };
  W innerMagnitudes = weighted(ofInner, step.inner.own);
  unrolled<kCount / 2>([&](int pair) {
    const int j = 2 * pair;
    const W outer0 = loadTwo(rowsA[j] + a->outerTrack, rowsB[j] + b->outerTrack);
    const W outer1 = loadTwo(rowsA[j + 1] + a->outerTrack, rowsB[j + 1] + b->outerTrack);
    const W inner0 = loadTwo(rowsA[j] + a->innerTrack, rowsB[j] + b->innerTrack);
    const W inner1 = loadTwo(rowsA[j + 1] + a->innerTrack, rowsB[j + 1] + b->innerTrack);
    outerLow = _mm256_add_epi32(outerLow, _mm256_madd_epi16(_mm256_unpacklo_epi16(outer0, outer1), outerEach));
    outerHigh = _mm256_add_epi32(outerHigh, _mm256_madd_epi16(_mm256_unpackhi_epi16(outer0, outer1), outerEach));
    innerLow = _mm256_add_epi32(innerLow, _mm256_madd_epi16(_mm256_unpacklo_epi16(inner0, inner1), innerEach));
    innerHigh = _mm256_add_epi32(innerHigh, _mm256_madd_epi16(_mm256_unpackhi_epi16(inner0, inner1), innerEach));
    if constexpr (step.innerMayExceed) {
      innerMagnitudes = _mm256_adds_epi16(innerMagnitudes, weighted(inner0, step.inner.each));
      innerMagnitudes = _mm256_adds_epi16(innerMagnitudes, weighted(inner1, step.inner.each));
    }
  });
  const W inner = _mm256_packs_epi32(_mm256_srai_epi32(innerLow, 15), _mm256_srai_epi32(innerHigh, 15));
  W wrong = _mm256_setzero_si256();
  if constexpr (step.innerMayExceed) wrong = isAbove(innerMagnitudes, kMostMagnitudes);
  if constexpr (step.energyMayExceed) {
    const W outer = _mm256_packs_epi32(_mm256_srai_epi32(outerLow, 15), _mm256_srai_epi32(outerHigh, 15));
    wrong = _mm256_or_si256(
        wrong, _mm256_or_si256(isAbove(magnitudes(outer), kMostOuterEnergy), isAbove(magnitudes(inner), kMostInnerSum)));
  }
  const W rest = _mm256_set1_epi32((1 << (15 - crossBits)) - 1);
  const auto above15 = [](W x) { return _mm256_srai_epi32(_mm256_slli_epi32(x, 1), 16); };  // modulo 2^16
  terms.outerEnergy = _mm256_packs_epi32(above15(outerLow), above15(outerHigh));
  terms.outerRest = _mm256_packs_epi32(_mm256_and_si256(_mm256_srli_epi32(outerLow, crossBits), rest),
                                       _mm256_and_si256(_mm256_srli_epi32(outerHigh, crossBits), rest));
  terms.innerEnergy = _mm256_srai_epi16(inner, 15 - innerBits);
  terms.innerRest = _mm256_slli_epi16(_mm256_and_si256(inner, both((1 << (15 - innerBits)) - 1)), innerBits - crossBits);
  terms.restBits = _mm_cvtsi32_si128(15 - crossBits);
  return wrong;
}

// Elements of two tracks spread over the lanes of their halves one by one
struct Spread {
  explicit Spread(W slots) : twice{_mm256_unpacklo_epi16(slots, slots), _mm256_unpackhi_epi16(slots, slots)} {}
  template <int i>
  W of() const {
    return _mm256_shuffle_epi32(twice[i / 4], i % 4 * 0x55);
  }
  W twice[2];
};

// Of eight inner slots of two searches the best with all outer ones, as BestOfSlots of the SSE2 kernels
struct BestOfTwo {
  W low, high, outer;
};

// The standard's loops with the inner tracks' slots side by side. Where that gives no ordered set or may differ is told by the
// return value.
W compareRows(const PairSearch& search, const Terms& terms, const TwoTasks& two, BestOfTwo& best) {
  const PairTask *const a = &two.task[0], *const b = &two.task[1];
  const W zero = _mm256_setzero_si256();
  const W before = joined(_mm_set1_epi16(a->placed->sum), _mm_set1_epi16(b->placed->sum));
  const Spread energy1(terms.outerEnergy), rest1(terms.outerRest),
      sum1(_mm256_adds_epi16(before, two.slots(search.corr, &PairTask::outerTrack)));
  const W ofTrack = two.slots(search.corr, &PairTask::innerTrack);
  W smallest = both(kMax16), largest = zero;  // energy and sum; cross term
  const Zpp16s* const rowsA = search.matrix + a->outerTrack * kSubframe + a->innerTrack;
  const Zpp16s* const rowsB = search.matrix + b->outerTrack * kSubframe + b->innerTrack;
  W low = zero, high = zero, outer = zero;
  unrolled<kSlots>([&](auto row) {
    constexpr int i = decltype(row)::value;
    const W cross = loadTwo(rowsA + i * kSubframe, rowsB + i * kSubframe);
    largest = _mm256_max_epi16(largest, cross);
    const W rest = _mm256_add_epi16(_mm256_add_epi16(cross, terms.innerRest), rest1.template of<i>());
    const W energy =
        _mm256_add_epi16(_mm256_add_epi16(_mm256_sra_epi16(rest, terms.restBits), terms.innerEnergy), energy1.template of<i>());
    const W sum = _mm256_adds_epi16(sum1.template of<i>(), ofTrack);
    smallest = _mm256_min_epi16(_mm256_min_epi16(smallest, energy), sum);
    const W square = _mm256_mulhi_epu16(_mm256_add_epi16(sum, sum), sum), negated = _mm256_sub_epi16(zero, square);
    if constexpr (i == 0) {
      low = _mm256_unpacklo_epi16(energy, negated);
      high = _mm256_unpackhi_epi16(energy, negated);
    } else {
      const W betterLow = _mm256_cmpgt_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(square, energy), low), zero);
      const W betterHigh = _mm256_cmpgt_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(square, energy), high), zero);
      const auto chosen = [](W better, W now, W then) {
        return _mm256_xor_si256(_mm256_and_si256(_mm256_xor_si256(now, then), better), then);
      };
      low = chosen(betterLow, _mm256_unpacklo_epi16(energy, negated), low);
      high = chosen(betterHigh, _mm256_unpackhi_epi16(energy, negated), high);
      outer = _mm256_max_epi16(outer, _mm256_and_si256(_mm256_packs_epi32(betterLow, betterHigh), both(i)));
    }
  });
  best = {low, high, outer};
  // Two rests stay below 128. Sums are hardly ever negative.
  return _mm256_or_si256(isAbove(largest, kMax16 - 128), _mm256_cmpgt_epi16(both(1), smallest));
}

// Where two times two searches have their best, as firstPlaces of the SSE2 kernels: places[k] of the two of searches[k]
void firstPlaces(const BestOfTwo* searches, V (*places)[2]) {
  const W zero = _mm256_setzero_si256(), slot = _mm256_broadcastsi128_si256(_mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7));
  const auto better = [](W a, W b) {
    const W one = pick<_MM_SHUFFLE(2, 0, 2, 0)>(a, b), other = pick<_MM_SHUFFLE(3, 1, 3, 1)>(a, b);
    const W beaten = _mm256_cmpgt_epi32(_mm256_setzero_si256(), _mm256_madd_epi16(one, swapNegated(other)));
    return _mm256_xor_si256(one, _mm256_and_si256(_mm256_xor_si256(one, other), beaten));
  };
  const W ofTwo = better(better(searches[0].low, searches[0].high), better(searches[1].low, searches[1].high));
  const W opposite = swapNegated(better(ofTwo, ofTwo));
  unrolled<2>([&](auto number) {
    constexpr int k = decltype(number)::value;
    const W best = _mm256_shuffle_epi32(opposite, k * 0x55);
    const W equal = _mm256_packs_epi32(_mm256_cmpeq_epi32(_mm256_madd_epi16(searches[k].low, best), zero),
                                       _mm256_cmpeq_epi32(_mm256_madd_epi16(searches[k].high, best), zero));
    const W others = _mm256_cmpeq_epi16(equal, zero);
    const W order = _mm256_or_si256(_mm256_or_si256(_mm256_slli_epi16(searches[k].outer, 3), slot), others);
    places[k][0] = _mm_minpos_epu16(lowHalf(order));
    places[k][1] = _mm_minpos_epu16(highHalf(order));
  });
}

// PairSearch::best of four tasks
void bestPairs(const PairSearch& search, const Zpp16s* diagonal, const PairTask* tasks, const PairStep& step, BestPair* found) {
  BestOfTwo best[2];
  unsigned wrong[2];
  const auto compare = [&](auto level) {
    for (int k = 0; k < 2; ++k) {
      const TwoTasks two = {tasks + 2 * k};
      Terms terms;
      const W saturates = prepare<decltype(level)::value>(search, diagonal, two, terms);
      wrong[k] =
          static_cast<unsigned>(_mm256_movemask_epi8(_mm256_or_si256(saturates, compareRows(search, terms, two, best[k]))));
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
  V places[2][2];
  firstPlaces(best, places);
  unrolled<4>([&](auto number) {
    constexpr int t = decltype(number)::value, half = t % 2;
    const PairTask& task = tasks[t];
    if ((wrong[t / 2] >> 16 * half & 0xffff) != 0) [[unlikely]] {
      found[t] = search.best(task, step);
      return;
    }
    const int place = _mm_cvtsi128_si32(places[t / 2][half]) & 0xffff;
    const BestOfTwo& of = best[t / 2];
    const BestOfSlots slots = half == 0 ? BestOfSlots{lowHalf(of.low), lowHalf(of.high), lowHalf(of.outer)}
                                        : BestOfSlots{highHalf(of.low), highHalf(of.high), highHalf(of.outer)};
    BestPair pair = {slots.criterion(place % kSlots), 0, static_cast<Zpp16s>(task.outerTrack + place / kSlots),
                     static_cast<Zpp16s>(task.innerTrack + place % kSlots)};
    pair.sum = addSat16(addSat16(task.placed->sum, search.corr[pair.outer]), search.corr[pair.inner]);
    found[t] = pair;
  });
}

}  // namespace

void ownSearchOptimalPulsePos_M102M122_GSMAMR_16s_V3(const Zpp16s* corr, const Zpp16s* matrix, const Zpp16s* trackBest,
                                                     const Zpp16s* trackOrder, Zpp16s* slots, int pulses, int tracks) {
  if (tracks != 5)
    return ownSearchOptimalPulsePos_M102M122_GSMAMR_16s_W7(corr, matrix, trackBest, trackOrder, slots, pulses, tracks);
  const PairSearch search = {corr, matrix, kFiveTracks};
  alignas(16) Zpp16s diagonal[kSubframe];
  for (int slot = 0; slot < kSubframe; ++slot) diagonal[slot] = matrix[slot * (kSubframe + 1)];
  searchPairs(search, trackBest, trackOrder, slots, pulses,
              [&](const PairTask* tasks, int, const PairStep& step, BestPair* found) {
                bestPairs(search, diagonal, tasks, step, found);
              });
}
