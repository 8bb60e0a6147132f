// Search of the LSF codebooks (3GPP TS 26.090 clause 5.2.5): portable kernel.
#include "amr/lsp/kernels.h"
#include "core/fixed_point.h"

using namespace zpp;

namespace {

// Squared error of the weighted difference, saturated once: every term is positive.
Zpp32s weightedError(const Zpp16s* residual, const Zpp16s* weight, const LsfCodebook& codebook, int entry, int sign) {
  Zpp64s sum = 0;
  for (int i = 0; i < 4; ++i) {
    const Zpp64s error = mulQ15(weight[i], sat16(residual[i] - sign * codebook.at(entry, i)));
    sum += 2 * error * error;
  }
  return sat32(sum);
}

}  // namespace

int ownLsfSearch_GSMAMR_16s_PX(const Zpp16s* residual, const Zpp16s* weight, const LsfQuad* codebook, int size,
                               bool bothSigns) {
  const int signs = bothSigns ? 2 : 1;
  Zpp32s least = kMax32;
  int best = 0;
  for (int n = 0; n < signs * size; ++n) {
    const int sign = bothSigns && n % 2 != 0 ? -1 : 1;
    const Zpp32s error = weightedError(residual, weight, {codebook, size}, n / signs, sign);
    if (error < least) least = error, best = n;
  }
  return best;
}
