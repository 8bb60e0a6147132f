// The best of many pairs of pulses, for SSE2 searches. Include it from *_w7.cpp and *_v3.cpp files only.
#pragma once

#include "amrwb/fixed_codebook/kernels.h"
#include "core/simd_w7.h"

namespace zpp::amrwb {

// Pairs of pulses side by side in 32-bit lanes: their ratios of squared correlation to energy as (energy, -square), and their
// places, 16 times the first position and the second. Energies are above 0.
struct Lead {
  V ratio, place;

  // Leaves the larger ratio of each lane, of equals that which comes first.
  void meet(const Lead& other) {
    const V swapped = swappedPairs(other.ratio), sign = _mm_set1_epi32(0x0000ffff);
    const V challenger = _mm_sub_epi16(_mm_xor_si128(swapped, sign), sign);  // (square, energy)
    // The difference of the two products is above 0, or above -1 where the other comes first.
    const V better = _mm_cmpgt_epi32(_mm_madd_epi16(challenger, ratio), _mm_cmpgt_epi32(place, other.place));
    ratio = select(better, other.ratio, ratio);
    place = select(better, other.place, place);
  }
  // The best of the four lanes
  PulsePair found() {
    meet({_mm_shuffle_epi32(ratio, _MM_SHUFFLE(1, 0, 3, 2)), _mm_shuffle_epi32(place, _MM_SHUFFLE(1, 0, 3, 2))});
    meet({_mm_shuffle_epi32(ratio, _MM_SHUFFLE(2, 3, 0, 1)), _mm_shuffle_epi32(place, _MM_SHUFFLE(2, 3, 0, 1))});
    const int at = _mm_cvtsi128_si32(place);
    return {static_cast<Zpp16s>(at / 16), static_cast<Zpp16s>(at % 16), static_cast<Zpp16s>(_mm_cvtsi128_si32(ratio))};
  }
};

}  // namespace zpp::amrwb
