// What the kernels of the gain search share.
#pragma once

#include "amr/gain/kernels.h"

// Whether no sum of the terms' magnitudes can come near saturation, with gains below 2 (Q14) and factors of full scale
inline bool isSafe(const GainCriterion* criteria, int subframes) {
  Zpp64s sum = 0;
  for (int k = 0; k < subframes; ++k) {
    const Zpp64s gc = criteria[k].predicted, gp = 22016;
    const Zpp64s largest[5] = {gp * gp >> 15, gp, gc * gc >> 15, gc, gc * gp >> 15};
    for (int i = 0; i < 5; ++i) {
      const Zpp32s hi = criteria[k].term[i].hi;
      sum += ((hi < 0 ? -hi : hi) + 1) * largest[i];
    }
  }
  return sum < (1 << 30) - (1 << 18);
}
