// Prediction of the LSF from those of the frame before (ITU-T G.723.1 clauses 2.5 and 2.6).
#pragma once

#include "core/fixed_point.h"
#include "g723/tables.h"

inline constexpr Zpp16s kGoodFrameFactor = 12288, kErasedFrameFactor = 23552;  // Q15: 0.375, 0.71875

// What the previous set lets expect of LSF j, as deviation from the long-term mean
inline Zpp16s predictedDeviation(const Zpp16s* prevLsf, int j, Zpp16s factor) {
  return zpp::mulRoundQ15(zpp::subSat16(prevLsf[j], LspDcTbl_G723[j]), factor);
}
