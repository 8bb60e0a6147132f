// What the searches of the pulse positions share with SSE2 and wider. Include it from *_w7.cpp and *_v3.cpp files only.
#pragma once

#include <cstring>

#include "amr/fixed_codebook/pulse_search.h"
#include "core/simd_w7.h"

namespace zpp::amr {

// Energy (low) and negated square (high)
inline V swapNegated(V pairs) {
  const V swapped = swappedPairs(pairs);
  const V highHalves = _mm_set1_epi32(static_cast<int>(0xffff0000));
  return _mm_sub_epi16(_mm_xor_si128(swapped, highHalves), highHalves);
}
template <int Lanes>
V pick(V a, V b) {
  return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), Lanes));
}
inline V weights(int low, int high) {
  return _mm_set1_epi32(static_cast<int>(static_cast<Zpp32u>(high) << 16 | static_cast<Zpp32u>(low)));
}

inline V magnitudes(V x) { return _mm_max_epi16(x, _mm_subs_epi16(_mm_setzero_si128(), x)); }
inline V isAbove(V x, Zpp16s limit) { return _mm_cmpgt_epi16(x, _mm_set1_epi16(limit)); }
inline bool any(V mask) { return _mm_movemask_epi8(mask) != 0; }

// The weighted entries of one more pulse with up to eight placed before and itself, in magnitude: no partial sum reaches full
// scale. Each is truncated.
inline constexpr Zpp16s kMostMagnitudes = kMax16 - 16;
// Energies of 0.7, a quarter of an inner sum of 0.9 and a sixteenth of an entry stay below 1.
inline constexpr Zpp16s kMostOuterEnergy = 22937, kMostInnerSum = 29491;

// Of eight inner slots the best with all outer ones: its energy and negated square (low and high half of the slots), and the
// number of the outer slot
struct BestOfSlots {
  V low, high, outer;

  // Of an inner slot: it differs from that of an equal quotient elsewhere.
  Criterion criterion(int slot) const {
    Criterion kept;  // energy, and the square negated, in each other's place
    std::memcpy(&kept, reinterpret_cast<const char*>(this) + sizeof kept * static_cast<unsigned>(slot), sizeof kept);
    return {static_cast<Zpp16s>(-kept.energy), kept.square};
  }
};

}  // namespace zpp::amr
