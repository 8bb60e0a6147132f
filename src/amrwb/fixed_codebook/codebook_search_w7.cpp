// Search of the algebraic codebook: SSE2 kernels.
#include <bit>

#include "amrwb/arithmetic.h"
#include "amrwb/fixed_codebook/kernels.h"
#include "amrwb/fixed_codebook/lead_w7.h"
#include "amrwb/fixed_codebook/search.h"
#include "core/simd_w7.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// From the order of positions to that of places: every fourth of 32 elements
inline void byTrack(const V (&v)[4], V (&out)[4]) {
  const V a = _mm_unpacklo_epi16(v[0], v[1]), b = _mm_unpackhi_epi16(v[0], v[1]);
  const V c = _mm_unpacklo_epi16(v[2], v[3]), d = _mm_unpackhi_epi16(v[2], v[3]);
  const V even1 = _mm_unpacklo_epi16(a, b), odd1 = _mm_unpackhi_epi16(a, b);
  const V even2 = _mm_unpacklo_epi16(c, d), odd2 = _mm_unpackhi_epi16(c, d);
  out[0] = _mm_unpacklo_epi64(even1, even2);
  out[1] = _mm_unpackhi_epi64(even1, even2);
  out[2] = _mm_unpacklo_epi64(odd1, odd2);
  out[3] = _mm_unpackhi_epi64(odd1, odd2);
}

inline V abs32(V v) {
  const V sign = _mm_srai_epi32(v, 31);
  return _mm_sub_epi32(_mm_xor_si128(v, sign), sign);
}

}  // namespace

void ownChooseSigns_AMRWB_16s_W7(const Zpp32s* sums, const Zpp16s* residualTarget, Zpp16s weight, PulseTarget* target,
                                 Zpp16s* rank) {
  // Lane k: of track k
  V largest = _mm_setzero_si128();
  for (int n = 0; n < kSubframe; n += 4) {
    const V magnitude = abs32(load(sums + n));
    largest = select(_mm_cmpgt_epi32(magnitude, largest), magnitude, largest);
    // The magnitude of the least number is none.
    if (_mm_movemask_epi8(_mm_cmpgt_epi32(_mm_setzero_si128(), magnitude)) != 0) [[unlikely]]
      return ownChooseSigns_AMRWB_16s_PX(sums, residualTarget, weight, target, rank);
  }
  Zpp32s most[4], total = 1;
  store(most, _mm_srai_epi32(largest, 2));
  for (const Zpp32s m : most) total = addSat32(addSat32(total, m), m >> 1);
  // A sum is at most 8/3 of the total: shifted left by four bits less than that allows, it does not saturate.
  const int shift = norm32(total) - 4;
  const V left = _mm_cvtsi32_si128(shift > 0 ? shift : 0), right = _mm_cvtsi32_si128(shift < 0 ? -shift : 0);
  alignas(16) Zpp16s corr[kSubframe];
  const auto rounded = [&](const Zpp32s* from) {
    const V scaled = _mm_sra_epi32(_mm_sll_epi32(load(from), left), right);
    return _mm_srai_epi32(_mm_add_epi32(scaled, _mm_set1_epi32(0x8000)), 16);
  };
  for (int n = 0; n < kSubframe; n += 8) store(corr + n, _mm_packs_epi32(rounded(sums + n), rounded(sums + n + 4)));

  const SignGains gains(residualTarget, corr, weight);
  const V factors = pairOf(gains.residual, gains.corr), zero = _mm_setzero_si128();
  alignas(16) Zpp16s merit[kSubframe];
  for (int half = 0; half < 2; ++half) {
    V residuals[4], corrs[4], residual[4], backward[4];
    for (int k = 0; k < 4; ++k) {
      residuals[k] = load(residualTarget + 32 * half + 8 * k);
      corrs[k] = load(corr + 32 * half + 8 * k);
    }
    byTrack(residuals, residual);
    byTrack(corrs, backward);
    for (int track = 0; track < 4; ++track) {
      const int place = 16 * track + 8 * half;
      // Neither factor is below 0, so the sum of two products fits; packing saturates it as the standard's shift does.
      const V low = _mm_madd_epi16(_mm_unpacklo_epi16(residual[track], backward[track]), factors);
      const V high = _mm_madd_epi16(_mm_unpackhi_epi16(residual[track], backward[track]), factors);
      const V b = _mm_packs_epi32(_mm_srai_epi32(low, 7), _mm_srai_epi32(high, 7)), negative = _mm_srai_epi16(b, 15);
      store(target->sign + place, _mm_xor_si128(negative, _mm_set1_epi16(kPositive)));
      store(target->corr + place, select(negative, _mm_subs_epi16(zero, backward[track]), backward[track]));
      store(merit + place, select(negative, _mm_subs_epi16(zero, b), b));
    }
  }

  // Rank: the number of larger ones, and of equal ones before
  static constexpr Zpp16s behind[32] = {0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,
                                        -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  for (int first = 0; first < kSubframe; first += 16) {
    const V low = load(merit + first), high = load(merit + first + 8);
    V lowRank = zero, highRank = zero;
    for (int i = 0; i < 16; ++i) {
      const V one = _mm_set1_epi16(merit[first + i]);
      const V lowTie = _mm_and_si128(_mm_cmpeq_epi16(one, low), load(behind + 15 - i));
      const V highTie = _mm_and_si128(_mm_cmpeq_epi16(one, high), load(behind + 23 - i));
      lowRank = _mm_sub_epi16(lowRank, _mm_add_epi16(_mm_cmpgt_epi16(one, low), lowTie));
      highRank = _mm_sub_epi16(highRank, _mm_add_epi16(_mm_cmpgt_epi16(one, high), highTie));
    }
    store(rank + first, lowRank);
    store(rank + first + 8, highRank);
  }
}

namespace {

// The response's samples of each track from the last to the first, behind as much silence, twice each: those of even places in
// this order, and those of odd ones
struct TwiceReversed {
  alignas(16) Zpp32s samples[4][2][16] = {};

  explicit TwiceReversed(const Zpp16s* impulse) {
    for (int half = 0; half < 2; ++half) {
      V inOrder[4], tracks[4];
      for (int k = 0; k < 4; ++k) inOrder[k] = load(impulse + 32 * half + 8 * k);
      byTrack(inOrder, tracks);
      for (int track = 0; track < 4; ++track) {
        const V v = reversed(tracks[track]);
        const V even = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, _MM_SHUFFLE(2, 2, 0, 0)), _MM_SHUFFLE(2, 2, 0, 0));
        const V odd = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, _MM_SHUFFLE(3, 3, 1, 1)), _MM_SHUFFLE(3, 3, 1, 1));
        store(samples[track][0] + 12 - 4 * half, even);
        store(samples[track][1] + 12 - 4 * half, odd);
      }
    }
  }
};

// Eight running sums of products, doubled, in the lanes of two registers: those of even and of odd places
struct Sums {
  V even = _mm_set1_epi32(0x8000), odd = even;

  // Adds products with a sample, x, that stands in all lanes; returns the upper words in their order.
  V add(V x, const Zpp32s* evenSamples, const Zpp32s* oddSamples) {
    even = _mm_add_epi32(even, _mm_madd_epi16(x, load(evenSamples)));
    odd = _mm_add_epi32(odd, _mm_madd_epi16(x, load(oddSamples)));
    return _mm_or_si128(_mm_srli_epi32(even, 16), _mm_and_si128(odd, _mm_set1_epi32(static_cast<int>(0xffff0000))));
  }
};

// The sums of a pulse and the earlier ones of a track at distances 4 m + 1 or 4 m + 3: m from 15 to 8, and from 7 to 0.
struct PulseSums {
  Sums far, near;

  // Of the pulse at `index` in its track. x: the sample that joins the sums; samples: of the track where those lie that it is
  // multiplied with, past: how many have gone by. to: the matrix row, in which the pulse at distance 1 or 3 has column `last`.
  template <int past>
  [[gnu::always_inline]] void add(V x, const Zpp32s (&samples)[2][16], int block, int index, Zpp16s* to, int last) {
    // Places 16 - past - 2 block and on
    const Zpp32s* const evenSamples = samples[past % 2] + 8 - block - (past + 1) / 2;
    const Zpp32s* const oddSamples = samples[(past + 1) % 2] + 8 - block - past / 2;
    if (index >= 8) store(to + last - 15, far.add(x, evenSamples, oddSamples));
    const V latest = near.add(x, evenSamples + 4, oddSamples + 4);
    // What a row has too much lands in the half of the row before that the other matrix fills; before row 0 there is none.
    if (index > 0)
      store(to + last - 7, latest);
    else if (last == 0)
      *to = static_cast<Zpp16s>(_mm_extract_epi16(latest, 7));
  }
};

}  // namespace

void ownPulseCorrelations_AMRWB_16s_W7(const Zpp16s* impulse, PulseTarget* target) {
  // All sums are partial sums of autocorrelation lags: none saturates if the energy does not.
  if (ownDotProd_16s(impulse, impulse, kSubframe) > (kMax32 - 0x8000) / 2)
    return ownPulseCorrelations_AMRWB_16s_PX(impulse, target);

  // After n samples the sums belong to the pulse at 63 - n and earlier ones. Those at distances 4 m + 3, which lie in the track
  // behind, go to the row of the pulse in `cross`; those at 4 m + 1, in the track before, to the row of the pulse in `later`.
  const TwiceReversed twice(impulse);
  alignas(16) Zpp16s later[4][256];
  PulseSums behind, before;
  Zpp32s energy = 0x8000;
  for (int block = 0; block < 8; ++block)
    unrolled<8>([&](auto number) __attribute__((always_inline)) {
      constexpr int n = decltype(number)::value, track = 3 - n % 4;
      const int i = 15 - 2 * block - n / 4;
      const Zpp16s sample = impulse[8 * block + n];
      energy += 2 * sample * sample;
      target->energy[16 * track + i] = high16(energy);
      const V x = _mm_set1_epi16(sample);
      behind.add<(n + 3) / 4>(x, twice.samples[(n + 3) % 4], block, i, target->cross[track] + 16 * i, i - (track < 3));
      before.add<(n + 1) / 4>(x, twice.samples[(n + 1) % 4], block, i, later[(track + 3) % 4] + 16 * i, i - (track == 0));
    });

  // Below the diagonal the pulse of the first track is the later one. In the pair of tracks 3 and 0 it is on the diagonal, too.
  alignas(16) static constexpr Zpp16s kFrom[16] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
  for (int track = 0; track < 4; ++track) {
    const Zpp16s* const kept = kFrom + (track == 3 ? 7 : 8);
    const Zpp16s *sign1 = target->sign + 16 * track, *sign2 = target->sign + 16 * ((track + 1) % 4);
    for (int block = 0; block < 2; ++block) {  // rows 8 block .. 8 block + 7
      const V signs = load(sign1 + 8 * block);
      const V signsTwice[2] = {_mm_unpacklo_epi16(signs, signs), _mm_unpackhi_epi16(signs, signs)};
      for (int side = 0; side < 2; ++side) {
        Zpp16s* const rows = target->cross[track] + 128 * block + 8 * side;
        V upper[8] = {};  // filled where it is used, which compilers do not always see
        if (block <= side) {
          unrolled<8>([&](int k)
                          __attribute__((always_inline)) { upper[k] = load(later[track] + 128 * side + 16 * k + 8 * block); });
          transpose(upper);
        }
        const V columnSigns = load(sign2 + 8 * side);
        unrolled<8>([&](auto row) __attribute__((always_inline)) {
          constexpr int k = decltype(row)::value;
          V value = load(rows + 16 * k);
          if (block < side) value = upper[k];
          if (block == side) value = select(load(kept - k), value, upper[k]);
          // A product with the sign: no entry is larger than the energies of 32767 and less, and 32767 rounds downwards.
          const V negative = _mm_xor_si128(columnSigns, _mm_shuffle_epi32(signsTwice[k / 4], k % 4 * 0x55));
          const V rounding = _mm_cmpgt_epi16(value, _mm_srli_epi16(negative, 1));
          store(rows + 16 * k, _mm_add_epi16(_mm_sub_epi16(_mm_xor_si128(value, negative), negative), rounding));
        });
      }
    }
  }
}

void ownPulseGains_AMRWB_16s_W7(const Zpp16s* impulse, const Zpp16s* filteredCode, const PulseTarget* target, int track,
                                Zpp16s* gain, bool exact) {
  if (!exact) return ownPulseGains_AMRWB_16s_PX(impulse, filteredCode, target, track, gain, exact);
  alignas(16) Zpp16s code[2 * kSubframe];  // silence follows
  for (int n = 0; n < kSubframe; n += 8) {
    store(code + n, load(filteredCode + n));
    store(code + kSubframe + n, _mm_setzero_si128());
  }
  for (int k = 0; k < 2; ++k) {
    const int t = (track + k) % 4;
    V sums[4];
    unrolled<4>([&](int quarter) __attribute__((always_inline)) {
      // Four positions; the response to the last of them ends after 64 - 16 quarter samples.
      const Zpp16s* const from = code + 16 * quarter + t;
      V a = _mm_setzero_si128(), b = a, c = a, d = a;
      for (int n = 0; n < kSubframe - 16 * quarter; n += 8) {
        const V h = load(impulse + n);
        a = _mm_add_epi32(a, _mm_madd_epi16(h, load(from + n)));
        b = _mm_add_epi32(b, _mm_madd_epi16(h, load(from + n + 4)));
        c = _mm_add_epi32(c, _mm_madd_epi16(h, load(from + n + 8)));
        d = _mm_add_epi32(d, _mm_madd_epi16(h, load(from + n + 12)));
      }
      // The saturated rounding of four times the sum is that of packing.
      sums[quarter] = _mm_srai_epi32(_mm_add_epi32(sumsOfLanes32(a, b, c, d), _mm_set1_epi32(0x2000)), 14);
    });
    for (int half = 0; half < 2; ++half) {
      const V product = mulQ15(_mm_packs_epi32(sums[2 * half], sums[2 * half + 1]), load(target->sign + 16 * t + 8 * half));
      store(gain + 16 * k + 8 * half, _mm_adds_epi16(product, load(target->energy + 16 * t + 8 * half)));
    }
  }
}

PulsePair ownSearchPulsePair_AMRWB_16s_W7(const PulseTarget* target, int track, Zpp16s corr, Zpp16s energy, const Zpp16s* gain,
                                          const Zpp16s* candidate) {
  // The three terms that are added to the energy stay below 2^30 together.
  if (energy >= 16383 || energy <= -16383) return ownSearchPulsePair_AMRWB_16s_PX(target, track, corr, energy, gain, candidate);
  const Zpp16s *corr1 = target->corr + 16 * track, *corr2 = target->corr + 16 * ((track + 1) % 4);
  const V zero = _mm_setzero_si128(), weights = pairOf(16384, 8192);  // of a cross term and of a gain
  alignas(16) Zpp16s partCorr[16];
  Zpp32s partEnergy[16];
  V taken[2];
  for (int half = 0; half < 2; ++half) {
    store(partCorr + 8 * half, _mm_adds_epi16(_mm_set1_epi16(corr), load(corr1 + 8 * half)));
    taken[half] = _mm_cmpeq_epi16(load(candidate + 8 * half), zero);
  }
  for (int i = 0; i < 16; ++i) partEnergy[i] = energy * 65536 + 0x8000 + gain[i] * 8192;

  // The lanes are the second pulse's positions. Each keeps its best ratio as (energy, -square), and the row that it lies in.
  struct {
    V corr, gain, low, high, row;
  } sides[2];
  unrolled<2>([&](int side) __attribute__((always_inline)) {
    sides[side] = {load(corr2 + 8 * side), load(gain + 16 + 8 * side), _mm_set1_epi16(1), _mm_set1_epi16(1), zero};
  });
  V least = _mm_set1_epi16(1);
  auto rows = ~static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(taken[0], taken[1]))) & 0xffff;
  for (; rows != 0; rows &= rows - 1) {
    const int i = std::countr_zero(rows);
    const V first = _mm_set1_epi16(partCorr[i]), part = _mm_set1_epi32(partEnergy[i]);
    const V number = _mm_set1_epi16(static_cast<Zpp16s>(i));
    const Zpp16s* const crossTerms = target->cross[track] + 16 * i;
    unrolled<2>([&](int side) __attribute__((always_inline)) {
      auto& s = sides[side];
      const V sum = _mm_adds_epi16(first, s.corr), cross = load(crossTerms + 8 * side);
      const V alpLow = _mm_add_epi32(part, _mm_madd_epi16(_mm_unpacklo_epi16(cross, s.gain), weights));
      const V alpHigh = _mm_add_epi32(part, _mm_madd_epi16(_mm_unpackhi_epi16(cross, s.gain), weights));
      const V alp = _mm_packs_epi32(_mm_srai_epi32(alpLow, 16), _mm_srai_epi32(alpHigh, 16));
      least = _mm_min_epi16(least, alp);
      const V square = mulQ15(sum, sum), minus = _mm_sub_epi16(zero, square);
      const auto replace = [&](V & best, V ratio, V replacement) __attribute__((always_inline)) {
        const V better = _mm_cmpgt_epi32(_mm_madd_epi16(ratio, best), zero);
        best = _mm_xor_si128(best, _mm_and_si128(better, _mm_xor_si128(best, replacement)));
        return better;
      };
      const V betterLow = replace(s.low, _mm_unpacklo_epi16(square, alp), _mm_unpacklo_epi16(alp, minus));
      const V betterHigh = replace(s.high, _mm_unpackhi_epi16(square, alp), _mm_unpackhi_epi16(alp, minus));
      s.row = _mm_max_epi16(s.row, _mm_and_si128(_mm_packs_epi32(betterLow, betterHigh), number));
    });
  }
  // With energies above 0 ratios can be put in order, so that lanes may be compared in any.
  if (_mm_movemask_epi8(_mm_cmpgt_epi16(_mm_set1_epi16(1), least)) != 0)
    return ownSearchPulsePair_AMRWB_16s_PX(target, track, corr, energy, gain, candidate);

  Lead leads[2][2];
  unrolled<2>([&](int side) __attribute__((always_inline)) {
    const V lanes = _mm_add_epi16(_mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7), _mm_set1_epi16(static_cast<Zpp16s>(8 * side)));
    const V place = _mm_or_si128(_mm_slli_epi16(sides[side].row, 4), lanes);
    leads[side][0] = {sides[side].low, _mm_unpacklo_epi16(place, zero)};
    leads[side][1] = {sides[side].high, _mm_unpackhi_epi16(place, zero)};
    leads[side][0].meet(leads[side][1]);
  });
  leads[0][0].meet(leads[1][0]);
  return leads[0][0].found();
}

namespace {

// Candidates in the lanes of two registers, eight at a time in the order of the search, against the best one so far
struct PairContest {
  BestRatio ratio;
  V factors = pairOf(ratio.energy, -ratio.square), least = _mm_set1_epi16(1);

  // Calls take(lane) for each that is better than all before.
  template <class Take>
  [[gnu::always_inline]] void enter(V square, V energy, Take take) {
    least = _mm_min_epi16(least, energy);
    // Eight candidates against the best so far, and those that pass in turn against better ones
    const V better = _mm_cmpgt_epi16(_mm_packs_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(square, energy), factors),
                                                     _mm_madd_epi16(_mm_unpackhi_epi16(square, energy), factors)),
                                     _mm_setzero_si128());
    auto passing = static_cast<unsigned>(_mm_movemask_epi8(better)) & 0x5555;  // a bit a lane
    if (passing == 0) return;
    alignas(16) Zpp16s squares[8], energies[8];
    store(squares, square);
    store(energies, energy);
    ratio.play(passing, squares, energies, take);
    factors = pairOf(ratio.energy, -ratio.square);
  }
  // With energies above 0 ratios can be put in order, so that what fails against a candidate fails against better ones too.
  bool isOrdered() const { return _mm_movemask_epi8(_mm_cmpgt_epi16(_mm_set1_epi16(1), least)) == 0; }
};

}  // namespace

PulsePair ownSearchTwoPulses_AMRWB_16s_W7(const PulseTarget* target, const Zpp16s* energy) {
  // Odd positions in their order: those of tracks 1 and 3 by turns
  V corr2[4], energy2[4];
  const auto byTurns = [](const Zpp16s* track1, const Zpp16s* track3, V* out) {
    const V a = load(track1), b = load(track3);
    out[0] = _mm_unpacklo_epi16(a, b);
    out[1] = _mm_unpackhi_epi16(a, b);
  };
  for (int side = 0; side < 2; ++side) {
    byTurns(target->corr + 16 + 8 * side, target->corr + 48 + 8 * side, corr2 + 2 * side);
    byTurns(energy + 16 + 8 * side, energy + 48 + 8 * side, energy2 + 2 * side);
  }
  // Tracks 0 and 2 are the first of a pair with one odd track and the second with the other: those matrices are transposed.
  alignas(16) Zpp16s turned[2][256];
  for (int odd = 0; odd < 2; ++odd)
    for (int block = 0; block < 4; ++block) {
      const Zpp16s* const from = target->cross[2 * odd + 1] + 128 * (block % 2) + 8 * (block / 2);
      V rows[8];
      unrolled<8>([&](int k) __attribute__((always_inline)) { rows[k] = load(from + 16 * k); });
      transpose(rows);
      unrolled<8>([&](int k) __attribute__((always_inline)) {
        store(turned[odd] + 128 * (block / 2) + 16 * k + 8 * (block % 2), rows[k]);
      });
    }

  PulsePair best = {0, 1, 1};
  PairContest contest;
  for (int even = 0; even < kSubframe; even += 2) {
    const int track = even % 4, i = even / 4;
    const Zpp16s* const row1 = (track == 0 ? target->cross[0] : turned[0]) + 16 * i;
    const Zpp16s* const row3 = (track == 0 ? turned[1] : target->cross[2]) + 16 * i;
    const V corr1 = _mm_set1_epi16(target->corr[placeOf(even)]), energy1 = _mm_set1_epi16(energy[placeOf(even)]);
    unrolled<2>([&](int side) __attribute__((always_inline)) {
      V cross[2];
      byTurns(row1 + 8 * side, row3 + 8 * side, cross);
      unrolled<2>([&](int half) __attribute__((always_inline)) {
        const int k = 2 * side + half;
        const V sum = _mm_adds_epi16(corr1, corr2[k]), alp = _mm_adds_epi16(energy1, _mm_adds_epi16(energy2[k], cross[half]));
        contest.enter(mulQ15(sum, sum), alp, [&](int lane) {
          best = {static_cast<Zpp16s>(even), static_cast<Zpp16s>(16 * k + 2 * lane + 1), contest.ratio.energy};
        });
      });
    });
  }
  return contest.isOrdered() ? best : ownSearchTwoPulses_AMRWB_16s_PX(target, energy);
}
