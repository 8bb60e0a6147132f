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

// The nearest entry of a codebook, near all of which the residual is. What two elements differ by is often too much already.
int searchNear(const Zpp16s* residual, const Zpp16s* weight, const LsfQuad* codebook, int size, bool bothSigns) {
  const auto squares = [&](const Zpp16s* entry, int i, int sign) {
    const Zpp32s error0 = (weight[i] * (residual[i] - sign * entry[0])) >> 15;
    const Zpp32s error1 = (weight[i + 1] * (residual[i + 1] - sign * entry[1])) >> 15;
    return error0 * error0 + error1 * error1;
  };
  Zpp32s least = kMax32;
  int best = 0, n = 0;
  const auto tryEntry = [&](const LsfQuad& quad, int place, int sign) {
    Zpp32s error = squares(quad.pair[0] + place, 0, sign);
    if (error < least) {
      error += squares(quad.pair[1] + place, 2, sign);
      if (error < least) least = error, best = n;
    }
    ++n;
  };
  for (const LsfQuad* quad = codebook; quad != codebook + size / 4; ++quad)
    for (int place = 0; place < 8; place += 2) {
      tryEntry(*quad, place, 1);
      if (bothSigns) tryEntry(*quad, place, -1);
    }
  return best;
}

}  // namespace

int ownLsfSearch_GSMAMR_16s_PX(const Zpp16s* residual, const Zpp16s* weight, const LsfQuad* codebook, int size,
                               bool bothSigns) {
  if (isNearLsfEntries(residual)) return searchNear(residual, weight, codebook, size, bothSigns);
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
