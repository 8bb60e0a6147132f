// Constant tables of the LSP quantisation. Content, shape, Q format, the standard's name (3GPP TS 26.073).
#pragma once

#include "zppsc.h"

// Mean LSFs of the three-way quantiser: 10, 16384 = 4000 Hz, mean_lsf_3
extern const Zpp16s meanLsf3[10];
// Mean LSFs of the five-way quantiser: 10, 16384 = 4000 Hz, mean_lsf_5
extern const Zpp16s meanLsf5[10];
// Prediction of the three-way quantiser from the last residual: 10, Q15, pred_fac
extern const Zpp16s predFac[10];
// Starting predictors of the silence descriptor: 8 x 10, 16384 = 4000 Hz, past_rq_init
extern const Zpp16s pastRqInit[8][10];

// Codebooks of LSF residuals, 16384 = 4000 Hz, laid out for searches four entries at a time: [block][pair] holds elements 2
// pair and 2 pair + 1 of the entries 4 block .. 4 block + 3, one behind the other. Entries of three elements end with a zero.
struct LsfQuad {
  alignas(16) Zpp16s pair[2][8];
};
inline constexpr int kLargestLsfEntry = 8191;  // no element of a codebook is of larger magnitude
// Whether a residual, of 4, differs from any entry by 16383 at the most. Weighted differences are then no larger, so that their
// four squares stay below 2^30 together and nothing saturates.
inline bool isNearLsfEntries(const Zpp16s* residual) {
  for (int i = 0; i < 4; ++i)
    if (residual[i] > 16383 - kLargestLsfEntry || residual[i] < -16383 + kLargestLsfEntry) return false;
  return true;
}
struct LsfCodebook {
  const LsfQuad* quads;
  int size;  // entries

  Zpp16s at(int entry, int element) const { return quads[entry / 4].pair[element / 2][entry % 4 * 2 + element % 2]; }
};
// Three-way quantiser, residuals 0 to 2: 256 x 3, dico1_lsf_3
extern const LsfCodebook dico1Lsf3;
// Three-way quantiser, residuals 3 to 5: 512 x 3, dico2_lsf_3
extern const LsfCodebook dico2Lsf3;
// Three-way quantiser, residuals 6 to 9: 512 x 4, dico3_lsf_3
extern const LsfCodebook dico3Lsf3;
// Residuals 6 to 9 at 4.75 and 5.15 kbit/s: 128 x 4, mr515_3_lsf
extern const LsfCodebook mr515Lsf3;
// Residuals 0 to 2 at 7.95 kbit/s: 512 x 3, mr795_1_lsf
extern const LsfCodebook mr795Lsf1;
// Five-way quantiser, residuals 0 and 1 of the first LSF set, then of the second: 128 x 4, dico1_lsf_5
extern const LsfCodebook dico1Lsf5;
// The same for residuals 2 and 3: 256 x 4, dico2_lsf_5
extern const LsfCodebook dico2Lsf5;
// The same for residuals 4 and 5, used with both signs: 256 x 4, dico3_lsf_5
extern const LsfCodebook dico3Lsf5;
// The same for residuals 6 and 7: 256 x 4, dico4_lsf_5
extern const LsfCodebook dico4Lsf5;
// The same for residuals 8 and 9: 64 x 4, dico5_lsf_5
extern const LsfCodebook dico5Lsf5;
// Its even entries, for 4.75 and 5.15 kbit/s: 256 x 3
extern const LsfCodebook dico2Lsf3Even;
