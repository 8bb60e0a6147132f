// What the LSF quantisers share between their formats: the switched moving-average predictor with its memory, and the order of
// decoded LSFs (ITU-T G.729 clause 3.2.4).
#pragma once

#include "zppsc.h"

namespace zpp {

// The switched predictor of one MA mode: four frames' coefficients, newest first, their complement to 1 and its inverse
template <class Value>
struct SwitchedPredictor {
  const Value (*coefficient)[10];
  const Value* complement;
  const Value* inverse;
};

// Shifts a code vector into the MA memory.
template <class Value>
void shiftIntoMemory(const Value* codeVector, Value* maMem) {
  for (int j = 39; j >= 10; --j) maMem[j] = maMem[j - 10];
  for (int j = 0; j < 10; ++j) maMem[j] = codeVector[j];
}

// Swaps reversed neighbours, in one pass: three in reverse order are not sorted by it.
template <class Value>
void swapReversed(Value* lsf) {
  for (int i = 0; i < 9; ++i) {
    if (!(lsf[i + 1] < lsf[i])) continue;
    const Value larger = lsf[i];
    lsf[i] = lsf[i + 1];
    lsf[i + 1] = larger;
  }
}

constexpr ZppStatus clampStatus(bool low, bool high) {
  return low ? (high ? zppStsLSFBothClamped : zppStsLSFLowClamped) : (high ? zppStsLSFHighClamped : zppStsOk);
}

}  // namespace zpp
