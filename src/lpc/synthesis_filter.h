// The output stage that all forms of the synthesis filter share.
#pragma once

#include "core/fixed_point.h"

namespace zpp {

// Scales an accumulator with rounding, modulo 2^32, and clamps it.
inline Zpp16s synthesisOutput(Zpp32s acc, int scaleFactor, bool& overflow) {
  const Zpp32s y = addWrap32(acc, 1 << (scaleFactor - 1)) >> scaleFactor;
  overflow |= y != sat16(y);
  return sat16(y);
}

}  // namespace zpp
