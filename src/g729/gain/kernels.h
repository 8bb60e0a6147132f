// The search of the gain codebooks (ITU-T G.729 clause 3.9.2) and its processor variants (see core/variants.h).
#pragma once

#include "core/fixed_point.h"
#include "core/variants.h"

// Rows hold a part of the pitch gain, Q14, and one of the code gain's correction, Q13. The sums of two rows and the predicted
// gain are not negative; pitch gains fit 16 bits.
struct GainSearch {
  const Zpp16s (*first)[2];
  int firstRows;
  const Zpp16s (*second)[2];   // of these eight rows,
  int secondFrom, secondRows;  // those that take part
  // Error of a pair: factor[0] gp^2 + factor[1] gp + factor[2] gc^2 + factor[3] gc + factor[4] gp gc, with gc the predicted
  // gain times half the correction
  zpp::Dpf factor[5];
  Zpp16s predicted;
  Zpp16s pitchLimit;  // pairs from this pitch gain on are left out
};

// ownWeightedMSE_G729: 8 i + k for the pair of least error, of first row i and second row k; the first of them on ties, and
// where all are left out.
#define ZPP_G729_GAIN_KERNELS(KERNEL) KERNEL(ownWeightedMSE_G729, W7, int(const GainSearch& search))

ZPP_G729_GAIN_KERNELS(ZPP_DECLARE_KERNEL)
