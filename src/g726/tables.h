// Constant tables of ITU-T G.726.
#pragma once

#include "zppsc.h"

namespace zpp::g726 {

// What a code stands for: FUNCTW, RECONST and FUNCTF of the standard
struct CodeMeaning {
  Zpp32s scaleFactor;   // 32 W(I), Q9
  Zpp16s logMagnitude;  // of the quantised difference, less the scale factor: DQLN, Q7
  Zpp16s speed;         // 512 F(I), Q9
};

// The codes of 2, 3, 4 and 5 bits, one set behind the other; those of n bits start at entry 2^n - 4
extern const CodeMeaning codeMeaning[4 + 8 + 16 + 32];

// QUAN: code by [rate][DLN - lowestLog][difference below 0], DLN (Q7) limited to lowestLog..highestLog, which lie beyond the
// outermost decision levels
inline constexpr int lowestLog = -125, highestLog = 553;
struct Quantiser {
  struct Interval {
    Zpp8u code[2];
    Zpp16s logMagnitude;  // that of the codes' meaning
  } interval[highestLog - lowestLog + 1];
};
extern const Quantiser quantisers[4];

// By [law 0 mu, 1 A][code word]: linear value in the codec's 14-bit range (EXPAND), and the code words of the next smaller and
// the next greater value, at the ends of the scale the word itself (SP- and SP+ of SYNC)
struct LawLevels {
  Zpp16s value[256];
  Zpp8u smaller[256], greater[256];
};
extern const LawLevels lawLevels[2];

}  // namespace zpp::g726
