// Search of the gain codebooks (3GPP TS 26.090 clause 5.8): portable kernel.
#include "amr/arithmetic.h"
#include "amr/gain/search.h"

using namespace zpp;
using namespace zpp::amr;

Zpp32s ownGainError_GSMAMR(const GainCriterion* criteria, const Zpp16s* row, int subframes) {
  Zpp32s error = 0;
  for (int k = 0; k < subframes; ++k) {
    const Dpf* term = criteria[k].term;
    const Zpp16s gp = row[2 * k], gc = mulQ15(row[2 * k + 1], criteria[k].predicted);
    const Zpp16s products[5] = {mulQ15(gp, gp), gp, mulQ15(gc, gc), gc, mulQ15(gc, gp)};
    for (int i = 0; i < 5; ++i)  // the standard saturates the error of two subframes after each half of a product
      error = subframes == 1 ? addSat32(error, zpp::mulDpf16(term[i], products[i])) : macDpf16(error, term[i], products[i]);
  }
  return error;
}

namespace {

// The same, halved, where nothing can saturate
Zpp32s halfError(const GainCriterion* criteria, const Zpp16s* row, int subframes) {
  Zpp32s error = 0;
  for (int k = 0; k < subframes; ++k) {
    const Dpf* term = criteria[k].term;
    const Zpp32s gp = row[2 * k], gc = (row[2 * k + 1] * criteria[k].predicted) >> 15;
    const Zpp32s products[5] = {(gp * gp) >> 15, gp, (gc * gc) >> 15, gc, (gc * gp) >> 15};
    for (int i = 0; i < 5; ++i) error += term[i].hi * products[i] + ((term[i].lo * products[i]) >> 15);
  }
  return error;
}

}  // namespace

int ownGainSearch_GSMAMR_16s_PX(const GainCriterion* criteria, const Zpp16s* table, int size, int subframes, Zpp16s limit) {
  const bool safe = isSafe(criteria, subframes);
  Zpp32s least = kMax32;
  int best = 0;
  for (int n = 0; n < size; ++n) {
    const Zpp16s* row = table + 4 * n;
    if (row[0] > limit || (subframes == 2 && row[2] > limit)) continue;
    const Zpp32s error = safe ? 2 * halfError(criteria, row, subframes) : ownGainError_GSMAMR(criteria, row, subframes);
    if (error < least) least = error, best = n;
  }
  return best;
}
