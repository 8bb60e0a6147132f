// Levinson-Durbin recursion in single precision (ITU-T G.729 clause 3.2.2, Annex C). It runs in double precision: at order 30
// (Annex E) its sums cancel.
#include <cmath>

#include "core/checks.h"
#include "g729/lsp/kernels.h"

using namespace zpp;

namespace {

constexpr int kMaxOrder = 30;
constexpr Zpp64f kMaxReflection = 32750.0 / 32768;
constexpr Zpp64f kLeastError = 0.001;  // stands in for a prediction error that rounding has made 0 or negative

}  // namespace

ZppStatus ownLevinsonDurbin_G729_32f(const Zpp32f* autoCorr, int order, Zpp32f* a, Zpp32f* refl, Zpp32f* energy) {
  const Zpp64f r0 = autoCorr[0];
  if (!(r0 > 0)) return zppStsOverflowWarn;
  const Zpp64f r1 = autoCorr[1] > autoCorr[0] ? autoCorr[0] : autoCorr[1];

  Zpp64f coef[kMaxOrder + 1] = {1, -r1 / r0};
  Zpp64f reflection[kMaxOrder] = {coef[1]};
  Zpp64f error = r0 + r1 * coef[1];
  for (int i = 2; i <= order; ++i) {
    if (error == 0) return zppStsOverflowWarn;
    Zpp64f sum = 0;
    for (int j = 0; j < i; ++j) sum += coef[j] * autoCorr[i - j];
    const Zpp64f k = -sum / error;
    // The standard does not test the first stage. NaN counts as unstable.
    if (!(std::fabs(k) <= kMaxReflection)) return zppStsOverflowWarn;
    reflection[i - 1] = k;

    // Coefficients j and m = i - j are updated together, both from their old values.
    for (int j = 1, m = i - 1; j <= m; ++j, --m) {
      const Zpp64f oldJ = coef[j], oldM = coef[m];
      coef[j] = oldJ + k * oldM;
      coef[m] = oldM + k * oldJ;
    }
    coef[i] = k;
    error += k * sum;
    if (!(error > 0)) error = kLeastError;
  }

  for (int i = 0; i <= order; ++i) a[i] = static_cast<Zpp32f>(coef[i]);
  for (int i = 0; i < order; ++i) refl[i] = static_cast<Zpp32f>(reflection[i]);
  *energy = static_cast<Zpp32f>(error);
  return zppStsOk;
}

ZppStatus zppsLevinsonDurbin_G729_32f(const Zpp32f* autoCorr, int order, Zpp32f* a, Zpp32f* refl, Zpp32f* energy) {
  if (anyNull(autoCorr, a, refl, energy)) return zppStsNullPointer;
  if (outside(order, 1, kMaxOrder)) return zppStsOutOfRange;
  return ownLevinsonDurbin_G729_32f(autoCorr, order, a, refl, energy);
}
