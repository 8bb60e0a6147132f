// Target of the codebook search and signs of its pulses (3GPP TS 26.090 clause 5.7): SSE2 kernels.
#include <bit>

#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kLanes = 8;

template <class T>
void toTrackOrder(const T* ofPositions, T* ofSlots, const Grid& grid) {
  for (int slot = 0; slot < kSubframe; ++slot) ofSlots[slot] = ofPositions[grid.positionOf[slot]];
}

// The first of the lanes that a comparison found, of a mask that is not empty
int firstLane(int mask) { return std::countr_zero(static_cast<unsigned>(mask)) / 2; }

V largestLane(V v) {
  v = _mm_max_epi16(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2)));
  v = _mm_max_epi16(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(2, 3, 0, 1)));
  return _mm_max_epi16(v, swappedPairs(v));
}

// -x where the mask is set, saturated
V negatedWhere(V mask, V x) { return _mm_subs_epi16(_mm_xor_si128(x, mask), mask); }

}  // namespace

void ownTargetSignalCorr_X2_GSMAMR_16s_W7(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* corr, int guardBits,
                                          const Grid& grid) {
  alignas(16) Zpp32s exact[kSubframe], magnitude[kSubframe];
  ownCrossCorr_16s32s_Sfs(target, impulse, kSubframe, exact, 0);
  for (int n = 0; n < kSubframe; n += 4) {
    const V x = load(exact + n), sign = _mm_srai_epi32(x, 31), wrapped = _mm_sub_epi32(_mm_xor_si128(x, sign), sign);
    store(magnitude + n, _mm_xor_si128(wrapped, _mm_srai_epi32(wrapped, 31)));  // that of -2^31 is 2^31 - 1
  }
  Zpp32s total = 5;
  for (int track = 0; track < grid.tracks; ++track) {
    Zpp32s largest = 0;
    for (int n = track; n < kSubframe; n += grid.tracks) largest = magnitude[n] > largest ? magnitude[n] : largest;
    total = addSat32(total, largest);
  }
  // No magnitude exceeds the total, so the shift cannot overflow.
  const int shift = norm32(total) - guardBits + 1;
  const V left = _mm_cvtsi32_si128(shift > 0 ? shift : 0), right = _mm_cvtsi32_si128(shift < 0 ? -shift : 0);
  const V one = _mm_set1_epi32(1);
  const auto rounded = [&](const Zpp32s* x) {
    const V shifted = _mm_sra_epi32(_mm_sll_epi32(load(x), left), right);
    return _mm_srai_epi32(_mm_add_epi32(_mm_srai_epi32(shifted, 15), one), 1);
  };
  alignas(16) Zpp16s ofPositions[kSubframe];
  for (int n = 0; n < kSubframe; n += kLanes)
    store(ofPositions + n, _mm_packs_epi32(rounded(exact + n), rounded(exact + n + 4)));
  toTrackOrder(ofPositions, corr, grid);
}

void ownSetSign_GSMAMR_16s_W7(Zpp16s* corr, Zpp16s* sign, Zpp16s* candidate, int candidates) {
  // Read from kLanes - i on, only lane i is set.
  alignas(16) static constexpr Zpp16s kLane[2 * kLanes] = {0, 0, 0, 0, 0, 0, 0, 0, -1, 0, 0, 0, 0, 0, 0, 0};
  const V all = _mm_set1_epi16(kMax16);
  V magnitudes[kSubframe / kLanes];
  for (int track = 0; track < kFiveTracks.tracks; ++track) {
    const V x = load(corr + track * kLanes), negative = _mm_srai_epi16(x, 15);
    magnitudes[track] = negatedWhere(negative, x);
    // The smallest are struck out one by one. A value of 32767 is never found; the standard then strikes out what it found
    // last.
    V left = _mm_sub_epi16(all, magnitudes[track]), struck = _mm_setzero_si128();
    for (int k = candidates; k < kLanes; ++k) {
      const V largest = largestLane(left);
      if (_mm_extract_epi16(largest, 0) == 0) return ownSetSign_GSMAMR_16s_PX(corr, sign, candidate, candidates);
      const V lane = load(kLane + kLanes - firstLane(_mm_movemask_epi8(_mm_cmpeq_epi16(left, largest))));
      left = _mm_andnot_si128(lane, left);
      struck = _mm_or_si128(struck, lane);
    }
    store(candidate + track * kLanes, _mm_or_si128(magnitudes[track], struck));
    store(sign + track * kLanes, negatedWhere(negative, all));
  }
  for (int track = 0; track < kFiveTracks.tracks; ++track) store(corr + track * kLanes, magnitudes[track]);
}

void ownSetSign_M102M122_GSMAMR_16s_W7(const Zpp16s* ltpResidual, Zpp16s* corr, Zpp16s* sign, Zpp16s* trackBest,
                                       Zpp16s* trackOrder, const Grid& grid) {
  const auto inverseNorm = [](const Zpp16s* x) {
    return high16(shlSat32(ownInvSqrt(sat32(256 + 2 * ownDotProd_16s(x, x, kSubframe))), 5));
  };
  alignas(16) Zpp16s residual[kSubframe], value[kSubframe];
  toTrackOrder(ltpResidual, residual, grid);
  const V factors = zpp::pairOf(inverseNorm(ltpResidual), inverseNorm(corr)), half = _mm_set1_epi32(16);
  for (int slot = 0; slot < kSubframe; slot += kLanes) {
    // Half of the standard's sum, which saturates only where the value does; 11 bits up, rounded to the upper half
    const V r = load(residual + slot), c = load(corr + slot);
    const auto mixed = [&](V pairs) { return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(pairs, factors), half), 5); };
    const V signedValue = _mm_packs_epi32(mixed(_mm_unpacklo_epi16(r, c)), mixed(_mm_unpackhi_epi16(r, c)));
    const V negative = _mm_srai_epi16(signedValue, 15);
    store(value + slot, negatedWhere(negative, signedValue));
    store(corr + slot, negatedWhere(negative, c));
    store(sign + slot, negatedWhere(negative, _mm_set1_epi16(kMax16)));
  }
  int largestOfAll = -1;
  for (int track = 0; track < grid.tracks; ++track) {
    // Of ten slots, the second vector has the last eight.
    const int from = track * grid.perTrack, rest = grid.perTrack - kLanes;
    const V first = load(value + from), second = load(value + from + rest), largest = largestLane(_mm_max_epi16(first, second));
    const int found = _mm_movemask_epi8(_mm_cmpeq_epi16(first, largest));
    const int number = found != 0 ? firstLane(found) : rest + firstLane(_mm_movemask_epi8(_mm_cmpeq_epi16(second, largest)));
    trackBest[track] = static_cast<Zpp16s>(from + number);
    if (_mm_extract_epi16(largest, 0) <= largestOfAll) continue;
    largestOfAll = _mm_extract_epi16(largest, 0);
    trackOrder[0] = static_cast<Zpp16s>(track);
  }
  for (int k = 1; k < 2 * grid.tracks; ++k) trackOrder[k] = static_cast<Zpp16s>((trackOrder[0] + k) % grid.tracks);
}
